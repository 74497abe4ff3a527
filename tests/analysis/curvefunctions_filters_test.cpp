#include "analysis/curvefunctions_filters.h"

#include "analysis/curvestore.h"
#include "framework/exceptions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace dv::analysis {
namespace {

class FilterCurveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ScopeStore().ClearAll();
        ScopeStore().SetClip("", "");
    }
    void TearDown() override { SetUp(); }

    // Curve 1: a 30 Hz sine on a DC level of 1, sampled at 1 kHz, times in seconds.
    static std::vector<double> FillCurve(int count)
    {
        std::vector<double> x(static_cast<std::size_t>(count));
        std::vector<double> y(x.size());
        for (int i = 0; i < count; ++i) {
            x[static_cast<std::size_t>(i)] = i / 1000.0;
            y[static_cast<std::size_t>(i)] = 1.0 + std::sin(2 * std::numbers::pi * 30 * i / 1000.0);
        }
        ScopeStore().Assign(1, x, y);
        return y;
    }
};

TEST_F(FilterCurveTest, FiltersTheZoomedRangeFromRest)
{
    const std::vector<double> y = FillCurve(500);
    ScopeStore().SetClip("0,1", "0.3");  // samples 100 .. 300
    const std::vector<double> result = FuncLowPass(1, 50, 1000, 4);
    ASSERT_EQ(result.size(), 201u);
    std::vector<double> expected(201);
    RunCascade(DesignButterworth(TFilterResponse::LowPass, 4, 50, 0, 1000),
               std::span(y).subspan(100, 201), expected);
    EXPECT_EQ(result, expected);
}

TEST_F(FilterCurveTest, RateAboveOneMillionIsScaledDownWithItsFrequencies)
{
    FillCurve(300);
    EXPECT_EQ(FuncLowPass(1, 10000, 2000000, 3), FuncLowPass(1, 10, 2000, 3));
    EXPECT_EQ(FuncBandPass(1, 20000, 90000, 2000000, 2), FuncBandPass(1, 20, 90, 2000, 2));
    // Below the limit nothing is scaled, so a cut-off the library would refuse stays refused.
    EXPECT_THROW(FuncHighPass(1, 600000, 1000000, 2), TDravikException);
    EXPECT_NO_THROW(FuncHighPass(1, 600000, 2000000, 2));
}

TEST_F(FilterCurveTest, ResponseNumbersKeepTheirMeaning)
{
    FillCurve(3000);
    struct Row {
        int response;
        double f1, f2;
        double settledMean;  // what the DC level of 1 becomes
    };
    const Row rows[] = {{0, 5, 0, 1.0}, {1, 5, 0, 0.0}, {2, 5, 10, 0.0}};
    for (const Row& r : rows) {
        const std::vector<double> out = FilterCurve(1, static_cast<TFilterResponse>(r.response), r.f1, r.f2, 1000, 2);
        double mean = 0;
        for (std::size_t i = out.size() - 1000; i < out.size(); ++i) mean += out[i];
        mean /= 1000;
        // 1000 samples hold 30 whole periods of the sine, so only the DC part survives the mean.
        EXPECT_NEAR(mean, r.settledMean, 1e-3) << "response " << r.response;
    }
}

TEST_F(FilterCurveTest, EmptyCurveGivesEmptyResultAndBadCurveNumberRaises)
{
    EXPECT_TRUE(FuncHighPass(2, 50, 1000, 2).empty());
    EXPECT_THROW(FuncLowPass(9, 50, 1000, 2), TDravikException);
    EXPECT_THROW(FuncLowPass(1, 50, 1000, 0), TDravikException);
}

}  // namespace
}  // namespace dv::analysis
