#pragma once
// The editor dialog of NumberConvert: input, output, one radio button per operation, and the
// digit count for the operations that use it.
#include "commands/text/gui_numberconvert.h"
#include "framework/forms/commandform.h"

class QButtonGroup;
class QLineEdit;
class QSpinBox;
class QWidget;

namespace dv {

class TZahlenkonverter : public TCommandForm<TDVCmdNumberConversion> {
public:
    explicit TZahlenkonverter(TDVCmdNumberConversion& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    void ShowStellen(int operation);
    QLineEdit* input_;
    QLineEdit* output_;
    QWidget* stellenPanel_;
    QLineEdit* stellen_;
    QSpinBox* upDown_;
    QButtonGroup* operations_;
};

}  // namespace dv
