// The fast kernels (block-skipping edge search, branch-free peak scan, linear-time extrema,
// envelope walk) swept over every small size and random data against their literal versions.
#include "analysis/extrema.h"
#include "analysis/kernels.h"
#include "tests/analysis/envelope_oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace dv::analysis::test {
namespace {

using kernels::CrossingTime;
using kernels::Marks;
using Curve = std::vector<double>;

// The edge search of the time-difference measurements, stepped sample by sample.
double LiteralTimeDifference(const Curve& x, const Curve& y, int from, int to,
                             const kernels::TEdgeQuery& q, Marks& marks)
{
    double tStart = from < int(x.size()) ? x[from] : 0.0, tStop = tStart, tFirst = tStart, high = 0;
    int periods = 0;
    bool started = false;
    for (int i = std::max(from, 1); i <= to - 1; ++i) {  // each step reads the sample before it
        const double x1 = x[i - 1], y1 = y[i - 1], x2 = x[i], y2 = y[i];
        const double stop = q.stopLevel, start = q.startLevel;
        if (started && (q.stopRising ? y1 <= stop && stop <= y2 : y1 >= stop && stop >= y2)) {
            tStop = CrossingTime(x1, y1, x2, y2, stop, marks);
            if (q.mode == imTime && q.count <= periods) break;
        }
        // Before the first start edge a curve that already starts beyond the level may count.
        const bool edge = started || q.startNeedsEdge;
        if (q.startRising ? (!edge || y1 <= start) && start <= y2
                          : (!edge || y1 >= start) && start >= y2) {
            if (!started || tStart < tStop) ++periods, high += tStop - tStart;
            tStart = CrossingTime(x1, y1, x2, y2, start, marks);
            if (!started) tFirst = tStart, started = true;
            if (q.mode == imPhase) return tStart;
        }
    }
    if (q.mode == imTime) return tStop - tStart;
    if (q.mode == imCount) return periods;
    if (periods < 2) return 0;
    if (q.mode == imDutyCycle) return high * 100 / (tStart - tFirst);
    return q.mode == imFreq ? (periods - 1) / (tStart - tFirst) : 0;
}

// The local extremum rule read literally: point i is a local maximum when no taking part point
// within its window lies above it, none before it lies level with it, and it stands at least
// epsilon above the window's lowest one. Only points with finite time and value take part.
std::vector<int> LiteralExtrema(const Curve& x, const Curve& y, TExtremumKind kind, double window,
                                double epsilon)
{
    const double sign = kind == TExtremumKind::Maximum ? 1 : -1;
    auto takesPart = [&](std::size_t i) { return std::isfinite(x[i]) && std::isfinite(y[i]); };
    std::vector<int> found;
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (!takesPart(i)) continue;
        bool highest = true;
        double lowest = sign * y[i];
        for (std::size_t j = 0; j < x.size(); ++j) {
            if (j == i || !takesPart(j) || !(std::abs(x[j] - x[i]) <= window)) continue;
            const double a = sign * y[j], b = sign * y[i];
            if (a > b || (a == b && j < i)) highest = false;
            lowest = std::min(lowest, a);
        }
        if (highest && sign * y[i] - lowest >= epsilon) found.push_back(int(i));
    }
    return found;
}

bool Same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

// The fast edge search against the literal step in every mode: results and crosses alike.
// withEdges counts the modes that found an edge.
::testing::AssertionResult SameEdgesInEveryMode(const Curve& x, const Curve& y, int from, int to,
                                                kernels::TEdgeQuery q, int& withEdges)
{
    for (TImpulsMode mode : {imTime, imFreq, imPhase, imCount, imDutyCycle}) {
        q.mode = mode;
        Marks fast, literal;
        const double a = kernels::TimeDifference(x, y, from, to, q, fast);
        const double b = LiteralTimeDifference(x, y, from, to, q, literal);
        auto sameTime = [](TPoint f, TPoint l) { return Same(f.x, l.x); };
        if (!(Same(a, b) && std::ranges::equal(fast, literal, sameTime))) {
            return ::testing::AssertionFailure()
                   << "n=" << x.size() << " mode=" << mode << ": " << a << " vs " << b;
        }
        withEdges += !literal.empty();
    }
    return ::testing::AssertionSuccess();
}

