#include "analysis/curvefunctions_spectrum.h"

#include "analysis/_fft.h"
#include "analysis/curvestore.h"
#include "analysis/fftwspectrum.h"
#include "tests/analysis/spectrum_refdata.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <thread>
#include <vector>

namespace dv::analysis {
namespace {

using test::NearScaled;

class SpectrumFunctionsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ScopeStore().ClearAll();
        ScopeStore().ClearCrosses();
        ScopeStore().SetClip("", "");
        ScopeSettings() = TScopeSettings{};
        FFTDataNr = 256;
        FFTReal = 0;
        SuchBreite = 3;
    }
    void TearDown() override { SetUp(); }

    // Curve 1 from samples taken at the given rate, times in seconds.
    static void SetCurve(const std::vector<double>& y, double rate, int handle = 1)
    {
        std::vector<double> x(y.size());
        for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<double>(i) / rate;
        ScopeStore().Assign(handle, x, y);
    }

    static std::vector<double> Tones(int n, const std::vector<std::pair<double, double>>& binAndAmplitude, double dc = 0)
    {
        std::vector<double> y(static_cast<std::size_t>(n), dc);
        int h = 0;
        for (auto [bin, amplitude] : binAndAmplitude) {
            for (int i = 0; i < n; ++i) y[static_cast<std::size_t>(i)] += amplitude * std::sin(2 * std::numbers::pi * bin * i / n + 0.3 * h);
            ++h;
        }
        return y;
    }
};

TEST_F(SpectrumFunctionsTest, AmplitudeSpectrumMatchesNumpy)
{
    std::vector<double> input;
    int checked = 0;
    for (const test::TSpectrumCase& c : test::LoadSpectrumCases("fft_amplitudes.txt")) {
        if (c.name == "input") {
            input = c.values;
            SetCurve(input, 1024);
            continue;
        }
        ScopeSettings()._FFTWindow = static_cast<unsigned char>(c.Int("window"));
        const TMemArray spectrum = FastFourierTransformation(1, 0);
        ASSERT_EQ(spectrum.a.size(), c.values.size()) << c.Describe();
        EXPECT_DOUBLE_EQ(spectrum.rate, 1.0);  // 1024 Hz over 1024 points
        for (std::size_t k = 0; k < c.values.size(); ++k) {
            // Both sides are double FFTs of 1024 points: rounding stays near 1e-15 of the largest line.
            EXPECT_TRUE(NearScaled(spectrum.a[k], c.values[k], 1.0, 1e-12)) << c.Describe() << " line " << k;
        }
        ++checked;
    }
    EXPECT_EQ(checked, 3);
}

TEST_F(SpectrumFunctionsTest, ToneOnExactLineReadsItsAmplitudeAndNothingElse)
{
    SetCurve(Tones(512, {{32, 1.5}}, 0.25), 512);
    const TMemArray spectrum = FastFourierTransformation(1, 2048);
    ASSERT_EQ(spectrum.a.size(), 257u);
    EXPECT_DOUBLE_EQ(spectrum.rate, 4.0);  // the given rate wins over the sample times
    EXPECT_NEAR(spectrum.a[32], 1.5, 1e-12);
    EXPECT_NEAR(spectrum.a[0], 0.25, 1e-12);
    for (std::size_t k = 1; k < spectrum.a.size(); ++k) {
        if (k != 32) {
            EXPECT_LT(spectrum.a[k], 1e-12) << k;
        }
    }
}

TEST_F(SpectrumFunctionsTest, TransformTakesLargestPowerOfTwoFromRangeStart)
{
    std::vector<double> y = Tones(1500, {{0, 0}});
    for (std::size_t i = 0; i < y.size(); ++i) y[i] = static_cast<double>(i % 7);
    SetCurve(y, 1000);
    ScopeStore().SetClip("0,2", "");  // from sample 200: 1300 samples, 1024 of them transformed
    const TMemArray spectrum = FastFourierTransformation(1, 0);
    ASSERT_EQ(spectrum.a.size(), 513u);
    std::vector<double> expected(513);
    AmplitudeSpectrum(std::span(y).subspan(200, 1024), 0, expected);
    EXPECT_EQ(spectrum.a, expected);
    EXPECT_NEAR(spectrum.rate, 1000.0 / 1024, 1e-9);
}

TEST_F(SpectrumFunctionsTest, TooShortRangeGivesEmptySpectrumAndNoDistortion)
{
    SetCurve({1.0}, 100);
    EXPECT_TRUE(FastFourierTransformation(1, 100).a.empty());
    EXPECT_EQ(Klirrfaktor(1), 0.0);
    SetCurve(std::vector<double>(64, 3.0), 100);
    EXPECT_EQ(Klirrfaktor(1), 0.0);  // flat: no line above DC
}

TEST_F(SpectrumFunctionsTest, DistortionOfHarmonicSumsByHand)
{
    struct Row {
        std::vector<std::pair<double, double>> tones;
        double expected;
    };
    const Row rows[] = {
        {{{16, 1.0}, {32, 0.1}, {48, 0.05}}, std::sqrt(0.0125 / 1.0125) * 100},
        {{{50, 2.0}, {150, 0.4}}, std::sqrt(0.16 / 4.16) * 100},
        {{{7, 1.0}}, 0.0},
    };
    for (const Row& r : rows) {
        SetCurve(Tones(1024, r.tones), 1024);
        // Exact lines: rounding noise on the empty harmonics is 1e-15 of the fundamental.
        EXPECT_TRUE(NearScaled(Klirrfaktor(1), r.expected, 1.0, 1e-9)) << r.tones.front().first;
    }
}

