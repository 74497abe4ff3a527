#include "analysis/iirfilter.h"

#include "analysis/curvefunctions_filters.h"
#include "framework/exceptions.h"
#include "tests/analysis/spectrum_refdata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <liquid/liquid.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <tuple>
#include <vector>

namespace dv::analysis {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

// The scope numbers its responses as the IIR design library numbers its band types.
static_assert(static_cast<int>(TFilterResponse::LowPass) == 0 && static_cast<int>(TFilterResponse::HighPass) == 1 && static_cast<int>(TFilterResponse::BandPass) == 2);
static_assert(LIQUID_IIRDES_LOWPASS == 0 && LIQUID_IIRDES_HIGHPASS == 1 && LIQUID_IIRDES_BANDPASS == 2);

// liquid's own filter of the same prototype, in float. Low and high pass take fc = f / rate; the
// band pass its lower edge and the centre f0 with cos(2 pi f0) = cos(pi (f1 + f2) / rate) / cos(pi (f2 - f1) / rate).
std::vector<double> LiquidFilter(TFilterResponse response, int order, double f1, double f2, double rate, const std::vector<double>& input)
{
    const double c = std::cos(std::numbers::pi * (f1 + f2) / rate) / std::cos(std::numbers::pi * (f2 - f1) / rate);
    const float centre = response == TFilterResponse::BandPass ? static_cast<float>(std::acos(c) / (2 * std::numbers::pi)) : 0.0f;
    iirfilt_rrrf filter = iirfilt_rrrf_create_prototype(LIQUID_IIRDES_BUTTER, static_cast<liquid_iirdes_bandtype>(response), LIQUID_IIRDES_SOS,
                                                        static_cast<unsigned>(order), static_cast<float>(f1 / rate), centre, 1.0f, 60.0f);
    std::vector<float> x(input.begin(), input.end()), y(input.size());
    iirfilt_rrrf_execute_block(filter, x.data(), static_cast<unsigned>(x.size()), y.data());
    iirfilt_rrrf_destroy(filter);
    return {y.begin(), y.end()};
}

TEST(ButterworthTest, MatchesScipyButterSosfiltAndLiquidsFilterForOrdersOneToEight)
{
    const std::map<std::string, TFilterResponse> responses = {
        {"lowpass", TFilterResponse::LowPass}, {"highpass", TFilterResponse::HighPass}, {"bandpass", TFilterResponse::BandPass}};
    for (const test::TSpectrumCase& c : test::LoadSpectrumCases("butterworth.txt")) {
        const TFilterResponse response = responses.at(c.name);
        const int order = c.Int("order");
        const double f1 = c.Number("f1"), f2 = c.Number("f2"), rate = c.Number("rate");
        std::vector<double> ours(c.input.size());
        RunCascade(DesignButterworth(response, order, f1, f2, rate), c.input, ours);
        const std::vector<double> liquids = LiquidFilter(response, order, f1, f2, rate, c.input);
        // Relative to the largest output: scipy runs in double, so any real design fault lies far
        // above 1e-6; liquid's float coefficients err by 1e-7, which poles near the unit circle amplify.
        const double largest = std::abs(std::ranges::max(c.values, {}, [](double v) { return std::abs(v); }));
        for (std::size_t i = 0; i < c.values.size(); ++i) {
            ASSERT_NEAR(ours[i], c.values[i], 1e-6 * largest) << c.header << " sample " << i;
            ASSERT_NEAR(ours[i], liquids[i], 5e-4 * largest) << c.header << " sample " << i << " against liquid";
        }
    }
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
    const std::vector<double> y = test::Tones(1000, {{30, 1.0}}, 1.0, 500);  // 30 Hz on a DC level, at 1 kHz
    SetCurve(y, 1000);
    ScopeStore().SetClip("0,1", "0.3");  // samples 100 .. 300
    const std::tuple<const char*, std::vector<double>, TSosCascade> rows[] = {
        {"low", FuncLowPass(1, 50, 1000, 4), DesignButterworth(TFilterResponse::LowPass, 4, 50, 0, 1000)},
        {"high", FuncHighPass(1, 50, 1000, 4), DesignButterworth(TFilterResponse::HighPass, 4, 50, 0, 1000)},
        {"band", FuncBandPass(1, 20, 80, 1000, 4), DesignButterworth(TFilterResponse::BandPass, 4, 20, 80, 1000)}};
    for (const auto& [name, result, cascade] : rows) {
        std::vector<double> expected(201);
        RunCascade(cascade, std::span(y).subspan(100, 201), expected);
        EXPECT_EQ(result, expected) << name;
    }
    EXPECT_TRUE(std::ranges::equal(ScopeStore().Y(1), y));
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
