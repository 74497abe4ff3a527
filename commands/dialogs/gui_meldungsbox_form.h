#pragma once
// The editor dialog of MeldungsBox: the text, the type, the buttons and the position, with a Test
// button that shows the message as configured.
#include "commands/dialogs/gui_meldungsbox.h"
#include "framework/forms/commandform.h"

#include <vector>

class QButtonGroup;
class QCheckBox;
class QLineEdit;

namespace dv {

class TMeldungsbox : public TCommandForm<TDVCmdMeldungsBox> {
public:
    explicit TMeldungsbox(TDVCmdMeldungsBox& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    void ShowPositionEdits();
    void TestMessage();

    QLineEdit* text_;
    QButtonGroup* type_;
    std::vector<std::pair<int, QCheckBox*>> buttons_;  // bit, check box
    QCheckBox* standard_;
    QLineEdit* x_;
    QLineEdit* y_;
};

}  // namespace dv
