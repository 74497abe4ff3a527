// Measurements against numbers that numpy or closed forms give for the same signals
// (tests/analysis/make_measure_refs.py).
#include "analysis/curvefunctions.h"
#include "tests/analysis/refdata.h"
#include "tests/analysis/scopefixture.h"

namespace dv::analysis::test {
namespace {

// Sums over a few thousand samples: numpy adds pairwise, the kernels in four running partial
// sums; both stay within n * machine epsilon of the exact sum, far below 1e-11.
constexpr double kSumTolerance = 1e-11;
// Edge times come from linear interpolation of samples on a straight ramp, which is exact up to
// rounding of the times (about 1e-16 s); differences of times near 0.1 s that are a few ms long
// keep about 13 digits.
constexpr double kEdgeTolerance = 1e-9;

class MeasureReferenceTest : public ScopeTest {};

TEST_F(MeasureReferenceTest, LevelsOfSinesWithDcPart)
{
    for (const TRefCase& c : LoadRefCases("measure_levels.txt")) {
        SCOPED_TRACE(c.name);
        Store().Assign(1, c.x, c.y);
        const double rmsOffset = c.params.at("rms_offset");
        EXPECT_TRUE(NearRel(KurvenMittelwert(1), c.expect.at("mean"), kSumTolerance));
        EXPECT_TRUE(NearRel(KurvenEffektivwert(1, rmsOffset, 1), c.expect.at("rms"), kSumTolerance));
        EXPECT_TRUE(NearRel(KurvenOffset(1), c.expect.at("offset"), kSumTolerance));
        EXPECT_TRUE(NearRel(KurvenEffektivwert(1, rmsOffset, 2), c.expect.at("rms_whole_periods"),
                            kSumTolerance));
        // Over whole periods the offset lands on the DC part that the plain mean misses.
        EXPECT_NEAR(KurvenOffset(1), c.expect.at("dc"), 2e-3);
    }
}

TEST_F(MeasureReferenceTest, EdgesOfPulseTrains)
{
    for (const TRefCase& c : LoadRefCases("measure_pulses.txt")) {
        SCOPED_TRACE(c.name);
        Store().Assign(1, c.x, c.y);
        const double l = c.params.at("level");
        auto measure = [&](int count, TImpulsMode mode) {
            return Zeitdifferenz(1, l, l, true, false, true, count, mode);
        };
        EXPECT_TRUE(NearRel(measure(1, imTime), c.expect.at("time_count1"), kEdgeTolerance));
        EXPECT_TRUE(NearRel(measure(2, imTime), c.expect.at("time_count2"), kEdgeTolerance));
        EXPECT_EQ(measure(1, imCount), c.expect.at("count"));
        EXPECT_TRUE(NearRel(measure(1, imFreq), c.expect.at("frequency"), kEdgeTolerance));
        EXPECT_TRUE(NearRel(measure(1, imDutyCycle), c.expect.at("duty_cycle"), kEdgeTolerance));
        EXPECT_TRUE(NearRel(measure(7, imPhase), c.expect.at("first_rise"), kEdgeTolerance));
    }
}

}  // namespace
}  // namespace dv::analysis::test
