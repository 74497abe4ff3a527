#pragma once
// TStartEXE: the editor dialog of Exec.
#include "commands/system/gui_exec.h"
#include "framework/forms/commandform.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QSpinBox;

namespace dv {

class TStartEXE : public TCommandForm<TDVCmdStartEXE> {
    Q_OBJECT
public:
    explicit TStartEXE(TDVCmdStartEXE& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    void ShowWaitControls(bool show);
    void RunTest();
    QLineEdit* exeName_;
    QLineEdit* parameter_;
    QLineEdit* workDir_;
    QLineEdit* exitCode_;
    QCheckBox* waitForExit_;
    QLabel* timeoutLabel_;
    QSpinBox* timeout_;
    QLabel* secondsLabel_;
    QCheckBox* kill_;
    QCheckBox* hide_;
    QCheckBox* minimized_;
};

}  // namespace dv
