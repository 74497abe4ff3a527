#include "analysis/iirfilter.h"

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
static_assert(static_cast<int>(TFilterResponse::LowPass) == 0 && LIQUID_IIRDES_LOWPASS == 0);
static_assert(static_cast<int>(TFilterResponse::HighPass) == 1 && LIQUID_IIRDES_HIGHPASS == 1);
static_assert(static_cast<int>(TFilterResponse::BandPass) == 2 && LIQUID_IIRDES_BANDPASS == 2);

// liquid's own filter of the same prototype: low and high pass take fc = f / rate; the band pass
// takes its lower edge as fc and its centre f0 from cos(2 pi f0) = cos(pi (f1 + f2) / rate) /
// cos(pi (f2 - f1) / rate).
std::vector<double> LiquidFilter(TFilterResponse response, int order, double f1, double f2, double rate, const std::vector<double>& input)
{
    const double c = std::cos(std::numbers::pi * (f1 + f2) / rate) / std::cos(std::numbers::pi * (f2 - f1) / rate);
    const float centre = response == TFilterResponse::BandPass ? static_cast<float>(std::acos(c) / (2 * std::numbers::pi)) : 0.0f;
    iirfilt_rrrf filter = iirfilt_rrrf_create_prototype(LIQUID_IIRDES_BUTTER, static_cast<liquid_iirdes_bandtype>(response), LIQUID_IIRDES_SOS,
                                                        static_cast<unsigned>(order), static_cast<float>(f1 / rate), centre, 1.0f, 60.0f);
    std::vector<double> output(input.size());
    for (std::size_t i = 0; i < input.size(); ++i) {
        float y = 0;
        iirfilt_rrrf_execute(filter, static_cast<float>(input[i]), &y);
        output[i] = y;
    }
    iirfilt_rrrf_destroy(filter);
    return output;
}

TEST(ButterworthTest, MatchesScipyButterSosfiltAndLiquidsFilterForOrdersOneToEight)
{
    const std::map<std::string, TFilterResponse> responses = {
        {"lowpass", TFilterResponse::LowPass}, {"highpass", TFilterResponse::HighPass}, {"bandpass", TFilterResponse::BandPass}};
    const std::vector<test::TSpectrumCase> cases = test::LoadSpectrumCases("butterworth.txt");
    EXPECT_EQ(cases.size(), 48u);
    for (const test::TSpectrumCase& c : cases) {
        const TFilterResponse response = responses.at(c.name);
        const int order = c.Int("order");
        const double f1 = c.Number("f1"), f2 = c.Number("f2"), rate = c.Number("rate");
        std::vector<double> ours(c.input.size());
        RunCascade(DesignButterworth(response, order, f1, f2, rate), c.input, ours);
        const std::vector<double> liquids = LiquidFilter(response, order, f1, f2, rate, c.input);
        // Both relative to the largest output. scipy runs in double, so any real design fault lies far
        // above 1e-6; liquid designs and filters in float, whose 1e-7 relative error in the
        // coefficients the poles near the unit circle amplify to some 1e-4.
        const double largest = std::ranges::max(c.values, {}, [](double v) { return std::abs(v); });
        for (std::size_t i = 0; i < c.values.size(); ++i) {
            ASSERT_NEAR(ours[i], c.values[i], 1e-6 * std::abs(largest)) << c.header << " sample " << i;
            ASSERT_NEAR(ours[i], liquids[i], 5e-4 * std::abs(largest)) << c.header << " sample " << i << " against liquid";
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
        {{LowPass, 2, 0, 0, 1000}, "Grenzfrequenz 0 "},        {{HighPass, 2, -10, 0, 1000}, "Grenzfrequenz -10 "},
        {{LowPass, 2, 500, 0, 1000}, "Grenzfrequenz 500 "},    {{LowPass, 2, nan, 0, 1000}, "Grenzfrequenz nan "},
        {{BandPass, 2, 100, 500, 1000}, "Grenzfrequenz 500 "}, {{BandPass, 2, 200, 100, 1000}, "Untere Grenzfrequenz 200"},
        {{BandPass, 2, 150, 150, 1000}, "Untere Grenzfrequenz 150"}};
    for (const auto& [arguments, mentions] : rows) {
        EXPECT_THAT([&arguments] { std::apply(DesignButterworth, arguments); }, ThrowsMessage<TDravikException>(HasSubstr(mentions)));
    }
}

}  // namespace
}  // namespace dv::analysis
