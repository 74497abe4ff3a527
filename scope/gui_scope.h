#pragma once
// Scope(Command, Special): decodes the tag language, fills curves 1-4 from their sources, runs one
// analysis function, writes its result into a script variable and can hold the script until
// "Weiter". The worker thread only moves the texts and waits; the rest runs on the GUI thread.
#include "framework/runedit.h"
#include "framework/services.h"
#include "scope/scopesettings.h"

#include <QString>

#include <functional>
#include <vector>

namespace dv {

namespace scope {

// The scope of the library as a run sees it: the texts of the running call, the continue event,
// and the run itself (decode, draw, analyse, show).
class TScopeState {
public:
    // Decodes both texts into ScopeSettings(); a fault is reported (OK dialog, StopTest) and
    // ends the decoding there. running false: an editor fill.
    void DecodeScript(const QString& command, const QString& special, bool running);
    // The run on the GUI thread: steps 2 to 12 of a call.
    void Start();
    // Writes elements 1 .. N-1 to ResultVar{1} .. ResultVar{N-1}; without a ResultVar the
    // information message and nothing written.
    void SendMemArrayContents(const std::vector<double>& values);
    // "Weiter": ends a wait.
    void Continue();

    QString Command;
    QString Special;
    // Manual-reset: set by "Weiter", reset by each run.
    TRunControl ContinueEvent;

private:
    void ClearScope();
    void ApplyUnits();
    void ApplyColors();
    void DrawCurves();
    void RunAnalysis();
    void ShowOrHide();
};

TScopeState& Scope();

// Called on the GUI thread at the end of every run, whether it leaves the scope shown, kept or
// hidden: the window follows the model (shows or hides itself, repaints, and while shown writes
// its picture into an artifacts folder). Empty: nothing is called.
void SetAfterRunHook(std::function<void()> hook);

}  // namespace scope

class TDVCmdScope : public TDVThreadRunEdit {
public:
    explicit TDVCmdScope(TDVParser* parser);
    void RunThreaded(TParamList& params) override;

    // Editing (scope/scopeedit.cpp). text carries Special, script carries Command: both in and,
    // on OK, out as the editor writes them.
    bool EditCommand(int x, int y, QString& text, QString& script) override;
    // The call's Command and Special arguments through EditCommand; on OK the list holds both
    // again as arguments, Command without its "Scope(" ... ");" frame.
    bool Edit(TParamList& params) override;
    // The editor back to the reset values before a new call is edited.
    void SetDefaults() override;
};

}  // namespace dv