TEST_F(SpectrumFunctionsTest, DistortionOffTheLinesMatchesNumpy)
{
    for (const test::TSpectrumCase& c : test::LoadSpectrumCases("thd.txt")) {
        SetCurve(c.values, c.Number("n"));
        ScopeSettings()._FFTWindow = static_cast<unsigned char>(c.Int("window"));
        // Same lines picked from two double FFTs: only rounding differs.
        EXPECT_TRUE(NearScaled(Klirrfaktor(1), c.Number("thd"), c.Number("thd"), 1e-9)) << c.Describe();
    }
}

TEST_F(SpectrumFunctionsTest, SpectraOnSeveralThreadsEqualTheSerialOnes)
{
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> serial;
    for (int i = 0; i < 6; ++i) {
        const int n = 256 << (i % 3);
        inputs.push_back(Tones(n, {{3.3 + i, 1.0}, {17.0, 0.2}}));
        serial.emplace_back(static_cast<std::size_t>(n / 2 + 1));
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
        ASSERT_EQ(FFTDataNr, 4096) << c.Describe();
        // Against numpy's lines: the result is rounded to two decimals, and numpy removes the
        // plain mean where the curve loses its whole-period offset (a DC difference that moves
        // the windowed sums by under 0.002 dB).
        EXPECT_TRUE(NearScaled(sinad, c.Number("lines"), 1.0, 0.007)) << c.Describe();
        // Against the true powers: noise in the notch counts as signal, about 2 sigma / (A
        // sqrt(n/2)) of it plus the notch's share of lines, and the Hann window's correlated
        // neighbours widen that; 0.15 dB holds all three cases with room.
        EXPECT_TRUE(NearScaled(sinad, c.Number("sinad"), 1.0, 0.15)) << c.Describe();
    }
}

TEST_F(SpectrumFunctionsTest, SinadTransformsAsManyPointsAsTheLastIndexOfTheRange)
{
    ScopeSettings()._Abtastrate = "4096";
    // 4,096 samples end at index 4095: a 2,048-point transform, where line 123 of 4,096 falls
    // between two lines and leaks. One sample more gives the 4,096 points it fits exactly.
    SetCurve(Tones(4096, {{123, 1.0}}), 4096);
    const double leaking = Sinad(1);
    EXPECT_EQ(FFTDataNr, 2048);
    std::vector<double> y(4097);
    for (int i = 0; i < 4097; ++i) y[static_cast<std::size_t>(i)] = std::sin(2 * std::numbers::pi * 123 * i / 4096);
    SetCurve(y, 4096);
    const double clean = Sinad(1);
    EXPECT_EQ(FFTDataNr, 4096);
    EXPECT_LT(leaking, 20.0);
    EXPECT_GT(clean, 200.0);  // only rounding noise left
}

TEST_F(SpectrumFunctionsTest, SinadEdgeCases)
{
    ScopeSettings()._Abtastrate = "1000";
    SetCurve({1.0, 2.0}, 1000);
    EXPECT_EQ(Sinad(1), 0.0);  // fewer than three samples

    SetCurve(std::vector<double>(600, 2.5), 1000);
    EXPECT_EQ(Sinad(1), 0.0);  // flat: no noise power at all
    EXPECT_TRUE(ScopeStore().Crosses().empty());

    // A sample rate of 0 makes the line spacing 0; a notch width then covers everything.
    SetCurve(Tones(1025, {{50, 1.0}, {90, 0.1}}), 1024);
    ScopeSettings()._Abtastrate = "0";
    ScopeSettings()._Bandbreite = "10";
    EXPECT_EQ(Sinad(1), 0.0);
}

TEST_F(SpectrumFunctionsTest, SinadNotchFollowsUsefulSignalFrequency)
{
    // 1025 samples at 1024 Hz: 1024 points, lines 1 Hz apart; a tone on 50 Hz, a weaker on 90 Hz.
    std::vector<double> y(1025);
    for (int i = 0; i < 1025; ++i) {
        y[static_cast<std::size_t>(i)] = std::sin(2 * std::numbers::pi * 50 * i / 1024) + 0.1 * std::sin(2 * std::numbers::pi * 90 * i / 1024);
    }
    SetCurve(y, 1024);
    ScopeSettings()._Abtastrate = "1024";
    // Largest line as signal: 1.01 / 0.01 of power.
    const double byFundamental = Sinad(1);
    EXPECT_NEAR(byFundamental, std::nearbyint(100 * 10 * std::log10(1.01 / 0.01)) / 100, 1e-9);
    ScopeSettings()._Nutzsignal = "90";
    EXPECT_NEAR(Sinad(1), std::nearbyint(100 * 10 * std::log10(1.01 / 1.0)) / 100, 1e-9);
    ScopeSettings()._Nutzsignal = "0,4";  // rounds to line 0: back to the fundamental
    EXPECT_EQ(Sinad(1), byFundamental);
    // A notch of 45 Hz around 50 takes in the 90 Hz tone too: only rounding noise is left.
    ScopeSettings()._Nutzsignal = "";
    ScopeSettings()._Bandbreite = "45";
    EXPECT_GT(Sinad(1), 200.0);
    ScopeSettings()._Bandbreite = "39";
    EXPECT_EQ(Sinad(1), byFundamental);
}

TEST_F(SpectrumFunctionsTest, SinadBuffersKeepWhatEarlierCallsLeftBelowTheRange)
{
    // The transform reads buffer positions from 0, the range fills them from its start: below a
    // clipped start the previous call's spectrum lines are still in place.
    ScopeSettings()._Abtastrate = "1000";
    auto clippedAfter = [&](double otherBin) {
        ScopeStore().SetClip("", "");
        SetCurve(Tones(1025, {{otherBin, 1.0}}), 1000);
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
