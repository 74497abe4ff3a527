#include "analysis/curvefunctions_spectrum.h"

#include "analysis/fftwspectrum.h"
#include "tests/analysis/spectrum_refdata.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>
#include <vector>

namespace dv::analysis {
namespace {

using test::Tones;

class SpectrumFunctionsTest : public test::ScopeCurveTest {};

TEST_F(SpectrumFunctionsTest, AmplitudeSpectrumMatchesNumpy)
{
    const std::vector<test::TSpectrumCase> cases = test::LoadSpectrumCases("fft_amplitudes.txt");
    EXPECT_EQ(cases.size(), 3u);
    for (const test::TSpectrumCase& c : cases) {
        SetCurve(c.input, 1024);
        ScopeSettings()._FFTWindow = static_cast<unsigned char>(c.Int("window"));
        const TMemArray spectrum = FastFourierTransformation(1, 0);
        EXPECT_DOUBLE_EQ(spectrum.rate, 1.0);  // 1024 Hz over 1024 points
        ASSERT_EQ(spectrum.a.size(), c.values.size()) << c.header;
        // Two double FFTs of 1024 points: rounding stays near 1e-15 of the largest line (about 1).
        for (std::size_t k = 0; k < c.values.size(); ++k) EXPECT_NEAR(spectrum.a[k], c.values[k], 1e-12) << c.header << " line " << k;
    }
}

TEST_F(SpectrumFunctionsTest, ToneOnExactLineOfTheLargestPowerOfTwoFromTheRangeStart)
{
    // From sample 200 on, 1,024 of the 1,500 samples are transformed; the samples around them
    // are far off the tone, so taking any others shows.
    std::vector<double> y = Tones(1024, {{32, 1.5}}, 0.25, 1500);
    for (std::size_t i = 0; i < y.size(); ++i) y[i] = i < 200 || i >= 1224 ? 100.0 : y[i];
    SetCurve(y, 1000);
    ScopeStore().SetClip("0,2", "");
    const TMemArray spectrum = FastFourierTransformation(1, 2048);
    ASSERT_EQ(spectrum.a.size(), 513u);
    EXPECT_DOUBLE_EQ(spectrum.rate, 2.0);  // the given rate wins over the sample times
    EXPECT_NEAR(spectrum.a[32], 1.5, 1e-12);
    EXPECT_NEAR(spectrum.a[0], 0.25, 1e-12);
    for (std::size_t k = 1; k < spectrum.a.size(); ++k) EXPECT_LT(k == 32 ? 0 : spectrum.a[k], 1e-12) << k;
    EXPECT_NEAR(FastFourierTransformation(1, 0).rate, 1000.0 / 1024, 1e-9);
}

TEST_F(SpectrumFunctionsTest, DistortionMatchesHarmonicSumsAndNumpy)
{
    const std::pair<std::vector<std::pair<double, double>>, double> rows[] = {
        {{{16, 1.0}, {32, 0.1}, {48, 0.05}}, std::sqrt(0.0125 / 1.0125) * 100}, {{{50, 2.0}, {150, 0.4}}, std::sqrt(0.16 / 4.16) * 100}, {{{7, 1.0}}, 0.0}};
    for (const auto& [tones, expected] : rows) {
        SetCurve(Tones(1024, tones), 1024);
        // Exact lines: rounding noise on the empty harmonics is 1e-15 of the fundamental.
        EXPECT_NEAR(Klirrfaktor(1), expected, 1e-9) << tones.front().first;
    }
    // Off the lines and windowed: the same lines picked from two double FFTs, only rounding differs.
    for (const test::TSpectrumCase& c : test::LoadSpectrumCases("thd.txt")) {
        SetCurve(c.values, c.Number("n"));
        ScopeSettings()._FFTWindow = static_cast<unsigned char>(c.Int("window"));
        EXPECT_NEAR(Klirrfaktor(1), c.Number("thd"), 1e-9 * c.Number("thd")) << c.header;
    }
}

TEST_F(SpectrumFunctionsTest, SpectraOnSeveralThreadsEqualTheSerialOnes)
{
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> serial;
    for (int i = 0; i < 6; ++i) {
        inputs.push_back(Tones(256 << (i % 3), {{3.3 + i, 1.0}, {17.0, 0.2}}));
        serial.emplace_back(inputs.back().size() / 2 + 1);
        AmplitudeSpectrum(inputs.back(), i % 5, serial.back());
    }
    std::vector<std::vector<double>> parallel(inputs.size());
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < inputs.size(); ++t) {
        threads.emplace_back([&, t] {
            for (int repeat = 0; repeat < 50; ++repeat) {
                parallel[t].assign(inputs[t].size() / 2 + 1, 0.0);
                AmplitudeSpectrum(inputs[t], static_cast<int>(t % 5), parallel[t]);
            }
        });
    }
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(parallel, serial);
}

TEST_F(SpectrumFunctionsTest, SinadOfSineWithKnownNoise)
{
    for (const test::TSpectrumCase& c : test::LoadSpectrumCases("sinad.txt")) {
        SetCurve(c.values, c.Number("rate"));
        ScopeSettings()._Abtastrate = QString::number(c.Number("rate"));
        ScopeSettings()._Bandbreite = c.params.at("bandwidth") == "-" ? "" : QString::fromStdString(c.params.at("bandwidth"));
        ScopeSettings()._FFTWindow = static_cast<unsigned char>(c.Int("window"));
        const double sinad = Sinad(1);
        ASSERT_EQ(FFTDataNr, 4096) << c.header;
        // Against numpy's lines: the result is rounded to two decimals, and numpy removes the plain
        // mean where the curve loses its whole-period offset (under 0.002 dB in the windowed sums).
        EXPECT_NEAR(sinad, c.Number("lines"), 0.007) << c.header;
        // Against the true powers: noise in the notch counts as signal, about 2 sigma / (A sqrt(n/2))
        // of it, and the Hann window's correlated neighbours widen that; 0.15 dB holds with room.
        EXPECT_NEAR(sinad, c.Number("sinad"), 0.15) << c.header;
    }
}

TEST_F(SpectrumFunctionsTest, SinadTransformsAsManyPointsAsTheLastIndexOfTheRange)
{
    // 4,096 samples end at index 4095: a 2,048-point transform, over which line 123 of 4,096 falls
    // between two lines and leaks. One sample more gives the 4,096 points it fits exactly.
    ScopeSettings()._Abtastrate = "4096";
    for (auto [count, points, low, high] : {std::tuple{4096u, 2048, 0.0, 20.0}, std::tuple{4097u, 4096, 200.0, 1e9}}) {
        SetCurve(Tones(4096, {{123, 1.0}}, 0, count), 4096);
        const double sinad = Sinad(1);
        EXPECT_EQ(FFTDataNr, points);
        EXPECT_TRUE(sinad > low && sinad < high) << count << ": " << sinad;
    }
}

TEST_F(SpectrumFunctionsTest, SinadNotchFollowsUsefulSignalAndBandwidth)
{
    // 1,025 samples at 1,024 Hz: 1,024 points on lines 1 Hz apart; 1.0 on 50 Hz and 0.1 on 90 Hz.
    SetCurve(Tones(1024, {{50, 1.0}, {90, 0.1}}, 0, 1025), 1024);
    const double on50 = std::nearbyint(1000 * std::log10(1.01 / 0.01)) / 100;
    const double on90 = std::nearbyint(1000 * std::log10(1.01 / 1.0)) / 100;
    // rate, useful signal, notch half-width, SINAD
    const std::tuple<const char*, const char*, const char*, double> rows[] = {
        {"1024", "", "", on50},      {"1024", "90", "", on90},   {"1024", "0,4", "", on50},  // line 0: the fundamental
        {"1024", "60", "10", on50},  {"1024", "80", "10", on90}, {"1024", "", "39", on50},   // notches end on 50 and 90 Hz
        {"0", "", "10", 0.0}};  // no line spacing: the notch covers everything
    for (const auto& [rate, signal, bandwidth, expected] : rows) {
        ScopeSettings()._Abtastrate = rate;
        ScopeSettings()._Nutzsignal = signal;
        ScopeSettings()._Bandbreite = bandwidth;
        EXPECT_NEAR(Sinad(1), expected, 1e-9) << rate << " " << signal << " " << bandwidth;
    }
}

TEST_F(SpectrumFunctionsTest, NothingToMeasureGivesZero)
{
    ScopeSettings()._Abtastrate = "1000";
    SetCurve({1.0}, 1000);
    EXPECT_TRUE(FastFourierTransformation(1, 100).a.empty());
    EXPECT_EQ(Klirrfaktor(1), 0.0);
    EXPECT_EQ(Sinad(1), 0.0);
    SetCurve(std::vector<double>(600, 2.5), 1000);  // flat: no line above DC, no noise power
    EXPECT_EQ(Klirrfaktor(1), 0.0);
    EXPECT_EQ(Sinad(1), 0.0);
    EXPECT_TRUE(ScopeStore().Crosses().empty());
}

TEST_F(SpectrumFunctionsTest, SinadBuffersKeepWhatEarlierCallsLeftBelowTheRange)
{
    // The transform reads buffer positions from 0, the range fills them from its start: below a
    // clipped start the previous call's spectrum lines are still in place.
    ScopeSettings()._Abtastrate = "1000";
    auto clippedAfter = [&](double otherLine) {
        ScopeStore().SetClip("", "");
        SetCurve(Tones(1025, {{otherLine, 1.0}}), 1000);
        Sinad(1);
        SetCurve(Tones(1025, {{100, 1.0}, {33, 0.01}}), 1000);
        ScopeStore().SetClip("0,1", "");
        return Sinad(1);
    };
    const double afterFirst = clippedAfter(200);
    EXPECT_EQ(clippedAfter(200), afterFirst);
    EXPECT_NE(clippedAfter(37), afterFirst);
}

}  // namespace
}  // namespace dv::analysis