// Level curves with long flat stretches, so that whole blocks are skipped between edges, and
// repeated times; zeros, ties and plateaus are common.
TEST(KernelOracleTest, EdgeSearchPeakScanAndExtremaEqualTheLiteralVersions)
{
    constexpr double big = std::numeric_limits<double>::max();
    std::mt19937 rng(99);
    std::uniform_int_distribution<int> level(-2, 2);
    std::bernoulli_distribution coin;
    int withEdges = 0;
    for (int trial = 0; trial < 41 * 60; ++trial) {  // every n of 0 .. 40, 60 times
        const int n = trial / 60;
        Curve x(n), y(n);
        for (int i = 1; i < n; ++i) {
            x[i] = x[i - 1] + (coin(rng) || coin(rng)) * 0.5;
            y[i] = coin(rng) && coin(rng) ? level(rng) : y[i - 1];
        }
        kernels::TEdgeQuery q{double(level(rng)), 0, coin(rng), coin(rng), coin(rng)};
        q.stopLevel = coin(rng) ? q.startLevel : level(rng) + 0.5;
        q.count = int(rng() % 4);
        const int from = n ? int(rng() % unsigned(n)) : 0, to = n - 1 - int(n > 1 ? rng() % 3 : 0);
        ASSERT_TRUE(SameEdgesInEveryMode(x, y, from, to, q, withEdges)) << "trial=" << trial;
        kernels::TPeakScan want{big, 0, -big, 0};
        for (int i = from; i <= to; ++i) {
            if (y[i] != 0.0 && y[i] > want.max) want.max = y[i], want.maxX = x[i];
            if (y[i] != 0.0 && y[i] < want.min) want.min = y[i], want.minX = x[i];
        }
        const kernels::TPeakScan got = kernels::ScanPeaks(x, y, from, to);
        ASSERT_EQ(Curve({got.min, got.minX, got.max, got.maxX}),
                  Curve({want.min, want.minX, want.max, want.maxX})) << n;
        for (double window : {0.0, 0.5, 1.0, 2.5, 1e300}) {
            for (auto kind : {TExtremumKind::Maximum, TExtremumKind::Minimum}) {
                const double epsilon = trial % 2 ? 1.5 : 0.0;
                ASSERT_EQ(FindAllExtrema(x, y, kind, window, epsilon),
                          LiteralExtrema(x, y, kind, window, epsilon))
                    << "trial=" << trial << " window=" << window;
            }
        }
    }
    EXPECT_GT(withEdges, 1000);  // the sweep really exercises edges
}

