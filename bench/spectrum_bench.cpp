// Speed of the spectrum engine, the FFTW spectrum and the filters against their yardsticks:
// the engine within 3x of an FFTW plan of the same size, the curve spectrum within 1.5x of plain
// FFTW, the filters at least as fast as scipy's sosfilt, and the first FFT of a size within 1.5x
// of its repeat. The first calls are timed each in a fresh process, in wall time, two ways: a whole
// Scope call that loads a curve file of that size and takes its FFT, and FastFourierTransformation
// alone, right after the scope's loading of the file. Ratios are printed after the table.
#include "analysis/_fft.h"
#include "analysis/curvefunctions_filters.h"
#include "analysis/curvefunctions_spectrum.h"
#include "analysis/curvestore.h"
#include "analysis/fftwspectrum.h"
#include "framework/paramlist.h"
#include "host/commandcall.h"
#include "host/hostservices.h"
#include "host/runner.h"
#include "scope/curvesource.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace dv::analysis;

constexpr int kFilterSamples = 1000000;
constexpr int kEnginePoints = 4096;
constexpr int kCurvePoints = 1 << 20;

struct TFilterCase {
    const char* response;  // scipy's name
    TFilterResponse kind;
    int order;
    double f1, f2, rate;
};
const TFilterCase kFilters[] = {
    {"lowpass", TFilterResponse::LowPass, 2, 100, 0, 10000},
    {"lowpass", TFilterResponse::LowPass, 8, 100, 0, 10000},
    {"highpass", TFilterResponse::HighPass, 4, 100, 0, 10000},
    {"bandpass", TFilterResponse::BandPass, 4, 100, 400, 10000},
    {"bandpass", TFilterResponse::BandPass, 8, 100, 400, 10000},
};

std::vector<double> Noise(std::size_t count)
{
    std::mt19937 gen(7);
    std::normal_distribution<double> dist;
    std::vector<double> v(count);
    for (double& x : v) x = dist(gen);
    return v;
}

void FillCurve(int count)
{
    std::vector<double> x(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) x[static_cast<std::size_t>(i)] = i * 1e-4;
    ScopeStore().Assign(1, std::move(x), Noise(static_cast<std::size_t>(count)));
    ScopeStore().SetClip("", "");
}

std::string FilterName(const TFilterCase& c) { return std::string("Filter/") + c.response + "/" + std::to_string(c.order); }

void BM_Filter(benchmark::State& state, TFilterCase c)
{
    FillCurve(kFilterSamples);
    for (auto _ : state) {
        std::vector<double> out = FilterCurve(1, c.kind, c.f1, c.f2, c.rate, c.order);
        benchmark::DoNotOptimize(out.data());
    }
}

void BM_EngineFft(benchmark::State& state)
{
    int n = kEnginePoints;
    FFTSetDataNr(n);
    FFTReal = 0;
    FFTWindow = 0;
    FFTGetMem();
    const std::vector<double> data = Noise(2 * kEnginePoints);
    for (auto _ : state) {
        std::copy(data.begin(), data.end(), FFTData->begin());
        FFT(false);
        benchmark::DoNotOptimize(FFTTrans->data());
    }
    FFTFreeMem();
}

void BM_FftwComplex(benchmark::State& state)
{
    fftw_complex* in = fftw_alloc_complex(kEnginePoints);
    fftw_complex* out = fftw_alloc_complex(kEnginePoints);
    fftw_plan plan = [&] {
        const auto planner = LockFftwPlanner();
        return fftw_plan_dft_1d(kEnginePoints, in, out, FFTW_BACKWARD, FFTW_MEASURE);
    }();
    const std::vector<double> data = Noise(2 * kEnginePoints);
    for (auto _ : state) {
        std::copy(data.begin(), data.end(), &in[0][0]);
        fftw_execute(plan);
        benchmark::DoNotOptimize(out);
    }
    {
        const auto planner = LockFftwPlanner();
        fftw_destroy_plan(plan);
    }
    fftw_free(in);
    fftw_free(out);
}

