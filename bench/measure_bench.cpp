// Curve measurements on 1e6 and 1e7 samples against numpy doing the same arithmetic on the same
// data (bench/measure_numpy.py, run from here), and the envelope comparison against the literal
// walk. Prints the ratios at the end: numpy time / our time, literal time / fast time.
#include "analysis/curvefunctions.h"
#include "analysis/kernels.h"
#include "tests/analysis/envelope_oracle.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <numbers>
#include <string>
#include <vector>

namespace {

using namespace dv::analysis;

constexpr double kDt = 1e-6;
constexpr double kPulseLevel = 2.5;
constexpr int kSineCurve = 1;
constexpr int kPulseCurve = 2;

struct TCurve {
    std::vector<double> x, y;
};

// A sine with DC part and a little deterministic ripple, 1000 samples per period.
TCurve Sine(int n)
{
    TCurve c{std::vector<double>(n), std::vector<double>(n)};
    for (int i = 0; i < n; ++i) {
        c.x[i] = i * kDt;
        c.y[i] = 0.75 + 2 * std::sin(2 * std::numbers::pi * i / 1000.0 + 0.3) +
                 0.01 * std::sin(i * 0.7);
    }
    return c;
}

// A trapezoid pulse train between 0.5 and 4.5, 1000 samples per period, 30 % high.
TCurve Pulses(int n)
{
    TCurve c{std::vector<double>(n), std::vector<double>(n)};
    for (int i = 0; i < n; ++i) {
        c.x[i] = i * kDt;
        const int p = (i + 130) % 1000;
        const double up = std::min(p / 10.0, 1.0);
        const double down = std::clamp((p - 310) / 10.0, 0.0, 1.0);
        c.y[i] = 0.5 + 4 * (up - down);
    }
    return c;
}

void LoadCurves(int n)
{
    static int loaded = 0;
    if (loaded == n) return;
    TCurve s = Sine(n), p = Pulses(n);
    ScopeStore().Assign(kSineCurve, std::move(s.x), std::move(s.y));
    ScopeStore().Assign(kPulseCurve, std::move(p.x), std::move(p.y));
    ScopeStore().SetClip("", "");
    loaded = n;
}

void BM_Offset(benchmark::State& state)
{
    LoadCurves(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(KurvenOffset(kSineCurve));
}
void BM_Rms(benchmark::State& state)
{
    LoadCurves(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(KurvenEffektivwert(kSineCurve, 0.1, 1));
}
void BM_Mean(benchmark::State& state)
{
    LoadCurves(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(KurvenMittelwert(kSineCurve));
}
void BM_Peak(benchmark::State& state)
{
    LoadCurves(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(Peak(kSineCurve, PeakDiff, false, 0, 0));
}
void BM_TimeDifference(benchmark::State& state)
{
    LoadCurves(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            Zeitdifferenz(kPulseCurve, kPulseLevel, kPulseLevel, true, false, true, 1, imFreq));
    }
}
#define DV_MEASURE_SIZES ->Arg(1'000'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond)
BENCHMARK(BM_Offset) DV_MEASURE_SIZES;
BENCHMARK(BM_Rms) DV_MEASURE_SIZES;
BENCHMARK(BM_Mean) DV_MEASURE_SIZES;
BENCHMARK(BM_Peak) DV_MEASURE_SIZES;
BENCHMARK(BM_TimeDifference) DV_MEASURE_SIZES;

// A sine band of 1000 points around a 1e6-sample sine that stays inside: the whole walk runs.
struct TEnvelopeCase {
    TCurve curve, upper, lower;
};
const TEnvelopeCase& Envelope()
{
    static const TEnvelopeCase c = [] {
        TEnvelopeCase e;
        const int n = 1'000'000, m = 1000;
        auto f = [](double t) { return std::sin(2 * std::numbers::pi * 5 * t); };
        for (int i = 0; i < n; ++i) {
            e.curve.x.push_back(i * kDt);
            e.curve.y.push_back(f(i * kDt));
        }
        for (int j = 0; j < m; ++j) {
            const double t = -0.001 + j * (1.002 / (m - 1));
            e.upper.x.push_back(t);
            e.upper.y.push_back(f(t) + 0.1);
            e.lower.y.push_back(f(t) - 0.1);
        }
        return e;
    }();
    return c;
}

int EnvelopeFast()
{
    const TEnvelopeCase& e = Envelope();
    const int to = static_cast<int>(e.curve.x.size()) - 1;
    const int up = kernels::FirstEnvelopeViolation(e.curve.x, e.curve.y, 0, to, e.upper.x, e.upper.y, true);
    if (up >= 0) return up;
    return kernels::FirstEnvelopeViolation(e.curve.x, e.curve.y, 0, to, e.upper.x, e.lower.y, false);
}
int EnvelopeLiteral()
{
    const TEnvelopeCase& e = Envelope();
    const int to = static_cast<int>(e.curve.x.size()) - 1;
    const int up = test::LiteralEnvelopeWalk(e.curve.x, e.curve.y, 0, to, e.upper.x, e.upper.y, true);
    if (up >= 0) return up;
    return test::LiteralEnvelopeWalk(e.curve.x, e.curve.y, 0, to, e.upper.x, e.lower.y, false);
}
void BM_EnvelopeFast(benchmark::State& state)
{
    Envelope();
    for (auto _ : state) benchmark::DoNotOptimize(EnvelopeFast());
}
void BM_EnvelopeLiteral(benchmark::State& state)
{
    Envelope();
    for (auto _ : state) benchmark::DoNotOptimize(EnvelopeLiteral());
}
BENCHMARK(BM_EnvelopeFast)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EnvelopeLiteral)->Iterations(2)->Unit(benchmark::kMillisecond);

// CPU seconds per iteration of every benchmark run, by name (numpy is timed in CPU time too, so
// that other load on the machine does not tilt the ratio).
class TTimingReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> seconds;
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs) {
            if (r.run_type == Run::RT_Iteration && r.iterations > 0) {
                seconds[r.benchmark_name()] = r.cpu_accumulated_time / static_cast<double>(r.iterations);
            }
        }
    }
};

