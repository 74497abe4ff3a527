#include "analysis/_fft.h"
#include "analysis/radix2.h"

#include "tests/analysis/refdata.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <tuple>
#include <vector>

namespace dv::analysis {
namespace {

class FftEngineTest : public test::ScopeCurveTest {
protected:
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
    const std::tuple<int, int, bool> rows[] = {  // requested, resulting n (and FFTDataNr when accepted), rejected
        {1000, 512, false}, {4096, 4096, false}, {64, 64, false}, {4095, 2048, false}, {5000, 5000, true}, {63, 63, true}, {8192, 8192, true}, {0, 0, true}};
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
    for (const test::TRefCase& c : test::LoadRefCases("fft_engine.txt")) {
        int n = c.Int("n");
        FFTSetDataNr(n);
        FFTReal = static_cast<unsigned char>(c.Int("real"));
        FFTWindow = static_cast<unsigned char>(c.Int("window"));
        ASSERT_EQ(c.values.size(), static_cast<std::size_t>(n / 2));
        Analyse(c.input);
        // Lines are percent of the largest; rounding over 1024 points stays near 1e-12 of it.
        for (int k = 0; k < n / 2; ++k) EXPECT_NEAR(Line(k), c.values[static_cast<std::size_t>(k)], 1e-8) << c.header << " line " << k;
    }
}

TEST_F(FftEngineTest, ToneOnExactBinIsTheFundamentalEvenBelowALargerDc)
{
    for (unsigned char real : {0, 1}) {
        FFTReal = real;
        Analyse(test::Tones(256, {{7, 0.5}}, 10.0));
        EXPECT_EQ(SpectMaxNr, 0);
        EXPECT_EQ(Fundamental, 7);
        // 0.5 * 256 / 2 against 10 * 256; the leakage of an exact-bin tone is pure rounding.
        for (int k = 1; k < 128; ++k) EXPECT_NEAR(Line(k), k == 7 ? 2.5 : 0, 1e-10) << "real " << int(real) << " line " << k;
    }
    std::fill_n(FFTTrans->begin(), 512, 0.0);
    (*FFTTrans)[2 * 30] = (*FFTTrans)[2 * 12] = 5.0;  // lines 12 and 30 exactly equal: the first wins
    FFTSpectrum();
    EXPECT_EQ(Fundamental, 12);
}

TEST_F(FftEngineTest, HarmonicsUpToHalfTheTransformAreRelativeToTheFundamental)
{
    FFTDataNr = 1024;
    FFTdt = 1e-4;
    Analyse(test::Tones(1024, {{100, 1.0}, {200, 0.2}, {300, 0.1}, {400, 0.05}, {500, 0.02}}));
    ASSERT_EQ(Fundamental, 100);
    EXPECT_NEAR(FFTHarmRel(1), 20.0, 1e-9);  // exact bins: the ratios of the amplitudes
    EXPECT_NEAR(FFTHarmdB(3), 20 * std::log10(0.05), 1e-9);
    EXPECT_DOUBLE_EQ(FFTHarmFrq(4), 500 * 1e4 / 1024);
    for (double v : {FFTHarmFrq(5), FFTHarmVal(5), FFTHarmRel(5), FFTHarmdB(5)}) EXPECT_EQ(v, -1.0);  // line 600
}

TEST_F(FftEngineTest, DistortionOfHarmonicSumsByHand)
{
    const std::pair<std::vector<std::pair<double, double>>, double> rows[] = {
        {{{10, 1.0}, {20, 0.1}, {30, 0.05}}, std::sqrt(0.0125 / 1.0125) * 100}, {{{8, 2.0}, {24, 0.4}, {32, 0.1}}, std::sqrt(0.17 / 4.17) * 100},
        {{{40, 1.0}, {80, 0.5}}, std::sqrt(0.25 / 1.25) * 100}, {{{20, 1.0}}, 0.0},
        {{{20, 1.0}, {42, 0.3}, {64, 0.2}}, std::sqrt(0.09 / 1.09) * 100}};  // SuchBreite 3 reaches 42, not 64
    for (const auto& [tones, expected] : rows) {
        Analyse(test::Tones(256, tones));
        EXPECT_NEAR(FFTDistortion(), expected, 1e-9) << "tones " << tones.size();  // empty lines hold 1e-13 noise
    }
    SuchBreite = 4;
    EXPECT_NEAR(FFTDistortion(), std::sqrt(0.13 / 1.13) * 100, 1e-9);
    Analyse(std::vector<double>(256));  // no fundamental
    EXPECT_EQ(FFTDistortion(), 0.0);
    EXPECT_EQ(FFTHarmVal(0), -1.0);
}

using LongComplex = std::complex<long double>;

// The literal DFT, with the engine's sign convention, of interleaved complex data or real samples.
std::vector<LongComplex> LiteralDft(const std::vector<double>& data, bool complexData, int sign)
{
    const std::size_t n = complexData ? data.size() / 2 : data.size();
    std::vector<LongComplex> roots(n), out(n);
    for (std::size_t m = 0; m < n; ++m) roots[m] = std::polar(1.0L, sign * 2 * std::numbers::pi_v<long double> * static_cast<long double>(m) / n);
    for (std::size_t j = 0; j < n; ++j) {
        const LongComplex x = complexData ? LongComplex(data[2 * j], data[2 * j + 1]) : LongComplex(data[j]);
        for (std::size_t k = 0; k < n; ++k) out[k] += x * roots[(j * k) % n];
    }
    return out;
}

// Rounding of a radix-2 transform grows like log2(n) * eps times the data's norm; 1e-12 n leaves
// three orders of margin at 1024 points.
TEST(Radix2Test, TransformsMatchTheLiteralDftForEverySize)
{
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> random(-1.0, 1.0);
    const auto point = [](const std::vector<double>& data, std::size_t k) { return LongComplex(data[2 * k], data[2 * k + 1]); };
    for (std::size_t n = 4; n <= 1024; n *= 2) {
        const double allowed = 1e-12 * static_cast<double>(n);
        for (bool inverse : {false, true}) {
            std::vector<double> data(2 * n);
            std::ranges::generate(data, [&] { return random(gen); });
            const auto expected = LiteralDft(data, true, inverse ? -1 : 1);
            radix2::ComplexTransform(data, inverse);
            for (std::size_t k = 0; k < n; ++k) ASSERT_LT(std::abs(point(data, k) - expected[k]), allowed) << n << " inverse " << inverse << " line " << k;
        }
        // n real samples packed as n/2 points: F(n/2) sits beside F(0); the inverse gives the samples times n/2.
        std::vector<double> data(n);
        std::ranges::generate(data, [&] { return random(gen); });
        const std::vector<double> original = data;
        auto expected = LiteralDft(data, false, 1);
        expected[0] = {expected[0].real(), expected[n / 2].real()};
        radix2::PackedRealTransform(data, false);
        for (std::size_t k = 0; k < n / 2; ++k) ASSERT_LT(std::abs(point(data, k) - expected[k]), allowed) << n << " real line " << k;
        radix2::PackedRealTransform(data, true);
        for (std::size_t i = 0; i < n; ++i) ASSERT_NEAR(data[i], original[i] * static_cast<double>(n / 2), allowed) << n << " sample " << i;
    }
}

}  // namespace
}  // namespace dv::analysis
