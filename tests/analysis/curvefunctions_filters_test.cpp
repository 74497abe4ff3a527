#include "analysis/curvefunctions_filters.h"

#include "framework/exceptions.h"
#include "tests/analysis/spectrum_refdata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace dv::analysis {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

// Curve 1 is a 30 Hz sine on a DC level of 1, sampled at 1 kHz.
class FilterCurveTest : public test::ScopeCurveTest {};

TEST_F(FilterCurveTest, EachResponseFiltersTheZoomedRangeFromRestAndLeavesTheCurve)
{
    const std::vector<double> y = test::Tones(1000, {{30, 1.0}}, 1.0, 500);
    SetCurve(y, 1000);
    ScopeStore().SetClip("0,1", "0.3");  // samples 100 .. 300
    const std::tuple<std::vector<double>, TFilterResponse, double, double> rows[] = {
        {FuncLowPass(1, 50, 1000, 4), TFilterResponse::LowPass, 50, 0},
        {FuncHighPass(1, 50, 1000, 4), TFilterResponse::HighPass, 50, 0},
        {FuncBandPass(1, 20, 80, 1000, 4), TFilterResponse::BandPass, 20, 80}};
    for (const auto& [result, response, f1, f2] : rows) {
        std::vector<double> expected(201);
        RunCascade(DesignButterworth(response, 4, f1, f2, 1000), std::span(y).subspan(100, 201), expected);
        EXPECT_EQ(result, expected) << "response " << static_cast<int>(response);
    }
    EXPECT_TRUE(std::ranges::equal(ScopeStore().Y(1), y));
}

TEST_F(FilterCurveTest, RateAboveOneMillionIsScaledDownWithItsFrequencies)
{
    SetCurve(test::Tones(1000, {{30, 1.0}}, 1.0, 300), 1000);
    EXPECT_EQ(FuncLowPass(1, 10000, 2000000, 3), FuncLowPass(1, 10, 2000, 3));
    EXPECT_EQ(FuncBandPass(1, 20000, 90000, 2000000, 2), FuncBandPass(1, 20, 90, 2000, 2));
    // Below the limit nothing is scaled, so a cut-off the design refuses stays refused.
    EXPECT_THAT([] { FuncHighPass(1, 600000, 1000000, 2); }, ThrowsMessage<TDravikException>(HasSubstr("Grenzfrequenz 600000")));
    EXPECT_NO_THROW(FuncHighPass(1, 600000, 2000000, 2));
}

TEST_F(FilterCurveTest, EmptyCurveGivesNothingAndBadArgumentsAreNamed)
{
    EXPECT_TRUE(FuncHighPass(2, 50, 1000, 2).empty());
    EXPECT_THAT([] { FuncLowPass(9, 50, 1000, 2); }, ThrowsMessage<TDravikException>(HasSubstr("Kurvennummer 9")));
    EXPECT_THAT([] { FuncBandPass(1, 50, 60, 1000, 0); }, ThrowsMessage<TDravikException>(HasSubstr("Filterordnung 0")));
}

}  // namespace
}  // namespace dv::analysis
