#include "analysis/kernels.h"
#include "tests/analysis/edge_oracle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace dv::analysis::test {
namespace {

bool SameNumber(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

TEST(EdgeSearchTest, BlockSkippingEqualsTheLiteralStepOnEverySmallCurve)
{
    std::mt19937 rng(99);
    std::uniform_int_distribution<int> level(0, 4);  // samples land on the levels often
    std::bernoulli_distribution coin;
    int withEdges = 0;
    for (int n = 0; n <= 40; ++n) {
        for (int trial = 0; trial < 60; ++trial) {
            std::vector<double> x(n), y(n);
            for (int i = 0; i < n; ++i) {
                x[i] = i * 0.5;
                // Long flat stretches so that whole blocks are skipped between edges.
                y[i] = (i > 0 && coin(rng) && coin(rng)) ? level(rng) : (i > 0 ? y[i - 1] : 0.0);
            }
            TEdgeQuery q;
            q.startLevel = level(rng);
            q.stopLevel = coin(rng) ? q.startLevel : level(rng) + 0.5;
            q.startRising = coin(rng);
            q.stopRising = coin(rng);
            q.startNeedsEdge = coin(rng);
            q.count = static_cast<int>(rng() % 4);
            const int from = n ? static_cast<int>(rng() % static_cast<unsigned>(n)) : 0;
            const int to = n - 1 - (n > 1 ? static_cast<int>(rng() % 3) : 0);
            for (TImpulsMode mode : {imTime, imFreq, imPhase, imCount, imDutyCycle}) {
                q.mode = mode;
                Marks fast, literal;
                const double a = kernels::TimeDifference(x, y, from, to, q, fast);
                const double b = LiteralTimeDifference(x, y, from, to, q, literal);
                ASSERT_TRUE(SameNumber(a, b)) << "n=" << n << " trial=" << trial << " mode=" << mode
                                              << ": " << a << " vs " << b;
                ASSERT_EQ(fast.size(), literal.size()) << "n=" << n << " trial=" << trial;
                for (std::size_t k = 0; k < fast.size(); ++k) {
                    ASSERT_TRUE(SameNumber(fast[k].x, literal[k].x)) << "mark " << k;
                }
                withEdges += !literal.empty();
            }
        }
    }
    EXPECT_GT(withEdges, 1000);  // the sweep really exercises edges
}

}  // namespace
}  // namespace dv::analysis::test

namespace dv::analysis::test {
namespace {

TEST(PeakScanTest, EqualsARunningScanWithStrictComparisons)
{
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> value(-3, 3);  // zeros and ties are common
    for (int n = 0; n <= 20; ++n) {
        for (int trial = 0; trial < 50; ++trial) {
            std::vector<double> x(n), y(n);
            for (int i = 0; i < n; ++i) {
                x[i] = i;
                y[i] = value(rng);
            }
            kernels::TPeakScan expected{1.7976931348623157e308, 0, -1.7976931348623157e308, 0};
            for (int i = 0; i < n; ++i) {
                if (y[i] == 0.0) continue;
                if (y[i] > expected.max) expected.max = y[i], expected.maxX = x[i];
                if (y[i] < expected.min) expected.min = y[i], expected.minX = x[i];
            }
            const kernels::TPeakScan got = kernels::ScanPeaks(x, y, 0, n - 1);
            ASSERT_EQ(got.max, expected.max) << n;
            ASSERT_EQ(got.maxX, expected.maxX) << n;
            ASSERT_EQ(got.min, expected.min) << n;
            ASSERT_EQ(got.minX, expected.minX) << n;
        }
    }
}

}  // namespace
}  // namespace dv::analysis::test
