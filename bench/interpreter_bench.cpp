// The interpreter against CPython on the same work: a counting loop and calls of a library command.
// Each side is timed inside its own interpreter (no process start-up); the ratio is printed last.
#include "host/hostservices.h"
#include "host/runner.h"

#include <benchmark/benchmark.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <algorithm>
#include <cstdio>

namespace {

QString ReadBenchFile(const char* name)
{
    QFile f(QStringLiteral(DV_BENCH_DIR "/") + name);
    f.open(QIODevice::ReadOnly);
    return QString::fromUtf8(f.readAll());
}

// Seconds of one run of a script, parsing excluded.
double RunScriptOnce(const QString& text)
{
    dv::host::THost host;
    host.SetOutput({}, {});
    dv::host::TScriptRun run(QStringLiteral("bench.dvs"), host);
    if (!run.Load(text)) std::abort();
    QElapsedTimer timer;
    timer.start();
    run.Run();
    if (run.Report().exitCode != 0) std::abort();
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

double RunPythonOnce(const char* script)
{
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral(DV_BENCH_DIR "/") + script});
    python.waitForFinished(-1);
    return python.readAllStandardOutput().trimmed().toDouble();
}

void Script(benchmark::State& state, const char* file)
{
    const QString text = ReadBenchFile(file);
    for (auto _ : state) state.SetIterationTime(RunScriptOnce(text));
}

void Python(benchmark::State& state, const char* file)
{
    for (auto _ : state) state.SetIterationTime(RunPythonOnce(file));
}

BENCHMARK_CAPTURE(Script, loop_1e6, "loop.dvs")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Python, loop_1e6, "loop.py")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Script, ShowLabor_1e5, "calls.dvs")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Python, ShowLabor_1e5, "calls.py")->UseManualTime()->Unit(benchmark::kMillisecond);

template <class F>
double Best(F f)
{
    double best = 1e9;
    for (int i = 0; i < 5; ++i) best = std::min(best, f());
    return best;
}

void PrintRatio(const char* what, const char* script, const char* python)
{
    const QString text = ReadBenchFile(script);
    const double ours = Best([&] { return RunScriptOnce(text); });
    const double theirs = Best([&] { return RunPythonOnce(python); });
    std::printf("%-10s dvrun %8.2f ms  python3 %8.2f ms  ratio dvrun/python3 %.2f\n", what, ours * 1e3, theirs * 1e3,
                ours / theirs);
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    PrintRatio("loop", "loop.dvs", "loop.py");
    PrintRatio("ShowLabor", "calls.dvs", "calls.py");
    return 0;
}
