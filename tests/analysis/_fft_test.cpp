#include "analysis/_fft.h"

#include "tests/analysis/spectrum_refdata.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace dv::analysis {
namespace {

using test::NearScaled;

// Resets the unit state to its initial values around every test: it is process-wide.
class FftEngineTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        FFTDataNr = 256;
        FFTReal = 0;
        FFTWindow = 0;
        SuchBreite = 3;
        FFTResult = 0;
        FFTdt = 1.0;
        FFTGetMem();
    }
    void TearDown() override { FFTFreeMem(); }

    // Puts samples into the engine at its current size and runs transform and spectrum.
    static void Analyse(const std::vector<double>& samples)
    {
        FFTDataClear();
        for (int k = 1; k <= FFTDataNr; ++k) (*FFTData)[static_cast<std::size_t>(FFTIndex(k) - 1)] = samples[static_cast<std::size_t>(k - 1)];
        FFT(false);
        FFTSpectrum();
    }

    // Sines with the given amplitudes on lines bin, 2*bin, 3*bin ... of n points.
    static std::vector<double> Harmonics(int n, int bin, const std::vector<double>& amplitudes, double dc = 0)
    {
        std::vector<double> x(static_cast<std::size_t>(n), dc);
        for (std::size_t h = 0; h < amplitudes.size(); ++h) {
            for (int i = 0; i < n; ++i) {
                x[static_cast<std::size_t>(i)] += amplitudes[h] * std::sin(2 * std::numbers::pi * static_cast<double>(h + 1) * bin * i / n + 0.2 * h);
            }
        }
        return x;
    }

    static double Line(int position) { return (*FFTSpect)[static_cast<std::size_t>(position)]; }
};

TEST_F(FftEngineTest, SetDataNrTakesLargestTableSizeOrRejects)
{
    struct Row {
        int requested;
        int expectedN;  // also the new FFTDataNr when accepted
        bool rejected;
    };
    const Row rows[] = {
        {1000, 512, false}, {4096, 4096, false}, {64, 64, false},    {65, 64, false},
        {4095, 2048, false}, {5000, 5000, true}, {63, 63, true},    {8192, 8192, true},
        {0, 0, true},        {-5, -5, true},
    };
    for (const Row& r : rows) {
        FFTDataNr = 256;
        FFTResult = 0;
        int n = r.requested;
        FFTSetDataNr(n);
        EXPECT_EQ(n, r.expectedN) << r.requested;
        EXPECT_EQ(FFTDataNr, r.rejected ? 256 : r.expectedN) << r.requested;
        EXPECT_EQ(FFTResult, r.rejected ? -2 : 0) << r.requested;
    }
}

TEST_F(FftEngineTest, IndexPlacesRealSamplesDenselyAndComplexOnRealParts)
{
    FFTReal = 1;
    EXPECT_EQ(FFTIndex(1), 1);
    EXPECT_EQ(FFTIndex(7), 7);
    FFTReal = 0;
    EXPECT_EQ(FFTIndex(1), 1);
    EXPECT_EQ(FFTIndex(7), 13);
}

TEST_F(FftEngineTest, SpectrumMatchesNumpyForEveryWindowAndLayout)
{
    std::vector<double> input;
    int checked = 0;
    for (const test::TSpectrumCase& c : test::LoadSpectrumCases("fft_engine.txt")) {
        if (c.name == "input") {
            input = c.values;
            continue;
        }
        int n = c.Int("n");
        FFTSetDataNr(n);
        FFTReal = static_cast<unsigned char>(c.Int("real"));
        FFTWindow = static_cast<unsigned char>(c.Int("window"));
        Analyse(input);
        ASSERT_EQ(c.values.size(), static_cast<std::size_t>(n / 2));
        for (int k = 0; k < n / 2; ++k) {
            // Lines are percent of the largest; double rounding over 1024 points stays near 1e-12.
            EXPECT_TRUE(NearScaled(Line(k), c.values[static_cast<std::size_t>(k)], 100.0, 1e-10))
                << c.Describe() << " line " << k;
        }
        ++checked;
    }
    EXPECT_EQ(checked, 14);
}