void BM_CurveSpectrum(benchmark::State& state)
{
    FillCurve(kCurvePoints);
    ScopeSettings()._FFTWindow = 0;
    FastFourierTransformation(1, 10000);  // the plan is made once per size, not per call
    for (auto _ : state) {
        TMemArray spectrum = FastFourierTransformation(1, 10000);
        benchmark::DoNotOptimize(spectrum.a.data());
    }
}

void BM_FftwReal(benchmark::State& state)
{
    double* in = fftw_alloc_real(kCurvePoints);
    fftw_complex* out = fftw_alloc_complex(kCurvePoints / 2 + 1);
    // The best plan FFTW finds by measuring; unlimited, that search alone takes a quarter of a
    // minute at this size.
    fftw_plan plan = [&] {
        const auto planner = LockFftwPlanner();
        fftw_set_timelimit(5.0);
        fftw_plan measured = fftw_plan_dft_r2c_1d(kCurvePoints, in, out, FFTW_MEASURE);
        fftw_set_timelimit(FFTW_NO_TIMELIMIT);
        return measured;
    }();
    const std::vector<double> data = Noise(kCurvePoints);
    for (auto _ : state) {
        std::copy(data.begin(), data.end(), in);
        fftw_execute(plan);
        benchmark::DoNotOptimize(out);
    }
    {
        const auto planner = LockFftwPlanner();
        fftw_destroy_plan(plan);
    }
    fftw_free(in);
    fftw_free(out);
}

// Keeps each benchmark's CPU time per iteration (microseconds) for the ratios: on a shared
// machine CPU time is steadier than wall time, and the scipy side is timed the same way.
class TRatioReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> micros;
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                micros[run.benchmark_name()] = run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e6;
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

// scipy's sosfilt time per filter in microseconds, from the timing script.
std::map<std::string, double> ScipyMicros()
{
    std::string command = std::string("/usr/bin/python3 ") + DV_BENCH_DIR + "/sosfilt_timing.py " + std::to_string(kFilterSamples);
    for (const TFilterCase& c : kFilters) {
        char filterArg[128];
        std::snprintf(filterArg, sizeof filterArg, " %s:%d:%g:%g:%g", c.response, c.order, c.f1, c.f2, c.rate);
        command += filterArg;
    }
    std::map<std::string, double> result;
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (!pipe) return result;
    char response[32];
    int order = 0;
    double seconds = 0;
    while (std::fscanf(pipe.get(), "%31s %d %lf", response, &order, &seconds) == 3) {
        result[std::string("Filter/") + response + "/" + std::to_string(order)] = seconds * 1e6;
    }
    return result;
}

