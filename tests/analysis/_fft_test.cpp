#include "analysis/_fft.h"

#include "tests/analysis/spectrum_refdata.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

namespace dv::analysis {
namespace {

using test::Tones;

class FftEngineTest : public test::ScopeCurveTest {
protected:
    // Puts samples into the engine at its current size and runs transform and spectrum.
    static void Analyse(const std::vector<double>& samples)
    {
        FFTDataClear();
        for (int k = 1; k <= FFTDataNr; ++k) (*FFTData)[static_cast<std::size_t>(FFTIndex(k) - 1)] = samples[static_cast<std::size_t>(k - 1)];
        FFT(false);
        FFTSpectrum();
    }

    static double Line(int position) { return (*FFTSpect)[static_cast<std::size_t>(position)]; }
};

TEST_F(FftEngineTest, SetDataNrTakesLargestTableSizeOrRejects)
{
    // requested, resulting n (also the new FFTDataNr when accepted), rejected
    const std::tuple<int, int, bool> rows[] = {{1000, 512, false}, {4096, 4096, false}, {64, 64, false}, {4095, 2048, false},
                                               {5000, 5000, true},  {63, 63, true},     {8192, 8192, true}, {0, 0, true}};
    for (const auto& [requested, expected, rejected] : rows) {
        FFTDataNr = 256;
        FFTResult = 0;
        int n = requested;
        FFTSetDataNr(n);
        EXPECT_EQ(n, expected) << requested;
        EXPECT_EQ(FFTDataNr, rejected ? 256 : expected) << requested;
        EXPECT_EQ(FFTResult, rejected ? -2 : 0) << requested;
    }
}

TEST_F(FftEngineTest, SpectrumMatchesNumpyForEveryWindowAndLayout)
{
    const std::vector<test::TSpectrumCase> cases = test::LoadSpectrumCases("fft_engine.txt");
    EXPECT_EQ(cases.size(), 14u);
    for (const test::TSpectrumCase& c : cases) {
        int n = c.Int("n");
        FFTSetDataNr(n);
        FFTReal = static_cast<unsigned char>(c.Int("real"));
        ASSERT_EQ(c.values.size(), static_cast<std::size_t>(n / 2));
        // A window kind beyond 4 weighs nothing: it must give the rectangular lines.
        for (int window : c.Int("window") == 0 ? std::vector{0, 7} : std::vector{c.Int("window")}) {
            FFTWindow = static_cast<unsigned char>(window);
            Analyse(c.input);
            // Lines are percent of the largest; rounding over 1024 points stays near 1e-12 of it.
            for (int k = 0; k < n / 2; ++k) EXPECT_NEAR(Line(k), c.values[static_cast<std::size_t>(k)], 1e-8) << c.header << " as " << window << " line " << k;
        }
    }
}

TEST_F(FftEngineTest, ToneOnExactBinIsTheFundamentalEvenBelowALargerDc)
{
    for (unsigned char real : {0, 1}) {
        FFTReal = real;
        Analyse(Tones(256, {{7, 0.5}}, 10.0));
        EXPECT_EQ(SpectMaxNr, 0);
        EXPECT_EQ(Fundamental, 7);
        EXPECT_NEAR(Line(7), 2.5, 1e-12);  // 0.5 * 256 / 2 against 10 * 256
        // Leakage of an exact-bin tone is pure rounding: 1e-12 of the main line.
        for (int k = 1; k < 128; ++k) EXPECT_LT(k == 7 ? 0 : Line(k), 1e-10) << "real " << int(real) << " line " << k;
    }
    // Lines 12 and 30 both exactly 5, written straight into the transformed data: the first wins.
    std::fill_n(FFTTrans->begin(), 512, 0.0);
    (*FFTTrans)[2 * 30] = (*FFTTrans)[2 * 12] = 5.0;
    FFTSpectrum();
    EXPECT_EQ(Fundamental, 12);
}

TEST_F(FftEngineTest, HarmonicsUpToHalfTheTransformAreRelativeToTheFundamental)
{
    int n = 1024;
    FFTSetDataNr(n);
    FFTdt = 1e-4;
    Analyse(Tones(1024, {{100, 1.0}, {200, 0.2}, {300, 0.1}, {400, 0.05}, {500, 0.02}}));
    EXPECT_DOUBLE_EQ(FFTdF, 1e4 / 1024);
    EXPECT_DOUBLE_EQ(FFTFMax, 5000.0);
    ASSERT_EQ(Fundamental, 100);
    // Exact bins: the ratios are those of the amplitudes up to rounding.
    EXPECT_NEAR(FFTHarmRel(1), 20.0, 1e-9);
    EXPECT_NEAR(FFTHarmdB(3), 20 * std::log10(0.05), 1e-9);
    EXPECT_DOUBLE_EQ(FFTHarmFrq(4), 500 * FFTdF);
    EXPECT_NEAR(FFTHarmVal(4), 2.0, 1e-9);
    for (double v : {FFTHarmFrq(5), FFTHarmVal(5), FFTHarmRel(5), FFTHarmdB(5)}) EXPECT_EQ(v, -1.0);  // line 600
}

TEST_F(FftEngineTest, DistortionOfHarmonicSumsByHand)
{
    const std::pair<std::vector<std::pair<double, double>>, double> rows[] = {
        {{{10, 1.0}, {20, 0.1}, {30, 0.05}}, std::sqrt(0.0125 / 1.0125) * 100}, {{{8, 2.0}, {24, 0.4}, {32, 0.1}}, std::sqrt(0.17 / 4.17) * 100},
        {{{40, 1.0}, {80, 0.5}}, std::sqrt(0.25 / 1.25) * 100}, {{{20, 1.0}}, 0.0},
        {{{20, 1.0}, {42, 0.3}, {64, 0.2}}, std::sqrt(0.09 / 1.09) * 100}};  // SuchBreite 3 reaches 42, not 64
    for (const auto& [tones, expected] : rows) {
        Analyse(Tones(256, tones));
        // Harmonic lines without content hold rounding noise of 1e-13 of the fundamental.
        EXPECT_NEAR(FFTDistortion(), expected, 1e-9) << "tones " << tones.size();
    }
    SuchBreite = 4;
    EXPECT_NEAR(FFTDistortion(), std::sqrt(0.13 / 1.13) * 100, 1e-9);
    Analyse(std::vector<double>(256));  // no fundamental
    EXPECT_EQ(FFTDistortion(), 0.0);
    EXPECT_EQ(FFTHarmVal(0), -1.0);
}

}  // namespace
}  // namespace dv::analysis
