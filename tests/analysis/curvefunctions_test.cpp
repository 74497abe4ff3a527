// Hand-worked cases of the curve measurements: edge cases, kept quirks, marks and unit state.
#include "analysis/curvefunctions.h"
#include "framework/exceptions.h"
#include "tests/analysis/scopefixture.h"

#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

namespace dv::analysis::test {
namespace {

constexpr double kBig = std::numeric_limits<double>::max();

class CurveFunctionsTest : public ScopeTest {};

TEST_F(CurveFunctionsTest, EmptyAndFlatCurvesGiveZeroOrTheirStatedValue)
{
    struct Row {
        const char* what;
        std::vector<double> y;
        std::function<double()> measure;
        double expected;
    };
    const Row rows[] = {
        {"offset of three samples", {1, 2, 3}, [] { return KurvenOffset(1); }, 0},
        {"offset of a flat curve", {2, 2, 2, 2, 2}, [] { return KurvenOffset(1); }, 0},
        {"offset with one crossing", {-1, -1, 1, 1, 1}, [] { return KurvenOffset(1); }, 0},
        {"mean of nothing", {}, [] { return KurvenMittelwert(1); }, 0},
        {"rms of nothing", {}, [] { return KurvenEffektivwert(1, 0, 1); }, 0},
        {"rms of nothing, whole periods", {}, [] { return KurvenEffektivwert(1, 0, 2); }, 0},
        {"frequency of a flat curve", {1, 1, 1, 1},
         [] { return Zeitdifferenz(1, 0.5, 0.5, true, false, true, 1, imFreq); }, 0},
        {"duty cycle of one period", {0, 1, 0, 0, 0},
         [] { return Zeitdifferenz(1, 0.5, 0.5, true, false, true, 1, imDutyCycle); }, 0},
        {"phase edge of a flat curve", {1, 1, 1},
         [] { return Zeitdifferenz(1, 0.5, 0.5, true, false, true, 1, imPhase); }, 0},
        {"pulse count of nothing", {},
         [] { return Zeitdifferenz(1, 0.5, 0.5, true, false, true, 1, imCount); }, 0},
        {"local peak of a one-sample range", {4}, [] { return Peak(1, PeakMax, true, 1, 1e-5); },
         -2.0},
        {"lowest of all-zero samples", {0, 0, 0, 0}, [] { return Peak(1, PeakMin, false, 0, 0); },
         kBig},
        {"highest of all-zero samples", {0, 0, 0, 0}, [] { return Peak(1, PeakMax, false, 0, 0); },
         -kBig},
        {"phase shift against a flat curve", {}, [] { return Phasenverschiebung(1, 2, 3); }, 0},
    };
    for (const Row& r : rows) {
        SetUp();
        SetCurve(1, r.y);
        SetCurve(2, std::vector<double>(50, 1.0));
        EXPECT_EQ(r.measure(), r.expected) << r.what;
    }
    SetCurve(1, {0, 1, 2});
    EXPECT_TRUE(std::isnan(Query_XY(1, true, 10))) << "no value match";
    EXPECT_TRUE(std::isnan(Query_XY(1, false, 10))) << "no time match";
    EXPECT_THROW(KurvenOffset(9), TDravikException);
}

TEST_F(CurveFunctionsTest, OffsetCountsWholePeriodsAndTreatsZeroAsGap)
{
    // Index 0 is only ever a predecessor; the zero at the end is a gap for min/max. Counting it
    // would lower the mid level to 2 and move both crossings (mean 18.4 / 7).
    SetCurve(1, {12, 1, 2.2, 4, 1, 2.2, 4, 4, 1, 2.2, 0}, 0.5);
    EXPECT_DOUBLE_EQ(KurvenOffset(1), (4 + 1 + 2.2) / 3);
    EXPECT_EQ(RangeFrom, 1);  // the start of the range moved on by one
    EXPECT_EQ(RangeTo, 10);
    EXPECT_EQ(Store().CrossSize(), 5);
    ASSERT_EQ(Store().Crosses().size(), 2u);
    EXPECT_EQ(Store().Crosses()[0].x, 1.5);  // first rising crossing at index 3
    EXPECT_EQ(Store().Crosses()[1].x, 3.0);  // last one at index 6
    EXPECT_EQ(Store().Crosses()[1].y, 0.0);
    KurvenMittelwert(1);
    EXPECT_EQ(RangeFrom, 0);  // every function reloads the range
}

TEST_F(CurveFunctionsTest, RmsOverWholePeriodsNarrowsTheRangeToFallingCrossings)
{
    SetCurve(1, {3, -1, 3, -1, 3, -1, 3, -1, 3});
    EXPECT_DOUBLE_EQ(KurvenEffektivwert(1, 0, 1), 7.0 / 3);
    EXPECT_EQ(RangeFrom, 0);
    // Offset 1; falling crossings at 2.5 (tie: the later sample 3) and 6.5 (searched backward,
    // tie: the earlier sample 6). The RMS is about the caller's offset 0, not the curve's.
    EXPECT_DOUBLE_EQ(KurvenEffektivwert(1, 0, 2), std::sqrt(5.0));
    EXPECT_EQ(RangeFrom, 3);
    EXPECT_EQ(RangeTo, 6);
    ASSERT_EQ(Store().Crosses().size(), 2u);
    EXPECT_EQ(Store().Crosses()[0].x, 2.5);
    EXPECT_EQ(Store().Crosses()[1].x, 6.5);
    EXPECT_EQ(Store().Crosses()[1].y, 1.0);
}

TEST_F(CurveFunctionsTest, StartEdgeBeforeTheFirstMayBeTheCurveStart)
{
    SetCurve(1, {5, 5, 0, 0, 5, 5, 0});
    // Without a needed edge the first sample at or above the level starts (at its own time).
    EXPECT_DOUBLE_EQ(Zeitdifferenz(1, 2.5, 2.5, true, false, false, 1, imTime), 0.5);
    // With one the start is the rise at 3.5; no fall follows inside the range, so the stop time
    // keeps its initial value, the time of the range's first sample.
    EXPECT_DOUBLE_EQ(Zeitdifferenz(1, 2.5, 2.5, true, false, true, 1, imTime), -3.5);
    Store().ClearCrosses();
    Store().SetCross(7, 7);
    Zeitdifferenz(1, 2.5, 2.5, true, false, true, 1, imPhase);
    EXPECT_EQ(Store().Crosses().size(), 2u) << "phase mode keeps earlier crosses";
}

TEST_F(CurveFunctionsTest, QueryInterpolatesWithinTheInnerSamples)
{
    SetCurve(1, {0, 10, 20, 10});
    struct Row {
        bool yGiven;
        double value;
        double expected;  // NaN: nothing found
    };
    const Row rows[] = {
        {true, 15, 1.5},    {true, 0, 0.0},       {false, 1.25, 12.5}, {false, 0.5, 5.0},
        {false, -3, -30},   // before the first sample: the first segment extrapolates
        {false, 2.5, NAN},  // the last segment is never examined
    };
    for (const Row& r : rows) {
        const double got = Query_XY(1, r.yGiven, r.value);
        if (std::isnan(r.expected)) {
            EXPECT_TRUE(std::isnan(got)) << r.value;
        } else {
            EXPECT_DOUBLE_EQ(got, r.expected) << r.value;
        }
    }
    Store().ClearCrosses();
    Query_XY(1, true, 15);
    ASSERT_EQ(Store().Crosses().size(), 1u);
    EXPECT_EQ(Store().Crosses()[0].y, 15);
    EXPECT_EQ(Store().Crosses()[0].x, 1.5);
    SetCurve(1, {3, 3, 3, 0});
    EXPECT_EQ(Query_XY(1, true, 3), 1.0);  // a flat pair answers with its later time
}

TEST_F(CurveFunctionsTest, PeakSkipsZerosAndTheLastSampleAndKeepsEarlierTies)
{
    SetCurve(1, {7, 0, -2, 9, 9, -2, 4, 100});
    struct Row {
        TPeakMode mode;
        double expected;
        std::size_t crosses;
    };
    for (const Row& r : {Row{PeakMin, -2, 1}, Row{PeakMax, 9, 1}, Row{PeakDiff, 11, 2}}) {
        EXPECT_EQ(Peak(1, r.mode, false, 0, 0), r.expected) << r.mode;
        EXPECT_EQ(Store().Crosses().size(), r.crosses) << r.mode;
    }
    Peak(1, PeakDiff, false, 0, 0);
    EXPECT_EQ(Store().Crosses()[0].x, 2.0);  // min first, at the earlier of the equal samples
    EXPECT_EQ(Store().Crosses()[1].x, 3.0);
}

TEST_F(CurveFunctionsTest, LocalPeakSkipsAnExtremumOnTheRangeStart)
{
    SetCurve(1, {5, 1, 3, 1, 4, 0.5});
    EXPECT_EQ(Peak(1, PeakMax, true, 1, 1e-5), 2.0);  // maxima at 0, 2, 4: the first is the edge
    EXPECT_EQ(Store().Crosses().back().y, 3.0);
    EXPECT_EQ(Peak(1, PeakMin, true, 1, 1e-5), 1.0);
    EXPECT_EQ(Peak(1, PeakDiff, true, 1, 1e-5), 1.0);  // the difference mode looks for minima
    // A window wider than the curve leaves the global maximum alone, and it is kept.
    EXPECT_EQ(Peak(1, PeakMax, true, kBig, 1e-5), 0.0);
}

TEST_F(CurveFunctionsTest, DifferenceCurveQuantisesWithHalfToEven)
{
    // In steps of 1/10000: 0, 0.5 -> 0, 2.5 -> 2, 3.5 -> 4, 4.
    SetCurve(1, {0, 0.00005, 0.00025, 0.00035, 0.00035});
    for (double factor : {0.0, 1.0}) {
        const TMemArray d = Differenzkurve(1, factor);
        const std::vector<double> expected = {0, 0.0002, 0.0002, 0, 0, 0, 0};
        ASSERT_EQ(d.a.size(), expected.size()) << factor;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_DOUBLE_EQ(d.a[i], expected[i]) << factor << " at " << i;
        }
    }
    EXPECT_DOUBLE_EQ(Differenzkurve(1, -3).a[1], -0.0006);
    SetCurve(1, {1.00001, 1.00003, 1.00004});  // steps below 0.00005 vanish
    EXPECT_EQ(Differenzkurve(1, 1).a[0], 0.0);
}

TEST_F(CurveFunctionsTest, DifferenceCurveReachesTheLastIndexOfAClippedRange)
{
    std::vector<double> y(10);
    for (std::size_t i = 0; i < y.size(); ++i) y[i] = 0.001 * static_cast<double>(i * i);
    SetCurve(1, y);
    Store().SetClip("5", "8");
    const TMemArray d = Differenzkurve(1, 1);
    ASSERT_EQ(d.a.size(), 8u);
    EXPECT_EQ(d.a[4], 0.0);
    EXPECT_DOUBLE_EQ(d.a[5], 0.011);
    EXPECT_DOUBLE_EQ(d.a[7], 0.015);
}

TEST_F(CurveFunctionsTest, CorrectionTableUsesItsOwnScaledFormula)
{
    QTemporaryDir dir;
    const QString table = dir.filePath("korrektur.txt");
    QFile f(table);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("0;0\r\nno numbers here\r\n10;5\r\nabc;1\r\n20;5\r\n30,5;2\r\n7\r\n");
    f.close();
    SetCurve(1, {5, 15, 25, -1, 40});
    Store().SetCross(1, 1);
    EXPECT_TRUE(KurvenKorrektur(1, table));
    const auto y = Store().Y(1);
    EXPECT_DOUBLE_EQ(y[0], 5 - (5.0 * 10 / 100 * 5 / 100));
    EXPECT_DOUBLE_EQ(y[1], 15 - 5.0);
    EXPECT_DOUBLE_EQ(y[2], 25 - (5.0 * 10.5 / 100 * -3 / 100 + 5));
    EXPECT_EQ(y[3], -1);  // outside every row
    EXPECT_EQ(y[4], 40);
    EXPECT_TRUE(Store().Crosses().empty());

    EXPECT_TRUE(KurvenKorrektur(1, dir.filePath("missing.txt")));
    EXPECT_EQ(Store().Y(1)[4], 40);
}

class PhaseShiftTest : public ScopeTest {
protected:
    // 1000 samples of a sine with 100 samples per period, delayed by `lagSamples`; with the
    // phase of 0.3 curve 1 first rises through its offset at sample 95.2, with -0.3 at 4.8.
    static void SetSine(int c, double lagSamples, double phase = 0.3)
    {
        std::vector<double> y(1000);
        for (std::size_t i = 0; i < y.size(); ++i) {
            y[i] = 1 + std::sin(2 * std::numbers::pi * (static_cast<double>(i) - lagSamples) / 100 + phase);
        }
        SetCurve(c, y, 1e-3);
    }
};

TEST_F(PhaseShiftTest, LaggingCurveGivesPositiveDegrees)
{
    SetSine(1, 0, -0.3);
    SetSine(2, 25, -0.3);
    EXPECT_NEAR(Phasenverschiebung(1, 2, 3), 90.0, 0.01);
    // The same lag, but curve 2 now rises first in the range: the shift reads as -270.
    SetSine(1, 0);
    SetSine(2, 25);
    EXPECT_NEAR(Phasenverschiebung(1, 2, 3), -270.0, 0.01);
}

TEST_F(PhaseShiftTest, LeadingCurveStaysNegativeBecauseEveryPassFindsTheFirstEdge)
{
    SetSine(1, 0);
    SetSine(2, -25);  // rises at 70.2, before curve 1; measuring "the next" edge changes nothing
    EXPECT_NEAR(Phasenverschiebung(1, 2, 4), -90.0, 0.01);
}

TEST_F(PhaseShiftTest, CurveWithoutPeriodGivesZeroAndNoCrosses)
{
    SetCurve(1, std::vector<double>(100, 2.0));
    SetSine(2, 0);
    EXPECT_EQ(Phasenverschiebung(1, 2, 2), 0.0);
    EXPECT_TRUE(Store().Crosses().empty());
}

}  // namespace
}  // namespace dv::analysis::test
