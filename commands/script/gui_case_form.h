#pragma once
// The case dialog: selector of a head or value of a branch, and which of the two lines to write.
#include "commands/script/gui_case.h"
#include "framework/forms/commandform.h"

class QLineEdit;
class QRadioButton;

namespace dv {

class T_Case : public TCommandForm<TDVCmdCase> {
public:
    explicit T_Case(TDVCmdCase& command);

    // Typing in an edit box checks the radio button of its tag: 1 "Anweisung", 2 "Fall".
    void Edit_FallChange(const QLineEdit& sender);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    void Check(TCaseMode mode);

    QLineEdit* selector_;
    QLineEdit* value_;
    QRadioButton* head_;
    QRadioButton* branch_;
};

}  // namespace dv
