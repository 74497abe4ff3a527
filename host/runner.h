#pragma once
// One run of a script file: read, check, run, and the verdict with everything that went wrong.
#include "host/hostservices.h"

#include <QStringList>

namespace dv::host {

struct TRunReport {
    int exitCode = 0;     // 0 passed, 1 runtime error / failed check / stop, 2 usage or parse error
    QStringList errors;   // "file:line:col: message" (parse) or "file:line: message" (run)
    QStringList failedChecks;  // "file:line: text"
    double seconds = 0;
    // The failure text of a test report: the errors, then the failed checks.
    QString FailureText() const;
};

class TScriptRun {
public:
    // fileName: the script's name in messages.
    TScriptRun(QString fileName, THost& host) : fileName_(std::move(fileName)), host_(host) {}

    // Parses the script; false (exit code 2) when it has errors, and then nothing may run.
    bool Load(const QString& text);
    // Sets the starting value of a declared global; false (exit code 2) when it cannot.
    bool Define(const QString& name, const QString& valueText);
    // Whether the script calls a command that shows a window while it runs.
    bool NeedsDialog() const;
    void Run();
    const TRunReport& Report() const { return report_; }

private:
    QString fileName_;
    THost& host_;
    QHash<int, TVal> defines_;
    TRunReport report_;
};

}  // namespace dv::host
