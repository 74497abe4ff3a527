#pragma once
// Runs a script text in-process with the stand-alone host and collects what it printed and reported.
#include "host/hostservices.h"
#include "host/runner.h"

#include <QStringList>

#include <functional>

namespace dv::host::test {

struct TScriptOutcome {
    int exitCode = 0;
    QStringList output;  // stdout lines
    QStringList log;     // log file lines
    QStringList errors;
    QStringList failedChecks;
};

// setUp runs after the host exists and before parsing (to add commands); defines as NAME=VALUE.
TScriptOutcome RunScriptText(const QString& text, const QStringList& defines = {},
                             const std::function<void(THost&)>& setUp = {});

}  // namespace dv::host::test
