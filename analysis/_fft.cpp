#include "analysis/_fft.h"

#include "analysis/radix2.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <span>
#include <vector>

namespace dv::analysis {

int FFTDataNr = 256;
unsigned char FFTReal = 0;
unsigned char FFTWindow = 0;
unsigned char SuchBreite = 3;
FFTDataPtr FFTData = nullptr;
FFTDataPtr FFTTrans = nullptr;
FFTSpectPtr FFTSpect = nullptr;
double FFTdt = 1.0;
double FFTdF = 0;
double FFTFMax = 0;
int Fundamental = 0;
double SpectMaxVal = 0;
int SpectMaxNr = 0;
int FFTResult = 0;

namespace {

constexpr int kSizeTable[] = {64, 128, 256, 512, 1024, 2048, 4096, 8192};
constexpr int kWindowKinds = 5;

// The buffers live as long as the process; FFTGetMem/FFTFreeMem only hand them out and take them
// back, so a measurement never allocates.
FFTDataArray dataStorage;
FFTDataArray transStorage;
FFTSpectArray spectStorage;

// Weights per window kind and size, computed once: the cosine windows would otherwise cost more
// than the transform itself.
const std::vector<double>& WindowTable(int kind, int dataNr)
{
    static std::vector<double> tables[kWindowKinds][std::size(kSizeTable)];
    const auto size = static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(dataNr)) - 6);
    std::vector<double>& table = tables[kind][size];
    if (table.empty()) {
        table.resize(static_cast<std::size_t>(dataNr));
        for (int n = 1; n <= dataNr; ++n) table[static_cast<std::size_t>(n - 1)] = FFTWindowWeight(kind, n, dataNr);
    }
    return table;
}

void ApplyWindow()
{
    if (FFTWindow < 1 || FFTWindow >= kWindowKinds) return;  // rectangular, or no window at all
    const std::vector<double>& weight = WindowTable(FFTWindow, FFTDataNr);
    FFTDataArray& data = *FFTData;
    for (int n = 1; n <= FFTDataNr; ++n) {
        const double w = weight[static_cast<std::size_t>(n - 1)];
        if (FFTReal) {
            data[static_cast<std::size_t>(n - 1)] *= w;
        } else {
            data[static_cast<std::size_t>(2 * n - 2)] *= w;
            data[static_cast<std::size_t>(2 * n - 1)] *= w;
        }
    }
}

double Line(int position) { return (*FFTSpect)[static_cast<std::size_t>(position)]; }

// Spectrum position of harmonic h: the largest line within SuchBreite of its expected place.
int HarmonicPosition(unsigned char h)
{
    if (Fundamental < 1 || FFTSpect == nullptr) return -1;
    const int half = FFTDataNr / 2;
    const int expected = (h + 1) * Fundamental;
    if (expected >= half) return -1;
    int best = expected;
    for (int j = expected - SuchBreite; j <= expected + SuchBreite; ++j) {
        if (j > 0 && j < half && Line(j) > Line(best)) best = j;
    }
    return best;
}

}  // namespace

void FFTSetDataNr(int& n)
{
    if (n > kFFTMaxDataNr || n > kSizeTable[std::size(kSizeTable) - 1] || n < kSizeTable[0]) {
        FFTResult = -2;
        return;
    }
    int chosen = kSizeTable[0];
    for (int size : kSizeTable) {
        if (size <= n) chosen = size;
    }
    FFTDataNr = chosen;
    n = chosen;
}

void FFTGetMem()
{
    FFTData = &dataStorage;
    FFTTrans = &transStorage;
    FFTSpect = &spectStorage;
}

void FFTFreeMem()
{
    FFTData = nullptr;
    FFTTrans = nullptr;
    FFTSpect = nullptr;
}

void FFTDataClear()
{
    if (FFTData == nullptr) return;
    std::fill_n(FFTData->begin(), 2 * FFTDataNr, 0.0);
}

int FFTIndex(int k) { return FFTReal ? k : 2 * k - 1; }

void FFTDataShift()
{
    if (FFTData == nullptr || FFTTrans == nullptr) return;
    std::copy_n(FFTData->begin(), 2 * FFTDataNr, FFTTrans->begin());
}