double Seconds(auto&& call)
{
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

constexpr const char* kFirstCallOption = "--first-call=";
constexpr int kFirstCallSizes[] = {10, 16, 20, 23};  // log2 of the points

// The first calls are timed as the user meets them: in a fresh process, after the host and its
// commands exist (the library is loaded when the host starts), on a curve file of 2^log2 rows
// that the scope reads first, the way every analysis finds its curve.
enum class TFirstCallPath { ScopeCall, BareFunction };

std::string CurveFilePath(const std::string& folder, int log2) { return folder + "/kurve" + std::to_string(log2) + ".txt"; }

void WriteCurveFile(const std::string& path, int log2)
{
    std::ofstream out(path);
    const std::vector<double> y = Noise(std::size_t{1} << log2);
    char row[64];
    for (std::size_t i = 0; i < y.size(); ++i) {
        out.write(row, std::snprintf(row, sizeof row, "%.6f;%.9f\n", static_cast<double>(i) * 1e-4, y[i]));
    }
}

// The wall time (what the user waits) of the first call, then the median of three repeats; each
// call starts from the state that reset leaves (not timed).
void PrintFirstAndRepeat(int log2, auto&& call, auto&& reset)
{
    reset();
    const double first = Seconds(call);
    double repeats[3];
    for (double& r : repeats) {
        reset();
        r = Seconds(call);
    }
    std::sort(std::begin(repeats), std::end(repeats));
    std::printf("%d %.9f %.9f\n", log2, first, repeats[1]);
}

// Child process: one path, one size.
int RunFirstCall(TFirstCallPath path, int log2, const std::string& folder)
{
    // In dvrun's order: the script is parsed (which creates the commands it calls), then the
    // application object is made and the run starts.
    dv::host::THost host;
    dv::host::TScriptRun script(QStringLiteral("bench.dvs"), host);
    if (!script.Load(QStringLiteral("var R : Array of Number;\n"))) return 1;
    dv::TDVThreadRunEdit* scope = host.Commands().ForProcedure(QStringLiteral("Scope"));
    int argc = 1;
    char name[] = "dvbench_spectrum";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    script.Run();
    const QString file = QString::fromStdString(CurveFilePath(folder, log2));
    const std::size_t lines = (std::size_t{1} << log2) / 2 + 1;
    if (path == TFirstCallPath::ScopeCall) {
        dv::TParamList params;
        params.AddString(QStringLiteral("Command"), "[CLR],[HIDE],1:[FILE:" + file + "],[FX:FFT:10000:1],[OUT:R]");
        params.AddString(QStringLiteral("Special"), QString());
        // Every call writes into an empty result array, as the first one does.
        auto emptyResult = [&] { host.SetVariable(QStringLiteral("R"), std::make_unique<dv::TArrayValue>(dv::TValueKind::Number)); };
        PrintFirstAndRepeat(log2, [&] { dv::host::RunCommandBody(*scope, nullptr, params); }, emptyResult);
        const auto* r = dynamic_cast<const dv::TArrayValue*>(&host.FindVariable(QStringLiteral("R"))->GetValue());
        return r != nullptr && static_cast<std::size_t>(r->GetSize()) == lines - 1 ? 0 : 1;
    }
    // Each call right after the curve is loaded as the scope loads it for its FFT, so that the
    // repeats, too, find the caches as a scope call leaves them.
    auto load = [&] {
        QString curveName;
        dv::scope::DrawCurve(ScopeStore(), 1, "FILE:" + file, curveName, true);
        ScopeStore().SetClip("", "");
    };
    std::size_t got = 0;
    PrintFirstAndRepeat(log2, [&] { got = FastFourierTransformation(1, 10000).a.size(); }, load);
    return got == lines ? 0 : 1;
}

// One child process: its first call and median repeat, or nothing when it failed.
std::optional<std::pair<double, double>> FirstCallInFreshProcess(const char* path, int log2, const std::string& folder)
{
    const std::string command = std::filesystem::read_symlink("/proc/self/exe").string() + " " + kFirstCallOption + path + ":" +
                                std::to_string(log2) + ":" + folder;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return std::nullopt;
    int size = 0;
    double first = 0, repeat = 0;
    const bool read = std::fscanf(pipe, "%d %lf %lf", &size, &first, &repeat) == 3;
    if (pclose(pipe) != 0 || !read) return std::nullopt;
    return std::pair{first, repeat};
}

void PrintFirstCalls()
{
    // Each size in three fresh processes; the medians of their first calls and repeats are
    // compared, so that one process slowed down by the machine's other work does not decide.
    constexpr int kProcesses = 3;
    QTemporaryDir folder;
    for (int log2 : kFirstCallSizes) WriteCurveFile(CurveFilePath(folder.path().toStdString(), log2), log2);
    std::printf("\nFirst FFT of a size (fresh process) vs its repeat, wall time, medians of %d processes\n", kProcesses);
    for (const char* path : {"scope", "bare"}) {
        for (int log2 : kFirstCallSizes) {
            const std::string what = std::string(path[0] == 's' ? "Scope call, FILE 2^" : "FastFourierTransformation 2^") +
                                     std::to_string(log2) + " first vs repeat";
            std::vector<double> firsts, repeats;
            for (int p = 0; p < kProcesses; ++p) {
                if (const auto times = FirstCallInFreshProcess(path, log2, folder.path().toStdString())) {
                    firsts.push_back(times->first);
                    repeats.push_back(times->second);
                }
            }
            if (firsts.size() != kProcesses) {
                std::printf("%-44s first call unavailable\n", what.c_str());
                continue;
            }
            std::ranges::sort(firsts);
            std::ranges::sort(repeats);
            const double first = firsts[kProcesses / 2], repeat = repeats[kProcesses / 2];
            const double ratio = first / repeat;
            std::printf("%-44s %10.1f us vs %10.1f us  ratio %6.2f  target <= 1.50  %s\n", what.c_str(), first * 1e6,
                        repeat * 1e6, ratio, ratio <= 1.5 ? "met" : "MISSED");
        }
    }
}

void PrintRatio(const char* what, double ours, double theirs, double target, bool atMost)
{
    const double ratio = ours / theirs;
    const bool met = atMost ? ratio <= target : ratio >= target;
    std::printf("%-44s %10.1f us vs %10.1f us  ratio %6.2f  target %s %.2f  %s\n", what, ours, theirs, ratio,
                atMost ? "<=" : ">=", target, met ? "met" : "MISSED");
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && std::strncmp(argv[1], kFirstCallOption, std::strlen(kFirstCallOption)) == 0) {
        // --first-call=scope|bare:LOG2:FOLDER
        const QStringList parts = QString::fromLocal8Bit(argv[1] + std::strlen(kFirstCallOption)).split(':');
        if (parts.size() != 3) return 2;
        return RunFirstCall(parts[0] == "scope" ? TFirstCallPath::ScopeCall : TFirstCallPath::BareFunction, parts[1].toInt(),
                            parts[2].toStdString());
    }
    for (const TFilterCase& c : kFilters) {
        benchmark::RegisterBenchmark(FilterName(c).c_str(), BM_Filter, c)->Unit(benchmark::kMicrosecond);
    }
    benchmark::RegisterBenchmark("EngineFft/4096", BM_EngineFft)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("FftwComplex/4096", BM_FftwComplex)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("CurveSpectrum/1048576", BM_CurveSpectrum)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("FftwReal/1048576", BM_FftwReal)->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    TRatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const std::map<std::string, double> scipy = ScipyMicros();
    std::printf("\nRatios (speed-up over scipy: its time / ours; others: ours / reference)\n");
    for (const TFilterCase& c : kFilters) {
        const std::string name = FilterName(c);
        if (!reporter.micros.count(name)) continue;
        if (!scipy.count(name)) {
            std::printf("%-44s scipy timing unavailable\n", name.c_str());
            continue;
        }
        const double ours = reporter.micros.at(name);
        const double theirs = scipy.at(name);
        std::printf("%-44s %10.1f us vs %10.1f us  speed-up %6.2f  target >= 1.00  %s\n",
                    (name + " vs scipy sosfilt").c_str(), ours, theirs, theirs / ours, theirs >= ours ? "met" : "MISSED");
    }
    auto both = [&](const char* a, const char* b) { return reporter.micros.count(a) && reporter.micros.count(b); };
    if (both("EngineFft/4096", "FftwComplex/4096")) {
        PrintRatio("_Fft 4096 vs FFTW measured plan", reporter.micros.at("EngineFft/4096"),
                   reporter.micros.at("FftwComplex/4096"), 3.0, true);
    }
    if (both("CurveSpectrum/1048576", "FftwReal/1048576")) {
        PrintRatio("FastFourierTransformation 2^20 vs plain FFTW", reporter.micros.at("CurveSpectrum/1048576"),
                   reporter.micros.at("FftwReal/1048576"), 1.5, true);
    }
    PrintFirstCalls();
    return 0;
}
