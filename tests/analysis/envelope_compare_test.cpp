#include "analysis/curvefunctions.h"
#include "analysis/kernels.h"
#include "scope/envelopefile.h"
#include "tests/analysis/envelope_oracle.h"
#include "tests/analysis/scopefixture.h"

#include <QTemporaryDir>

#include <algorithm>
#include <random>

namespace dv::analysis::test {
namespace {

using kernels::FirstEnvelopeViolation;

struct TRandomCurves {
    std::mt19937 rng{12345};

    // Values on a coarse grid so that samples fall on envelope points and touch envelope values.
    std::vector<double> Grid(int n, double step, int range)
    {
        std::uniform_int_distribution<int> pick(-range, range);
        std::vector<double> v(static_cast<std::size_t>(n));
        for (double& e : v) e = pick(rng) * step;
        return v;
    }
    std::vector<double> Sorted(std::vector<double> v)
    {
        std::sort(v.begin(), v.end());
        return v;
    }
};

void ExpectSameAsWalk(const std::vector<double>& x, const std::vector<double>& y,
                      const std::vector<double>& ex, const std::vector<double>& ey, int from, int to,
                      const char* what)
{
    for (bool upper : {true, false}) {
        ASSERT_EQ(FirstEnvelopeViolation(x, y, from, to, ex, ey, upper),
                  LiteralEnvelopeWalk(x, y, from, to, ex, ey, upper))
            << what << " upper=" << upper << " n=" << x.size() << " m=" << ex.size()
            << " from=" << from << " to=" << to;
    }
}

TEST(EnvelopeCompareTest, FastWalkEqualsLiteralWalkOnEverySmallSize)
{
    TRandomCurves r;
    for (int n = 0; n <= 9; ++n) {
        for (int m = 0; m <= 9; ++m) {
            for (int trial = 0; trial < 40; ++trial) {
                const auto ex = r.Sorted(r.Grid(m, 0.5, 6));
                const auto ey = r.Grid(m, 1.0, 3);
                const auto y = r.Grid(n, 1.0, 3);
                const int from = n == 0 ? 0 : static_cast<int>(r.rng() % static_cast<unsigned>(n));
                const int to = n - 1 - (n == 0 ? 0 : static_cast<int>(r.rng() % 2));
                ExpectSameAsWalk(r.Sorted(r.Grid(n, 0.25, 14)), y, ex, ey, from, to, "sorted");
                ExpectSameAsWalk(r.Grid(n, 0.25, 14), y, ex, ey, from, to, "unordered times");
                ExpectSameAsWalk(r.Grid(n, 0.25, 14), y, r.Grid(m, 0.5, 6), ey, from, to,
                                 "unordered envelope");
            }
        }
    }
}

TEST(EnvelopeCompareTest, FastWalkEqualsLiteralWalkOnLongRandomCurves)
{
    TRandomCurves r;
    std::normal_distribution<double> noise(0.0, 1.0);
    for (int trial = 0; trial < 20; ++trial) {
        const int n = 3000, m = 40;
        std::vector<double> x(n), y(n), ex(m), ey(m), ly(m);
        for (int i = 0; i < n; ++i) {
            x[i] = i * 0.01;
            y[i] = std::sin(x[i]) + 0.02 * noise(r.rng);
        }
        for (int j = 0; j < m; ++j) {
            ex[j] = -1 + j * 0.8 + 0.3 * noise(r.rng) * (j % 3 == 0);  // some out of order
            ey[j] = std::sin(ex[j]) + 0.05 + 0.01 * trial;
            ly[j] = ey[j] - 0.1 - 0.01 * trial;
        }
        if (trial % 2 == 0) std::sort(ex.begin(), ex.end());
        ExpectSameAsWalk(x, y, ex, ey, 0, n - 1, "noisy sine, upper data");
        ExpectSameAsWalk(x, y, ex, ly, 5, n - 7, "noisy sine, lower data");
    }
}

class EnvelopeTestOnScope : public ScopeTest {
protected:
    QTemporaryDir dir;
    QString SaveEnvelope(std::vector<double> ex, std::vector<double> upper, std::vector<double> lower)
    {
        Store().Assign(kUpperEnvelope, ex, std::move(upper));
        Store().Assign(kLowerEnvelope, std::move(ex), std::move(lower));
        const QString file = dir.filePath("band.HKV");
        scope::SaveHK(Store(), file);
        Store().Clear(kUpperEnvelope);
        Store().Clear(kLowerEnvelope);
        return file;
    }
};

TEST_F(EnvelopeTestOnScope, TouchingPassesAndTheFirstOffenderIsMarked)
{
    const QString file = SaveEnvelope({0, 4, 8, 12}, {2, 2, 4, 4}, {0, 0, -1, -1});
    SetCurve(1, {1, 2, 0, 1, 2, -0.25, 3, 3.5});  // touches both envelopes exactly
    EXPECT_TRUE(Huellkurvenvergleich(1, file));
    EXPECT_TRUE(Store().Crosses().empty());
    EXPECT_EQ(Store().CurveValuesCount(kUpperEnvelope), 4);  // loaded from the file

    // Below the lower envelope at 5, above the upper one at 6 and 7.
    SetCurve(1, {1, 2, 0, 1, 2, -0.3, 3.0000001, 9});
    EXPECT_FALSE(Huellkurvenvergleich(1, file));
    ASSERT_EQ(Store().Crosses().size(), 1u);
    EXPECT_EQ(Store().Crosses()[0].x, 6.0);  // the upper envelope is tested first
    EXPECT_EQ(Store().Crosses()[0].y, 3.0000001);
}

TEST_F(EnvelopeTestOnScope, SamplesOutsideTheSpanAndShortEnvelopesAreNotTested)
{
    // Only samples strictly after 0 and before the last point's time are inside a segment.
    SetCurve(1, {99, 1, 1, 1, 99});
    EXPECT_TRUE(Huellkurvenvergleich(1, SaveEnvelope({0, 2, 4}, {2, 2, 2}, {0, 0, 0})));
    SetCurve(1, {99, 99, 99});
    EXPECT_TRUE(Huellkurvenvergleich(1, SaveEnvelope({0, 4}, {0, 0}, {0, 0})));
    EXPECT_FALSE(Huellkurvenvergleich(1, dir.filePath("none.HKV")));
}

}  // namespace
}  // namespace dv::analysis::test
