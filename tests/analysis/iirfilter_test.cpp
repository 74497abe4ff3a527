#include "analysis/iirfilter.h"

#include "framework/exceptions.h"
#include "tests/analysis/spectrum_refdata.h"

#include <gtest/gtest.h>
#include <liquid/liquid.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace dv::analysis {
namespace {

using test::NearScaled;

TFilterResponse ResponseNamed(const std::string& name)
{
    if (name == "lowpass") return TFilterResponse::LowPass;
    if (name == "highpass") return TFilterResponse::HighPass;
    return TFilterResponse::BandPass;
}

double LargestMagnitude(const std::vector<double>& v)
{
    double m = 0;
    for (double x : v) m = std::max(m, std::abs(x));
    return m;
}

TEST(ButterworthTest, MatchesScipyButterSosfiltForOrdersOneToEight)
{
    const std::vector<test::TSpectrumCase> cases = test::LoadSpectrumCases("butterworth.txt");
    ASSERT_FALSE(cases.empty());
    const std::vector<double>& input = cases.front().values;
    int checked = 0;
    for (const test::TSpectrumCase& c : cases) {
        if (c.name == "input") continue;
        const TSosCascade cascade =
            DesignButterworth(ResponseNamed(c.name), c.Int("order"), c.Number("f1"), c.Number("f2"), c.Number("rate"));
        std::vector<double> output(input.size());
        RunCascade(cascade, input, output);
        // 1e-6 of the output's largest magnitude: near zero crossings a per-sample relative error
        // means nothing, and both sides run in double, so any real design fault is far above it.
        const double scale = LargestMagnitude(c.values);
        for (std::size_t i = 0; i < input.size(); ++i) {
            ASSERT_TRUE(NearScaled(output[i], c.values[i], scale, 1e-6)) << c.Describe() << " sample " << i;
        }
        ++checked;
    }
    EXPECT_EQ(checked, 48);
}

// liquid's own filter of the same prototype: low and high pass take fc = f / rate; the band pass
// takes its lower edge as fc and its centre f0 from cos(2 pi f0) = cos(pi (f1 + f2) / rate) /
// cos(pi (f2 - f1) / rate).
std::vector<double> LiquidFilter(TFilterResponse response, int order, double f1, double f2, double rate,
                                 const std::vector<double>& input)
{
    float centre = 0;
    if (response == TFilterResponse::BandPass) {
        const double c = std::cos(std::numbers::pi * (f1 + f2) / rate) / std::cos(std::numbers::pi * (f2 - f1) / rate);
        centre = static_cast<float>(std::acos(c) / (2 * std::numbers::pi));
    }
    iirfilt_rrrf filter = iirfilt_rrrf_create_prototype(
        LIQUID_IIRDES_BUTTER, static_cast<liquid_iirdes_bandtype>(response), LIQUID_IIRDES_SOS,
        static_cast<unsigned>(order), static_cast<float>(f1 / rate), centre, 1.0f, 60.0f);
    std::vector<double> output;
    for (double x : input) {
        float y = 0;
        iirfilt_rrrf_execute(filter, static_cast<float>(x), &y);
        output.push_back(y);
    }
    iirfilt_rrrf_destroy(filter);
    return output;
}

TEST(ButterworthTest, SameFilterAsLiquidsPrototypeWithinItsSinglePrecision)
{
    const std::vector<double> input = test::LoadSpectrumCases("butterworth.txt").front().values;
    struct Row {
        TFilterResponse response;
        double f1, f2, rate;
    };
    const Row rows[] = {
        {TFilterResponse::LowPass, 100, 0, 1000},      {TFilterResponse::HighPass, 300, 0, 48000},
        {TFilterResponse::BandPass, 100, 200, 1000},  {TFilterResponse::BandPass, 300, 3400, 48000},
    };
    for (const Row& r : rows) {
        for (int order = 1; order <= 8; ++order) {
            std::vector<double> ours(input.size());
            RunCascade(DesignButterworth(r.response, order, r.f1, r.f2, r.rate), input, ours);
            const std::vector<double> theirs = LiquidFilter(r.response, order, r.f1, r.f2, r.rate, input);
            // liquid designs and filters in float: its coefficients carry 1e-7 relative error,
            // which the poles near the unit circle amplify to some 1e-5 of the output.
            const double scale = LargestMagnitude(ours);
            for (std::size_t i = 0; i < input.size(); ++i) {
                ASSERT_TRUE(NearScaled(ours[i], theirs[i], scale, 5e-4))
                    << "response " << static_cast<int>(r.response) << " order " << order << " sample " << i;
            }
        }
    }
}

TEST(ButterworthTest, InvalidArgumentsAreNamedInTheMessage)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Row {
        TFilterResponse response;
        int order;
        double f1, f2, rate;
        const char* mentions;
    };
    const Row rows[] = {
        {TFilterResponse::LowPass, 0, 100, 0, 1000, "Filterordnung 0"},
        {TFilterResponse::LowPass, 17, 100, 0, 1000, "Filterordnung 17"},
        {TFilterResponse::HighPass, -2, 100, 0, 1000, "Filterordnung -2"},
        {TFilterResponse::LowPass, 2, 100, 0, 0, "Abtastrate 0"},
        {TFilterResponse::LowPass, 2, 100, 0, -5, "Abtastrate -5"},
        {TFilterResponse::LowPass, 2, 100, 0, nan, "Abtastrate nan"},
        {TFilterResponse::LowPass, 2, 0, 0, 1000, "Grenzfrequenz 0 "},
        {TFilterResponse::HighPass, 2, -10, 0, 1000, "Grenzfrequenz -10 "},
        {TFilterResponse::LowPass, 2, 500, 0, 1000, "Grenzfrequenz 500 "},
        {TFilterResponse::LowPass, 2, nan, 0, 1000, "Grenzfrequenz nan "},
        {TFilterResponse::BandPass, 2, 100, 500, 1000, "Grenzfrequenz 500 "},
        {TFilterResponse::BandPass, 2, 200, 100, 1000, "Untere Grenzfrequenz 200"},
        {TFilterResponse::BandPass, 2, 150, 150, 1000, "Untere Grenzfrequenz 150"},
    };
    for (const Row& r : rows) {
        try {
            DesignButterworth(r.response, r.order, r.f1, r.f2, r.rate);
            ADD_FAILURE() << "no error for " << r.mentions;
        } catch (const TDravikException& e) {
            EXPECT_TRUE(e.Message().contains(QString::fromUtf8(r.mentions))) << e.Message().toStdString();
        }
    }
}

TEST(ButterworthTest, HighestOrderBandPassFillsEverySection)
{
    const TSosCascade cascade = DesignButterworth(TFilterResponse::BandPass, kMaxFilterOrder, 10, 400, 1000);
    EXPECT_EQ(cascade.count, kMaxFilterOrder);
    // Unit gain at the centre: a long sine there comes out at its own amplitude.
    const double centre = std::acos(std::cos(std::numbers::pi * 410 / 1000) / std::cos(std::numbers::pi * 390 / 1000)) / (2 * std::numbers::pi) * 1000;
    std::vector<double> x(20000);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = std::sin(2 * std::numbers::pi * centre * static_cast<double>(i) / 1000);
    std::vector<double> y(x.size());
    RunCascade(cascade, x, y);
    const double settled = LargestMagnitude(std::vector<double>(y.end() - 2000, y.end()));
    EXPECT_NEAR(settled, 1.0, 1e-3);
}

}  // namespace
}  // namespace dv::analysis