TEST_F(FftEngineTest, UnknownWindowKindLeavesDataUnweighted)
{
    const std::vector<double> x = Harmonics(256, 9, {1.0, 0.3}, 0.2);
    Analyse(x);
    const std::vector<double> rectangular(FFTSpect->begin(), FFTSpect->begin() + 128);
    FFTWindow = 7;
    Analyse(x);
    for (int k = 0; k < 128; ++k) EXPECT_EQ(Line(k), rectangular[static_cast<std::size_t>(k)]) << k;
}

TEST_F(FftEngineTest, ToneOnExactBinLeavesEveryOtherLineNearZero)
{
    for (unsigned char real : {0, 1}) {
        FFTReal = real;
        Analyse(Harmonics(256, 5, {1.0}));
        EXPECT_EQ(Fundamental, 5);
        EXPECT_EQ(SpectMaxNr, 5);
        EXPECT_DOUBLE_EQ(SpectMaxVal, 100.0);
        EXPECT_DOUBLE_EQ(Line(5), 100.0);
        for (int k = 0; k < 128; ++k) {
            // Leakage of an exact-bin tone is pure rounding: 1e-12 of the main line.
            if (k != 5) {
                EXPECT_LT(Line(k), 1e-10) << "real " << int(real) << " line " << k;
            }
        }
    }
}

TEST_F(FftEngineTest, LargestDcLineIsNotTheFundamental)
{
    Analyse(Harmonics(256, 7, {0.5}, 10.0));
    EXPECT_EQ(SpectMaxNr, 0);
    EXPECT_EQ(Fundamental, 7);
}

TEST_F(FftEngineTest, EqualLinesMakeTheFirstTheFundamental)
{
    // Written straight into the transformed data: lines 12 and 30 both exactly 5 (3-4-5).
    std::fill_n(FFTTrans->begin(), 512, 0.0);
    for (int line : {30, 12}) {
        (*FFTTrans)[static_cast<std::size_t>(2 * line)] = 3.0;
        (*FFTTrans)[static_cast<std::size_t>(2 * line + 1)] = 4.0;
    }
    FFTSpectrum();
    EXPECT_EQ(Fundamental, 12);
    EXPECT_EQ(SpectMaxNr, 12);
}

TEST_F(FftEngineTest, FrequencyResolutionAndRangeFollowSizeAndInterval)
{
    int n = 512;
    FFTSetDataNr(n);
    FFTdt = 1e-3;
    FFTSpectrum();
    EXPECT_DOUBLE_EQ(FFTdF, 1000.0 / 512);
    EXPECT_DOUBLE_EQ(FFTFMax, 500.0);
}

TEST_F(FftEngineTest, HarmonicsBeyondHalfTheTransformDoNotExist)
{
    int n = 1024;
    FFTSetDataNr(n);
    FFTdt = 1e-4;
    Analyse(Harmonics(1024, 100, {1.0, 0.2, 0.1, 0.05, 0.02}));
    ASSERT_EQ(Fundamental, 100);
    EXPECT_DOUBLE_EQ(FFTHarmFrq(4), 500 * FFTdF);
    EXPECT_NEAR(FFTHarmVal(4), 2.0, 1e-9);
    for (double v : {FFTHarmFrq(5), FFTHarmVal(5), FFTHarmRel(5), FFTHarmdB(5)}) EXPECT_EQ(v, -1.0);
}

TEST_F(FftEngineTest, HarmonicRatiosFromKnownAmplitudes)
{
    Analyse(Harmonics(256, 10, {1.0, 0.1, 0.05}));
    // Exact bins: the ratios are those of the amplitudes up to rounding.
    EXPECT_TRUE(NearScaled(FFTHarmRel(1), 10.0, 10.0, 1e-10));
    EXPECT_TRUE(NearScaled(FFTHarmdB(1), -20.0, 20.0, 1e-10));
    EXPECT_TRUE(NearScaled(FFTHarmdB(2), 20 * std::log10(0.05), 26.0, 1e-10));
    EXPECT_DOUBLE_EQ(FFTHarmRel(0), 100.0);
}

