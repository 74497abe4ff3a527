#pragma once
// The scope's dialogs as the run needs them: its error messages, its information message and the
// wait for "Weiter". Without a GUI they take the answers given to dvrun (--answer Scope=...); the
// scope window installs its own dialogs when it exists.
#include <QString>

namespace dv::scope {

enum class TErrorAnswer { Cancel, Ignore };

class IScopeDialogs {
public:
    virtual ~IScopeDialogs() = default;
    // A "Scope-Plugin: ..." error with the buttons Cancel and Ignore.
    virtual TErrorAnswer ShowExecutionError(const QString& text) = 0;
    // A "Scope-Plugin: ..." error with an OK button.
    virtual void ShowDecodeError(const QString& text) = 0;
    // A "Scope-Plugin: ..." error with only a Cancel button: the caller stops the test.
    virtual void ShowCancelError(const QString& text) = 0;
    virtual void ShowInformation(const QString& text) = 0;
    // Called when a run asks to wait: true when the worker is to wait for "Weiter" or stop, false
    // when it goes on at once.
    virtual bool BeginWait() = 0;
    // Called when a wait that BeginWait began ended by the test's stop rather than by "Weiter".
    virtual void EndWait() {}
};

// Without a window: "Ignorieren" ignores an error, "Abbrechen" or no answer cancels (an error that
// offers only Cancel takes no answer); "Weiter" ends a wait, and without it the wait ends at once.
// Every message goes to the system log.
class THeadlessScopeDialogs final : public IScopeDialogs {
public:
    TErrorAnswer ShowExecutionError(const QString& text) override;
    void ShowDecodeError(const QString& text) override;
    void ShowCancelError(const QString& text) override;
    void ShowInformation(const QString& text) override;
    bool BeginWait() override;
};

// The dialogs in use: those installed last, else the headless ones.
IScopeDialogs& ScopeDialogs();
// Installs dialogs (nullptr: back to the headless ones); the installer keeps ownership.
void SetScopeDialogs(IScopeDialogs* dialogs);

// Shows an execution error and stops the running test when the answer is Cancel. Returns the
// answer.
TErrorAnswer ReportExecutionFault(const QString& text);

}  // namespace dv::scope
