// Speed of the spectrum engine, the FFTW spectrum and the filters against their yardsticks:
// the engine within 3x of an FFTW plan of the same size, the curve spectrum within 1.5x of plain
// FFTW, the filters at least as fast as scipy's sosfilt, and the first spectrum of a size within
// 1.5x of its repeat (each size timed in a fresh process, so nothing is planned beforehand).
// Ratios are printed after the table.
#include "analysis/_fft.h"
#include "analysis/curvefunctions_filters.h"
#include "analysis/curvefunctions_spectrum.h"
#include "analysis/curvestore.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
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
    fftw_plan plan = fftw_plan_dft_1d(kEnginePoints, in, out, FFTW_BACKWARD, FFTW_MEASURE);
    const std::vector<double> data = Noise(2 * kEnginePoints);
    for (auto _ : state) {
        std::copy(data.begin(), data.end(), &in[0][0]);
        fftw_execute(plan);
        benchmark::DoNotOptimize(out);
    }
    fftw_destroy_plan(plan);
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
    fftw_set_timelimit(5.0);
    fftw_plan plan = fftw_plan_dft_r2c_1d(kCurvePoints, in, out, FFTW_MEASURE);
    const std::vector<double> data = Noise(kCurvePoints);
    for (auto _ : state) {
        std::copy(data.begin(), data.end(), in);
        fftw_execute(plan);
        benchmark::DoNotOptimize(out);
    }
    fftw_destroy_plan(plan);
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

// In a fresh process: the first spectrum of 2^log2 points, then the median of three repeats,
// both in seconds of wall time (what the user waits).
int RunFirstCall(int log2)
{
    FillCurve(1 << log2);
    ScopeSettings()._FFTWindow = 0;
    auto spectrum = [] { benchmark::DoNotOptimize(FastFourierTransformation(1, 10000).a.data()); };
    const double first = Seconds(spectrum);
    double repeats[3];
    for (double& r : repeats) r = Seconds(spectrum);
    std::sort(std::begin(repeats), std::end(repeats));
    std::printf("%d %.9f %.9f\n", log2, first, repeats[1]);
    return 0;
}

void PrintFirstCalls()
{
    std::printf("\nFirst spectrum of a size (fresh process) vs its repeat\n");
    for (int log2 : kFirstCallSizes) {
        const std::string command = std::filesystem::read_symlink("/proc/self/exe").string() + " " + kFirstCallOption +
                                    std::to_string(log2);
        std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
        int size = 0;
        double first = 0, repeat = 0;
        if (!pipe || std::fscanf(pipe.get(), "%d %lf %lf", &size, &first, &repeat) != 3) {
            std::printf("FastFourierTransformation 2^%d first call unavailable\n", log2);
            continue;
        }
        const double ratio = first / repeat;
        std::printf("%-44s %10.1f us vs %10.1f us  ratio %6.2f  target <= 1.50  %s\n",
                    ("FastFourierTransformation 2^" + std::to_string(size) + " first vs repeat").c_str(),
                    first * 1e6, repeat * 1e6, ratio, ratio <= 1.5 ? "met" : "MISSED");
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
        return RunFirstCall(std::atoi(argv[1] + std::strlen(kFirstCallOption)));
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
