// The interpreter against Lua 5.4 (global and local variables) and CPython on the same work: a
// counting loop, calls of a script procedure, calls of a library command. Each side is timed inside
// its own interpreter (no process start-up) in CPU time, which other processes on a busy machine
// disturb less than wall-clock time, best of several runs; the ratios are printed last, with the
// time ArrayToStr takes for a large array and the peak memory of dvrun with an Array of Number.
#include "host/hostservices.h"
#include "host/runner.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QProcess>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

constexpr int kRuns = 7;

QString BenchFile(const char* name) { return QStringLiteral(DV_BENCH_DIR "/") + QString::fromLatin1(name); }

QString ReadBenchFile(const char* name)
{
    QFile f(BenchFile(name));
    f.open(QIODevice::ReadOnly);
    return QString::fromUtf8(f.readAll());
}

double CpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

// CPU seconds of one run of a script, parsing excluded; `log` gets the script's Log lines.
double RunScriptOnce(const QString& text, QStringList* log = nullptr)
{
    dv::host::THost host;
    host.SetOutput(
        [log](const QString& line) {
            if (log) *log << line;
        },
        {});
    dv::host::TScriptRun run(QStringLiteral("bench.dvs"), host);
    if (!run.Load(text)) std::abort();
    const double start = CpuSeconds();
    run.Run();
    const double seconds = CpuSeconds() - start;
    if (run.Report().exitCode != 0) std::abort();
    return seconds;
}

// The seconds another interpreter printed as the first word of its output; negative when it is
// not installed.
double RunOtherOnce(const char* program, const char* script)
{
    QProcess p;
    p.start(QString::fromLatin1(program), {BenchFile(script)});
    if (!p.waitForFinished(-1) || p.exitCode() != 0) return -1;
    return p.readAllStandardOutput().simplified().split(' ').value(0).toDouble();
}

template <class F>
double Best(F f)
{
    double best = 1e9;
    for (int i = 0; i < kRuns; ++i) best = std::min(best, f());
    return best;
}

void Script(benchmark::State& state, const char* file)
{
    const QString text = ReadBenchFile(file);
    for (auto _ : state) state.SetIterationTime(RunScriptOnce(text));
}

BENCHMARK_CAPTURE(Script, loop_1e6, "loop.dvs")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Script, procedures_1e5, "procedures.dvs")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Script, ShowLabor_1e5, "command_calls.dvs")->UseManualTime()->Unit(benchmark::kMillisecond);

struct TOther {
    const char* label;
    const char* program;
    const char* script;
};

// One line: our time, then each other interpreter's with the ratio ours/theirs.
void PrintComparison(const char* what, const char* script, std::initializer_list<TOther> others)
{
    const QString text = ReadBenchFile(script);
    const double ours = Best([&] { return RunScriptOnce(text); });
    std::printf("%-22s dvrun %7.2f ms", what, ours * 1e3);
    for (const TOther& o : others) {
        const double theirs = Best([&] { return RunOtherOnce(o.program, o.script); });
        if (theirs <= 0) {
            std::printf(" | %s: not installed", o.label);
        } else {
            std::printf(" | %s %7.2f ms, ratio %.2f", o.label, theirs * 1e3, ours / theirs);
        }
    }
    std::printf("\n");
}

// The milliseconds the script logs as its last line (a call timed inside the script).
void PrintLoggedTime(const char* what, const char* script)
{
    const QString text = ReadBenchFile(script);
    const double best = Best([&] {
        QStringList log;
        RunScriptOnce(text, &log);
        return log.value(log.size() - 1).toDouble();
    });
    std::printf("%-22s %7.2f ms\n", what, best);
}

// The peak resident memory (KB) of dvrun running a script with the given --define. A child's peak
// starts from its parent's resident memory at fork time, so this is measured before the benchmarks
// make this process large.
long PeakMemoryKb(const char* script, const char* define)
{
    const pid_t child = fork();
    if (child == 0) {
        const QByteArray path = BenchFile(script).toLocal8Bit();
        execl(DV_DVRUN, DV_DVRUN, "--define", define, path.constData(), static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        return -1;
    }
    return usage.ru_maxrss;
}

struct TArrayMemory {
    long oneKb;
    long millionKb;
};

TArrayMemory MeasureArrayMemory()
{
    return {PeakMemoryKb("array_memory.dvs", "N=1"), PeakMemoryKb("array_memory.dvs", "N=1000000")};
}

void PrintArrayMemory(const TArrayMemory& m)
{
    if (m.oneKb < 0 || m.millionKb < 0) {
        std::printf("Array of Number 1e6    dvrun failed\n");
        return;
    }
    const auto mb = [](long kb) { return static_cast<double>(kb) / 1024.0; };
    std::printf("Array of Number 1e6    peak memory of dvrun %.1f MB, with one element %.1f MB: %.1f MB for the "
                "array\n",
                mb(m.millionKb), mb(m.oneKb), mb(m.millionKb - m.oneKb));
}

}  // namespace

int main(int argc, char** argv)
{
    const TArrayMemory memory = MeasureArrayMemory();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    PrintComparison("loop 1e6", "loop.dvs",
                    {{"lua5.4 globals", "lua5.4", "loop_globals.lua"},
                     {"lua5.4 locals", "lua5.4", "loop_locals.lua"},
                     {"python3", "/usr/bin/python3", "loop.py"}});
    PrintComparison("procedure calls 1e5", "procedures.dvs",
                    {{"lua5.4 globals", "lua5.4", "procedures_globals.lua"},
                     {"lua5.4 locals", "lua5.4", "procedures_locals.lua"},
                     {"python3", "/usr/bin/python3", "procedures.py"}});
    PrintComparison("ShowLabor calls 1e5", "command_calls.dvs", {{"python3", "/usr/bin/python3", "command_calls.py"}});
    PrintLoggedTime("ArrayToStr 1.3e6", "arraytostr.dvs");
    PrintArrayMemory(memory);
    return 0;
}
