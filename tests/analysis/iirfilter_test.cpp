#include "analysis/iirfilter.h"

#include "analysis/curvefunctions_filters.h"
#include "framework/exceptions.h"
#include "tests/analysis/refdata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <limits>
#include <numbers>
#include <tuple>
#include <vector>

namespace dv::analysis {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

const std::map<std::string, TFilterResponse> kResponses = {
    {"lowpass", TFilterResponse::LowPass}, {"highpass", TFilterResponse::HighPass}, {"bandpass", TFilterResponse::BandPass}};

// Relative to the largest output: scipy runs in double, so any real design fault lies far above
// 1e-6 (a wrong zero pairing errs by tens of percent on wide bands).
void ExpectNear(const std::vector<double>& ours, const test::TRefCase& c)
{
    const double largest = std::abs(std::ranges::max(c.values, {}, [](double v) { return std::abs(v); }));
    ASSERT_EQ(ours.size(), c.values.size()) << c.header;
    for (std::size_t i = 0; i < c.values.size(); ++i) {
        ASSERT_NEAR(ours[i], c.values[i], 1e-6 * largest) << c.header << " sample " << i;
    }
}

// Orders 1 to 8; bands as wide as the rate allows, narrow ones at either band edge, rates above
// 1 MHz, and the unit impulse through the widest band.
TEST(ButterworthTest, MatchesScipyButterSosfiltForOrdersOneToEight)
{
    int cases = 0;
    for (const test::TRefCase& c : test::LoadRefCases("butterworth.txt")) {
        if (c.name == "zoomed") continue;
        std::vector<double> ours(c.input.size());
        RunCascade(DesignButterworth(kResponses.at(c.name), c.Int("order"), c.Number("f1"), c.Number("f2"), c.Number("rate")),
                   c.input, ours);
        ExpectNear(ours, c);
        ++cases;
    }
    EXPECT_GE(cases, 8 * 15);
}

TEST(ButterworthTest, InvalidArgumentsAreNamedInTheMessage)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    using enum TFilterResponse;
    const std::pair<std::tuple<TFilterResponse, int, double, double, double>, const char*> rows[] = {
        {{LowPass, 0, 100, 0, 1000}, "Filterordnung 0"},       {{HighPass, 17, 100, 0, 1000}, "Filterordnung 17"},
        {{LowPass, 2, 100, 0, 0}, "Abtastrate 0"},             {{LowPass, 2, 100, 0, nan}, "Abtastrate nan"},
        {{HighPass, 2, -10, 0, 1000}, "Grenzfrequenz -10 "},   {{LowPass, 2, 500, 0, 1000}, "Grenzfrequenz 500 "},
        {{LowPass, 2, nan, 0, 1000}, "Grenzfrequenz nan "},    {{BandPass, 2, 100, 500, 1000}, "Grenzfrequenz 500 "},
        {{BandPass, 2, 200, 100, 1000}, "Untere Grenzfrequenz 200"}, {{BandPass, 2, 150, 150, 1000}, "Untere Grenzfrequenz 150"}};
    for (const auto& [arguments, mentions] : rows) {
        EXPECT_THAT([&arguments] { std::apply(DesignButterworth, arguments); }, ThrowsMessage<TDravikException>(HasSubstr(mentions)));
    }
}

class FilterCurveTest : public test::ScopeCurveTest {};  // the scope's filters over curve 1

TEST_F(FilterCurveTest, EachResponseFiltersTheZoomedRangeFromRestAndLeavesTheCurve)
{
    using Filter = std::function<std::vector<double>(const test::TRefCase&)>;
    const std::map<std::string, Filter> filters = {
        {"lowpass", [](const auto& c) { return FuncLowPass(1, c.Number("f1"), c.Number("rate"), c.Int("order")); }},
        {"highpass", [](const auto& c) { return FuncHighPass(1, c.Number("f1"), c.Number("rate"), c.Int("order")); }},
        {"bandpass", [](const auto& c) { return FuncBandPass(1, c.Number("f1"), c.Number("f2"), c.Number("rate"), c.Int("order")); }}};
    for (const test::TRefCase& c : test::LoadRefCases("butterworth.txt")) {
        if (c.name != "zoomed") continue;
        SetCurve(c.input, c.Number("rate"));
        ScopeStore().SetClip("0,1", "0.3");  // samples 100 .. 300 at 1 kHz
        ExpectNear(filters.at(c.params.at("response"))(c), c);
        EXPECT_TRUE(std::ranges::equal(ScopeStore().Y(1), c.input)) << c.header;
    }
}

TEST_F(FilterCurveTest, RateAboveOneMillionIsScaledDownAndBadArgumentsAreNamed)
{
    SetCurve(test::Tones(1000, {{30, 1.0}}, 1.0, 300), 1000);
    EXPECT_EQ(FuncLowPass(1, 10000, 2000000, 3), FuncLowPass(1, 10, 2000, 3));
    EXPECT_EQ(FuncBandPass(1, 20000, 90000, 2000000, 2), FuncBandPass(1, 20, 90, 2000, 2));
    // Below the limit nothing is scaled, so a cut-off the design refuses stays refused.
    EXPECT_THAT([] { FuncHighPass(1, 600000, 1000000, 2); }, ThrowsMessage<TDravikException>(HasSubstr("Grenzfrequenz 600000")));
    EXPECT_NO_THROW(FuncHighPass(1, 600000, 2000000, 2));
    EXPECT_TRUE(FuncHighPass(2, 50, 1000, 2).empty());
    EXPECT_THAT([] { FuncLowPass(9, 50, 1000, 2); }, ThrowsMessage<TDravikException>(HasSubstr("Kurvennummer 9")));
    EXPECT_THAT([] { FuncBandPass(1, 50, 60, 1000, 0); }, ThrowsMessage<TDravikException>(HasSubstr("Filterordnung 0")));
}

}  // namespace
}  // namespace dv::analysis