// Curves long enough for many skipped blocks, with NaN and infinite samples and times dropped in,
// levels between the sample values and on them, and times ascending with repeats or in no order.
TEST(KernelOracleTest, EdgeSearchAndExtremaEqualTheLiteralFormsForEveryInput)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const double odd[] = {nan, inf, -inf};
    const double levels[] = {-1, 0, 0.25, 1, -0.7, 1.5, nan};
    std::mt19937 rng(2024);
    std::bernoulli_distribution coin, rare(0.03);
    std::uniform_real_distribution<double> wave(-1.5, 1.5);
    auto pick = [&rng](const auto& table) { return table[rng() % std::size(table)]; };
    for (int trial = 0; trial < 1200; ++trial) {
        const int n = int(rng() % 200);
        const bool sorted = trial % 3 != 0, smooth = trial % 2 == 0;
        Curve x(n), y(n);
        for (int i = 0; i < n; ++i) {
            x[i] = sorted ? (i ? x[i - 1] + coin(rng) * 0.5 : 0.0) : wave(rng);
            // Flat stretches (whole blocks clear of a level) or a noisy wave.
            y[i] = smooth ? (i && !rare(rng) ? y[i - 1] : std::round(wave(rng))) : wave(rng);
            if (rare(rng)) y[i] = pick(odd);
            if (rare(rng)) x[i] = pick(odd);
        }
        kernels::TEdgeQuery q{pick(levels), pick(levels), coin(rng), coin(rng), coin(rng)};
        q.count = int(rng() % 4);
        const int from = n ? int(rng() % unsigned(n)) : 0, to = n - 1 - int(n > 1 ? rng() % 3 : 0);
        int withEdges = 0;
        ASSERT_TRUE(SameEdgesInEveryMode(x, y, from, to, q, withEdges)) << "trial=" << trial;
        const double windows[] = {0.0, 0.3, 1.0, -1.0, nan, inf}, epsilons[] = {0.0, 0.4, 2.0, nan};
        const double window = pick(windows), epsilon = pick(epsilons);
        for (auto kind : {TExtremumKind::Maximum, TExtremumKind::Minimum}) {
            ASSERT_EQ(FindAllExtrema(x, y, kind, window, epsilon), LiteralExtrema(x, y, kind, window, epsilon))
                << "trial=" << trial << " window=" << window << " epsilon=" << epsilon;
        }
    }
}

// Hand-worked: a NaN after the rising edge of the first block must not hide that edge.
TEST(KernelOracleTest, NaNAfterAnEdgeInTheSameBlockKeepsTheEdge)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    struct TRow {
        Curve y;
        double count;
    };
    Curve nanAfterRise = {-1, 1, 1, 1, 1, nan, nan, nan, nan};
    nanAfterRise.resize(40, 1.0);
    Curve risesTwice = nanAfterRise;
    risesTwice[30] = -1;
    const TRow rows[] = {{nanAfterRise, 1}, {risesTwice, 2}};
    for (const TRow& r : rows) {
        Curve x(r.y.size());
        for (std::size_t i = 0; i < x.size(); ++i) x[i] = double(i);
        const kernels::TEdgeQuery q{0, 0, true, true, true, 1, imCount};
        Marks marks;
        EXPECT_EQ(kernels::TimeDifference(x, r.y, 0, int(x.size()) - 1, q, marks), r.count);
    }
}

// Sorted and unordered sample and envelope times; values on a coarse grid, so that samples fall
// on envelope points and touch envelope values.
TEST(KernelOracleTest, EnvelopeComparisonEqualsTheLiteralWalk)
{
    std::mt19937 rng(12345);
    auto grid = [&rng](int n, double step, int range, bool sorted) {
        std::uniform_int_distribution<int> pick(-range, range);
        Curve v(n);
        for (double& e : v) e = pick(rng) * step;
        if (sorted) std::sort(v.begin(), v.end());
        return v;
    };
    for (int trial = 0; trial < 12000; ++trial) {  // every n and m of 0 .. 9, 120 times
        const int n = trial % 10, m = trial / 10 % 10;
        const Curve x = grid(n, 0.25, 14, trial % 3 != 0), y = grid(n, 1.0, 3, false);
        const Curve ex = grid(m, 0.5, 6, trial % 3 != 1), ey = grid(m, 1.0, 3, false);
        const int from = n ? int(rng() % unsigned(n)) : 0, to = n - 1 - (n ? int(rng() % 2) : 0);
        for (bool upper : {true, false}) {
            ASSERT_EQ(kernels::FirstEnvelopeViolation(x, y, from, to, ex, ey, upper),
                      LiteralEnvelopeWalk(x, y, from, to, ex, ey, upper))
                << "upper=" << upper << " n=" << n << " m=" << m << " trial=" << trial;
        }
    }
}

}  // namespace
}  // namespace dv::analysis::test
