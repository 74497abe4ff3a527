#pragma once
// The editor dialog of StringBearbeitung: one check box per step, each enabling its own edits and
// panels, and a test button that shows the result of the current settings.
#include "commands/text/gui_stringbearbeitung.h"
#include "framework/forms/commandform.h"

class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QWidget;

namespace dv {

class TStringBearbeitung : public TCommandForm<TDVCmdStringConversion> {
public:
    explicit TStringBearbeitung(TDVCmdStringConversion& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    void BuildFragmentPanel();
    void BuildTrimPanel();
    void UpdateEnabling();
    void ShowTestResult();

    QLineEdit* input_;
    QLineEdit* output_;
    QCheckBox* upperCase_;
    QCheckBox* searchFlag_;
    QLineEdit* search_;
    QCheckBox* strLen_;
    QCheckBox* fragment_;
    QWidget* fragmentPanel_ = nullptr;
    QButtonGroup* cut_ = nullptr;
    QButtonGroup* anchor_ = nullptr;
    QLineEdit* pos_ = nullptr;
    QLineEdit* length_ = nullptr;
    QCheckBox* segment_;
    QLineEdit* separator_;
    QLineEdit* part_;
    QCheckBox* convert_;
    QCheckBox* round_;
    QCheckBox* trim_;
    QWidget* trimPanel_ = nullptr;
    QButtonGroup* trimMode_ = nullptr;
    QCheckBox* replace_;
    QLineEdit* replacePos_;
    QLineEdit* replaceWith_;
    QCheckBox* countFlag_;
    QLineEdit* count_;
    QLabel* result_;
};

}  // namespace dv
