#include "tests/host/scriptrun.h"

namespace dv::host::test {

TScriptOutcome RunScriptText(const QString& text, const QStringList& defines, const std::function<void(THost&)>& setUp)
{
    TScriptOutcome outcome;
    THost host;
    host.SetOutput([&](const QString& line) { outcome.output << line; }, [&](const QString& line) { outcome.log << line; });
    host.SetProjectFolder(QStringLiteral("/projekt"));
    if (setUp) setUp(host);
    TScriptRun run(QStringLiteral("test.dvs"), host);
    bool ok = run.Load(text);
    for (const QString& d : defines) {
        if (ok) ok = run.Define(d.section('=', 0, 0), d.section('=', 1));
    }
    if (ok) run.Run();
    outcome.exitCode = run.Report().exitCode;
    outcome.errors = run.Report().errors;
    outcome.failedChecks = run.Report().failedChecks;
    return outcome;
}

}  // namespace dv::host::test
