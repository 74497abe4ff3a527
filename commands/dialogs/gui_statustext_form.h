#pragma once
// The editor dialog of StatusText: one edit for the text.
#include "commands/dialogs/gui_statustext.h"
#include "framework/forms/commandform.h"

class QLineEdit;

namespace dv {

class TStatusleiste : public TCommandForm<TDVCmdStatusBar> {
public:
    explicit TStatusleiste(TDVCmdStatusBar& command);

    // The test handler; the dialog offers no button for it, the host's editor may call it. Runs
    // the command on the edit's text and shows "Ergebnis = %s"; returns the shown text.
    QString BT_TestClick();
    // The line the dialog writes for its text ("" when empty).
    QString ScriptLine() const;

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    QLineEdit* text_;
};

}  // namespace dv