void WriteDoubles(const std::filesystem::path& file, const std::vector<double>& v)
{
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char*>(v.data()), static_cast<std::streamsize>(v.size() * sizeof(double)));
}

// numpy's best times for one size, by measurement name.
std::map<std::string, double> NumpyTimes(const std::filesystem::path& dir, int n)
{
    const TCurve s = Sine(n), p = Pulses(n);
    WriteDoubles(dir / ("sine_" + std::to_string(n) + ".f64"), s.y);
    WriteDoubles(dir / ("pulse_x_" + std::to_string(n) + ".f64"), p.x);
    WriteDoubles(dir / ("pulse_" + std::to_string(n) + ".f64"), p.y);
    const std::string command = "/usr/bin/python3 " DV_BENCH_DIR "/measure_numpy.py " + dir.string() +
                                " " + std::to_string(n) + " " + std::to_string(kPulseLevel);
    std::map<std::string, double> times;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return times;
    char name[64];
    int size = 0;
    double secs = 0, value = 0;
    while (std::fscanf(pipe, "%63s %d %lf %lf", name, &size, &secs, &value) == 4) {
        times[name] = secs;
        std::printf("numpy %-16s n=%-9d %10.3f ms  value %.12g\n", name, size, secs * 1e3, value);
    }
    pclose(pipe);
    return times;
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / "dvbench_measure";
    std::filesystem::create_directories(dir);
    std::map<int, std::map<std::string, double>> numpy;
    for (int n : {1'000'000, 10'000'000}) numpy[n] = NumpyTimes(dir, n);
    std::filesystem::remove_all(dir);

    TTimingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    std::printf("\nnumpy CPU time / our CPU time (target >= 1):\n");
    for (const auto& [n, times] : numpy) {
        for (const auto& [name, numpySeconds] : times) {
            const auto ours = reporter.seconds.find("BM_" + name + "/" + std::to_string(n));
            if (ours == reporter.seconds.end()) continue;
            std::printf("  %-16s n=%-9d %8.2fx  (ours %.3f ms, numpy %.3f ms)\n", name.c_str(), n,
                        numpySeconds / ours->second, ours->second * 1e3, numpySeconds * 1e3);
        }
    }
    const auto fast = reporter.seconds.find("BM_EnvelopeFast");
    const auto literal = reporter.seconds.find("BM_EnvelopeLiteral/iterations:2");
    if (fast != reporter.seconds.end() && literal != reporter.seconds.end()) {
        std::printf("Envelope, 1e6 samples, 1000 points: literal / fast = %.0fx (target >= 100), "
                    "same result: %s\n",
                    literal->second / fast->second, EnvelopeFast() == EnvelopeLiteral() ? "yes" : "NO");
    }
    benchmark::Shutdown();
    return 0;
}