TEST_F(FftEngineTest, DistortionFromHarmonicSumByHand)
{
    struct Row {
        int bin;
        std::vector<double> amplitudes;
    };
    const Row rows[] = {{10, {1.0, 0.1, 0.05}}, {8, {2.0, 0.0, 0.4, 0.1}}, {40, {1.0, 0.5}}, {20, {1.0}}};
    for (const Row& r : rows) {
        Analyse(Harmonics(256, r.bin, r.amplitudes));
        double harmonics = 0;
        double all = 0;
        for (std::size_t h = 0; h < r.amplitudes.size(); ++h) {
            all += r.amplitudes[h] * r.amplitudes[h];
            if (h > 0) harmonics += r.amplitudes[h] * r.amplitudes[h];
        }
        const double expected = std::sqrt(harmonics / all) * 100;
        // Harmonic lines without content hold rounding noise of 1e-13 of the fundamental.
        EXPECT_TRUE(NearScaled(FFTDistortion(), expected, 1.0, 1e-9)) << "bin " << r.bin;
    }
}

TEST_F(FftEngineTest, DistortionWithoutFundamentalIsZero)
{
    Analyse(std::vector<double>(256, 0.0));
    EXPECT_EQ(Fundamental, 0);
    EXPECT_EQ(FFTDistortion(), 0.0);
    EXPECT_EQ(FFTHarmVal(0), -1.0);
}

TEST_F(FftEngineTest, HarmonicSearchLooksSuchBreiteLinesAround)
{
    // Fundamental on 20; the "second harmonic" sits on 42 (two off) and the third on 64 (four off).
    std::vector<double> x = Harmonics(256, 20, {1.0});
    for (auto [bin, amplitude] : {std::pair{42, 0.3}, std::pair{64, 0.2}}) {
        const std::vector<double> tone = Harmonics(256, bin, {amplitude});
        for (std::size_t i = 0; i < x.size(); ++i) x[i] += tone[i];
    }
    Analyse(x);
    EXPECT_DOUBLE_EQ(FFTHarmFrq(1), 42.0 * FFTdF);
    EXPECT_LT(FFTHarmVal(2), 1e-10);  // out of reach: only rounding noise around line 60
    SuchBreite = 4;
    EXPECT_DOUBLE_EQ(FFTHarmFrq(2), 64.0 * FFTdF);
}

TEST_F(FftEngineTest, TransformWindowsTheInputInPlace)
{
    FFTWindow = 2;
    FFTDataClear();
    for (int k = 1; k <= FFTDataNr; ++k) (*FFTData)[static_cast<std::size_t>(FFTIndex(k) - 1)] = 1.0;
    FFT(false);
    EXPECT_DOUBLE_EQ((*FFTData)[FFTIndex(128) - 1], 1.0);  // Hann weight 1 at n = N/2
    EXPECT_NEAR((*FFTData)[FFTIndex(256) - 1], 0.0, 1e-15);
}

TEST_F(FftEngineTest, InverseAfterForwardGivesTheDataTimesTheSize)
{
    const std::vector<double> x = Harmonics(256, 3, {1.0, 0.5}, 0.25);
    Analyse(x);
    std::copy_n(FFTTrans->begin(), 512, FFTData->begin());
    FFT(true);
    for (int k = 1; k <= 256; ++k) {
        EXPECT_NEAR((*FFTTrans)[static_cast<std::size_t>(FFTIndex(k) - 1)], 256 * x[static_cast<std::size_t>(k - 1)], 1e-9) << k;
    }
}

TEST_F(FftEngineTest, SimulationPutsHarmonicWhereAsked)
{
    FFTSimulation(8, 3);
    FFT(false);
    FFTSpectrum();
    EXPECT_EQ(Fundamental, 8);
    EXPECT_NEAR(FFTHarmRel(2), 10.0, 1e-9);
}

TEST_F(FftEngineTest, RejectedSizeKeepsTransformingAtThePreviousSize)
{
    int n = 128;
    FFTSetDataNr(n);
    n = 10000;
    FFTSetDataNr(n);
    Analyse(Harmonics(128, 4, {1.0}));
    EXPECT_EQ(FFTDataNr, 128);
    EXPECT_EQ(Fundamental, 4);
}

}  // namespace
}  // namespace dv::analysis