void FFT(bool inverse)
{
    if (FFTData == nullptr || FFTTrans == nullptr) return;
    ApplyWindow();
    FFTDataShift();
    if (FFTReal) {
        radix2::PackedRealTransform(std::span(FFTTrans->data(), static_cast<std::size_t>(FFTDataNr)), inverse);
    } else {
        radix2::ComplexTransform(std::span(FFTTrans->data(), static_cast<std::size_t>(2 * FFTDataNr)), inverse);
    }
}

void FFTSpectrum()
{
    SpectMaxVal = 0;
    Fundamental = 0;
    double runningMax = 0;
    if (FFTTrans != nullptr && FFTSpect != nullptr) {
        const FFTDataArray& trans = *FFTTrans;
        FFTSpectArray& spect = *FFTSpect;
        for (int k = 1; k <= FFTDataNr / 2; ++k) {
            const double re = trans[static_cast<std::size_t>(2 * k - 2)];
            const double im = trans[static_cast<std::size_t>(2 * k - 1)];
            const double s = std::sqrt(re * re + im * im);
            spect[static_cast<std::size_t>(k - 1)] = s;
            // The DC line is never the fundamental; of equal lines the first wins.
            if (k > 1 && s > runningMax) {
                runningMax = s;
                Fundamental = k - 1;
            }
            if (s > SpectMaxVal) {
                SpectMaxVal = s;
                SpectMaxNr = k - 1;
            }
        }
        if (SpectMaxVal > 0) {
            const double scale = 100.0 / SpectMaxVal;
            for (int k = 0; k < FFTDataNr / 2; ++k) spect[static_cast<std::size_t>(k)] *= scale;
            SpectMaxVal = 100;
        }
    }
    FFTdF = 1.0 / (FFTDataNr * FFTdt);
    FFTFMax = 1.0 / (2.0 * FFTdt);
}

double FFTWindowWeight(int kind, int n, int dataNr)
{
    const double x = n;
    const double size = dataNr;
    const int half = dataNr / 2;  // integer halving
    switch (kind) {
    case 0: return 1.0;
    case 1: return 1.0 - 2.0 * std::abs(n - half) / size;
    case 2: return 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * x / size);
    case 3: {
        const double r = static_cast<double>(n - half) / half;
        return 1.0 - r * r;
    }
    case 4: return 0.54 - 0.46 * std::cos(2.0 * std::numbers::pi * x / size);
    default: return 1.0;
    }
}

double FFTHarmFrq(unsigned char h)
{
    const int position = HarmonicPosition(h);
    return position < 0 ? -1.0 : position * FFTdF;
}

double FFTHarmVal(unsigned char h)
{
    const int position = HarmonicPosition(h);
    return position < 0 ? -1.0 : Line(position);
}

double FFTHarmRel(unsigned char h)
{
    const double value = FFTHarmVal(h);
    return value < 0 ? -1.0 : value / Line(Fundamental) * 100.0;
}

double FFTHarmdB(unsigned char h)
{
    const double value = FFTHarmVal(h);
    return value < 0 ? -1.0 : 20.0 * std::log(value / Line(Fundamental)) / std::log(10.0);
}

double FFTDistortion()
{
    if (Fundamental <= 0) return 0;
    const double fundamental = FFTHarmVal(0);
    double total = fundamental * fundamental;
    double sum = 0;
    for (int h = 1; h <= 101; ++h) {
        const double v = FFTHarmVal(static_cast<unsigned char>(h));
        if (v < 0) break;
        sum += v * v;
        total += v * v;
    }
    if (total == 0) return -1.0;
    return std::sqrt(sum / total) * 100.0;
}

void FFTSimulation(int periods, int harmonic)
{
    if (FFTData == nullptr) return;
    FFTDataClear();
    for (int k = 1; k <= FFTDataNr; ++k) {
        const double phase = 2.0 * std::numbers::pi * (k - 1) / FFTDataNr;
        double value = std::sin(periods * phase);
        if (harmonic > 1) value += 0.1 * std::sin(harmonic * periods * phase);
        (*FFTData)[static_cast<std::size_t>(FFTIndex(k) - 1)] = value;
    }
}

}  // namespace dv::analysis
