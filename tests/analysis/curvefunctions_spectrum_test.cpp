// The spectrum: the unit's FFT engine (table sizes, windows, harmonics, distortion) and its radix-2
// transforms against numpy and the literal DFT; the curve functions' amplitude spectra, distortion
// and SINAD against numpy and signals with known answers.
#include "analysis/_fft.h"
#include "analysis/curvefunctions_spectrum.h"
#include "analysis/fftwspectrum.h"
#include "analysis/radix2.h"
#include "tests/analysis/refdata.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <thread>
#include <tuple>
#include <vector>

namespace dv::analysis {
namespace {

class SpectrumFunctionsTest : public test::ScopeCurveTest {};

TEST_F(SpectrumFunctionsTest, AmplitudeSpectrumOfTheRangeMatchesNumpy)
{
    for (const test::TRefCase& c : test::LoadRefCases("fft_amplitudes.txt")) {
        // The reference is the largest power of two from the range start, the rest far off. Both
        // sides are double FFTs of 1024 points: rounding stays near 1e-15 of the largest line (about 1).
        std::vector<double> y(1500, 100.0);
        std::ranges::copy(c.input, y.begin() + 256);
        SetCurve(y, 1024);
        ScopeStore().SetClip("0,25", "");
        ScopeSettings()._FFTWindow = static_cast<unsigned char>(c.Int("window"));
        const TMemArray spectrum = FastFourierTransformation(1, 0);
        EXPECT_DOUBLE_EQ(spectrum.rate, 1.0);  // 1024 Hz over 1024 points, from the sample times
        ASSERT_EQ(spectrum.a.size(), c.values.size()) << c.header;
        for (std::size_t k = 0; k < c.values.size(); ++k) EXPECT_NEAR(spectrum.a[k], c.values[k], 1e-12) << c.header << " line " << k;
    }
    EXPECT_DOUBLE_EQ(FastFourierTransformation(1, 2048).rate, 2.0);  // a given rate wins over the times
}

TEST_F(SpectrumFunctionsTest, AmplitudeSpectrumOfEverySizeMatchesNumpy)
{
    // The real spectrum is unfolded from a transform of half as many complex points: its edges
    // (lines 0 and n/2, two points unfolding from one, the middle line) and its twiddle tables
    // (one level at 64 points, two at 2048) are where such unfolding goes wrong.
    for (const test::TRefCase& c : test::LoadRefCases("fft_amplitude_sizes.txt")) {
        std::vector<double> lines(c.input.size() / 2 + 1, -1.0);
        AmplitudeSpectrum(c.input, c.Int("window"), lines);
        ASSERT_EQ(lines.size(), c.values.size()) << c.header;
        for (std::size_t k = 0; k < lines.size(); ++k) EXPECT_NEAR(lines[k], c.values[k], 1e-12) << c.header << " line " << k;
    }
}

TEST_F(SpectrumFunctionsTest, DistortionOffTheLinesMatchesNumpy)
{
    SetCurve(std::vector<double>(64, 3.0), 100);
    EXPECT_EQ(Klirrfaktor(1), 0.0);  // flat and unweighted: no line above DC
    for (const test::TRefCase& c : test::LoadRefCases("thd.txt")) {
        SetCurve(c.values, c.Number("n"));
        ScopeSettings()._FFTWindow = static_cast<unsigned char>(c.Int("window"));
        // The same lines picked from two double FFTs: only rounding differs.
        EXPECT_NEAR(Klirrfaktor(1), c.Number("thd"), 1e-9 * c.Number("thd")) << c.header;
    }
}

TEST_F(SpectrumFunctionsTest, SpectraOnSeveralThreadsEqualTheSerialOnes)
{
    // Sizes no other test uses, so that their plans and window weights are made here: on six
    // threads at once, and by the background preparation asked for the same sizes meanwhile.
    const auto spectrum = [](int i) {
        const std::vector<double> input = test::Tones(32 << (i % 3), {{1.3 + i, 1.0}, {5.0, 0.2}});
        std::vector<double> lines(input.size() / 2 + 1);
        AmplitudeSpectrum(input, i % 5, lines);
        return lines;
    };
    std::vector<std::vector<double>> parallel(6), serial(6);
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; ++i) PrepareSpectrum(std::size_t{32} << (i % 3), (i + 1) % 5);
    for (int i = 0; i < 6; ++i) threads.emplace_back([&, i] { for (int repeat = 0; repeat < 50; ++repeat) parallel[static_cast<std::size_t>(i)] = spectrum(i); });
    for (std::thread& t : threads) t.join();
    for (int i = 0; i < 6; ++i) serial[static_cast<std::size_t>(i)] = spectrum(i);
    EXPECT_EQ(parallel, serial);
}

TEST_F(SpectrumFunctionsTest, FirstSpectrumOfALongCurveIsNotPlannedByMeasuring)
{
    // No other test takes 2^20 points, so this is the first spectrum of the size: an estimated
    // plan and one transform take some 0.05 s even unoptimised; measuring the plan took 14 s.
    // The bound is far from both.
    SetCurve(test::Tones(1 << 20, {{1000, 1.0}}), 1 << 20);
    const auto start = std::chrono::steady_clock::now();
    const TMemArray spectrum = FastFourierTransformation(1, 0);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_LT(seconds, 2.0);
    ASSERT_EQ(spectrum.a.size(), (1u << 19) + 1);
    EXPECT_NEAR(spectrum.a[1000], 1.0, 1e-9);
}

TEST_F(SpectrumFunctionsTest, SinadOfSineWithKnownNoise)
{
    // A flat curve has no noise. The transform takes as many points as the range's last index: 4,096 samples make 2,048.
    SetCurve(std::vector<double>(4096, 1.0), 1000);
    EXPECT_EQ(Sinad(1), 0.0);
    EXPECT_EQ(FFTDataNr, 2048);
    for (const test::TRefCase& c : test::LoadRefCases("sinad.txt")) {
        SetCurve(c.values, c.Number("rate"));
        ScopeSettings()._Abtastrate = QString::number(c.Number("rate"));
        ScopeSettings()._Bandbreite = c.params.at("bandwidth") == "-" ? "" : QString::fromStdString(c.params.at("bandwidth"));
        ScopeSettings()._FFTWindow = static_cast<unsigned char>(c.Int("window"));
        const double sinad = Sinad(1);
        ASSERT_EQ(FFTDataNr, 4096) << c.header;
        // Against numpy's lines (we round to two decimals) and the true powers (noise in the notch counts as signal).
        EXPECT_NEAR(sinad, c.Number("lines"), 0.007) << c.header;
        EXPECT_NEAR(sinad, c.Number("sinad"), 0.15) << c.header;
    }
}

TEST_F(SpectrumFunctionsTest, SinadReadsWhatTheCallBeforeLeftBelowAClippedStart)
{
    // The buffers live as long as the process, and the transform reads them from position 0: the
    // second call, clipped to start at sample 3,000, transforms the first call's spectrum lines
    // and samples below its range. The first call fills every position, whatever ran before.
    const std::vector<test::TRefCase> calls = test::LoadRefCases("sinad_buffers.txt");
    ASSERT_EQ(calls.size(), 2u);
    ScopeSettings()._Abtastrate = "10000";
    for (const test::TRefCase& c : calls) {
        SetCurve(c.values, c.Number("rate"));
        ScopeStore().SetClip(c.params.contains("clip") ? QString::fromStdString(c.params.at("clip")) : QString(), {});
        const double sinad = Sinad(1);
        EXPECT_EQ(RangeFrom, c.params.contains("from") ? c.Int("from") : 0) << c.header;
        EXPECT_NEAR(sinad, c.Number("sinad"), 0.0051) << c.header;  // ours is rounded to two decimals
    }
}

TEST_F(SpectrumFunctionsTest, SinadNotchFollowsUsefulSignalAndBandwidth)
{
    // 1,025 samples at 1,024 Hz: 1,024 points on lines 1 Hz apart; 1.0 on 50 Hz and 0.1 on 90 Hz.
    SetCurve(test::Tones(1024, {{50, 1.0}, {90, 0.1}}, 0, 1025), 1024);
    const double on50 = std::nearbyint(1000 * std::log10(1.01 / 0.01)) / 100;
    const double on90 = std::nearbyint(1000 * std::log10(1.01 / 1.0)) / 100;
    const std::tuple<const char*, const char*, const char*, double> rows[] = {  // rate, signal, half-width: notches end on 50 or 90
        {"1024", "", "", on50}, {"1024", "90", "", on90}, {"1024", "0,4", "", on50}, {"1024", "60", "10", on50}, {"1024", "80", "10", on90},
        {"1024", "", "39", on50}, {"0", "", "10", 0.0}};  // signal line 0 means the fundamental; rate 0 makes the notch cover all
    for (const auto& [rate, signal, bandwidth, expected] : rows) {
        ScopeSettings()._Abtastrate = rate;
        ScopeSettings()._Nutzsignal = signal;
        ScopeSettings()._Bandbreite = bandwidth;
        EXPECT_NEAR(Sinad(1), expected, 1e-9) << rate << " " << signal << " " << bandwidth;
    }
}

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
