// What watching a run in the workbench costs the interpreter: the same loop run bare (as dvrun
// runs it) and in a workbench run session whose window takes the running line, the batches and a
// copy of the variables ten times a second, with a 200000-element array among the variables.
// A third run with an observer that does nothing shows the part the interpreter's own call of
// the observer before each statement takes. The ratios are printed last.
#include "host/hostservices.h"
#include "host/runner.h"
#include "workbench/runsession.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEventLoop>
#include <QStringListModel>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {

// The cheapest statement there is, so that any cost per statement shows.
const QString kScript = QStringLiteral(
    "var I : Number\nvar S : Number\nvar A : Array of Number\nA[200000] := 1\n"
    "for I := 1 to 50000000 do\n  S := S + I\nend for\n");

class TIdle final : public dv::host::IStatementObserver {
public:
    void BeforeStatement(const dv::host::TExec&, int) override {}
};

// Seconds the interpreter took, parsing excluded; observer: nullptr as in dvrun.
double RunBare(dv::host::IStatementObserver* observer = nullptr)
{
    dv::host::THost host;
    host.SetOutput({}, {});
    host.Exec().observer = observer;
    dv::host::TScriptRun run(QStringLiteral("bench.dvs"), host);
    if (!run.Load(kScript)) std::abort();
    run.Run();
    if (run.Report().exitCode != 0) std::abort();
    return run.Report().seconds;
}

double RunIdle()
{
    TIdle idle;
    return RunBare(&idle);
}

double RunWatched()
{
    QStringListModel names;
    dv::workbench::TRunSession session(QStringLiteral("bench.dvs"), QStringLiteral("/tmp"), &names);
    if (!session.Load(kScript)) std::abort();
    // The window's poll, as TMainWindow does it.
    QTimer poll;
    poll.setInterval(100);
    int shown = 0;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        dv::workbench::TRunSession::TBatch batch = session.TakeBatch();
        if (batch.variables) shown += static_cast<int>(dv::workbench::FormatVariables(*batch.variables).size());
        session.RequestVariables();
    });
    QEventLoop finished;
    QObject::connect(&session, &dv::workbench::TRunSession::Finished, &finished, &QEventLoop::quit, Qt::QueuedConnection);
    poll.start();
    session.Start();
    finished.exec();  // the GUI thread sleeps between its polls, as the window's does
    session.Wait();
    if (session.Report().exitCode != 0 || (session.Report().seconds > 0.3 && shown == 0)) std::abort();
    return session.Report().seconds;
}

void Bare(benchmark::State& state)
{
    for (auto _ : state) state.SetIterationTime(RunBare());
}

void Watched(benchmark::State& state)
{
    for (auto _ : state) state.SetIterationTime(RunWatched());
}

BENCHMARK(Bare)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(Watched)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    // Alternated, best of seven each: other load on the machine hits all sides alike.
    double bare = 1e9;
    double idle = 1e9;
    double watched = 1e9;
    for (int i = 0; i < 7; ++i) {
        bare = std::min(bare, RunBare());
        idle = std::min(idle, RunIdle());
        watched = std::min(watched, RunWatched());
    }
    std::printf("loop with a 200000-element array: bare %.1f ms  idle observer %.1f ms  watched %.1f ms\n", bare * 1e3,
                idle * 1e3, watched * 1e3);
    std::printf("ratio idle observer/bare %.3f  ratio watched/bare %.3f\n", idle / bare, watched / bare);
    return 0;
}
