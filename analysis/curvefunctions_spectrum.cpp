#include "analysis/curvefunctions_spectrum.h"

#include "analysis/_fft.h"
#include "analysis/curvestore.h"
#include "analysis/fftwspectrum.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace dv::analysis {

double KurvenOffset(int curve);  // with the other measurements of the curve functions

namespace {

constexpr int kSinadBufferLength = 4097;

// Rounds half to even, as the scope's number conversions do, saturating instead of overflowing
// when a rate of 0 makes a bin count infinite.
int RoundToInt(double v)
{
    if (std::isnan(v)) return 0;
    constexpr double limit = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::nearbyint(v), -limit, limit));
}

// The offset reaches SINAD as the scope's number text would carry it: 15 significant digits.
double ThroughText(double v) { return StrToFloatP(QString::number(v, 'g', 15)); }

std::span<const double> ZoomedRange(int curve)
{
    const TCurveStore& store = ScopeStore();
    int from = 0;
    int to = 0;
    store.GetCurveZoomParams(curve, from, to);
    const std::span<const double> y = store.Y(curve);
    if (from < 0 || to < from || static_cast<std::size_t>(to) >= y.size()) return {};
    return y.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from + 1));
}

}  // namespace

double SinadOfLines(std::span<const double> lines, int fundamental, int halfWidth)
{
    double total = 0;
    double noise = 0;
    for (std::size_t k = 1; k < lines.size(); ++k) {
        const double power = lines[k] * lines[k];
        total += power;
        const auto bin = static_cast<long long>(k);
        if (bin < static_cast<long long>(fundamental) - halfWidth || bin > static_cast<long long>(fundamental) + halfWidth) {
            noise += power;
        }
    }
    if (!(noise > 0)) return 0;
    const double sinad = std::log(std::sqrt(total / noise)) * 8.685889638;
    return std::nearbyint(sinad * 100) / 100;
}

double Sinad(int curve)
{
    TCurveStore& store = ScopeStore();
    const TScopeSettings& settings = ScopeSettings();
    const double offset = ThroughText(KurvenOffset(curve));

    // Two buffers kept for the life of the process, as the transform reads positions below the
    // range start too: whatever an earlier call left there (zero at first) stays in.
    static std::vector<double> samples(kSinadBufferLength, 0.0);
    static std::vector<double> copy(kSinadBufferLength, 0.0);

    store.ClearCrosses();
    if (store.CurveValuesCount(curve) - 2 < 1) return 0;
    store.GetCurveZoomParams(curve, RangeFrom, RangeTo);
    const std::span<const double> y = store.Y(curve);
    // The buffers end at position 4096; the transform takes at most 4096 points anyway.
    const int last = std::min(RangeTo, kSinadBufferLength - 1);
    for (int i = std::max(RangeFrom, 0); i <= last; ++i) {
        samples[static_cast<std::size_t>(i)] = y[static_cast<std::size_t>(i)] - offset;
        copy[static_cast<std::size_t>(i)] = samples[static_cast<std::size_t>(i)];
    }

    int n = std::min(RangeTo, kFFTMaxDataNr);
    FFTSetDataNr(n);  // a range under 64 samples keeps the size in force
    const double dt = 1.0 / StrToFloatP(settings._Abtastrate);
    FFTWindow = settings._FFTWindow;
    FFTGetMem();
    FFTDataClear();
    for (int k = 1; k <= std::min(n, FFTDataNr); ++k) {
        (*FFTData)[static_cast<std::size_t>(FFTIndex(k) - 1)] = samples[static_cast<std::size_t>(k - 1)];
    }
    FFT(false);
    FFTdt = dt;
    FFTSpectrum();
    const auto lineCount = static_cast<std::size_t>(FFTDataNr / 2);
    std::copy_n(FFTSpect->begin(), lineCount, samples.begin());
    std::copy_n(FFTSpect->begin(), lineCount, copy.begin());

    int halfWidth = RoundToInt(StrToFloatP(settings._Bandbreite));
    halfWidth = halfWidth > 0 ? RoundToInt(halfWidth / FFTdF) : 1;
    int fundamental = Fundamental;
    if (!settings._Nutzsignal.isEmpty()) {
        fundamental = RoundToInt(StrToFloatP(settings._Nutzsignal) / FFTdF);
        if (fundamental == 0) fundamental = Fundamental;
    }
    // Line N/2 is not part of the engine's spectrum, so the sums end below it.
    const double result = SinadOfLines(std::span(samples.data(), lineCount), fundamental, halfWidth);
    FFTFreeMem();
    return result;
}

TMemArray FastFourierTransformation(int curve, int sampleRate)
{
    TMemArray result;
    const std::span<const double> range = ZoomedRange(curve);
    const std::size_t n = PowerOfTwoAtMost(range.size());
    if (n < 2) return result;
    double rate = sampleRate;
    if (rate <= 0) {
        int from = 0;
        int to = 0;
        ScopeStore().GetCurveZoomParams(curve, from, to);
        const double dt = ScopeStore().GetValue(curve, from + 1).x - ScopeStore().GetValue(curve, from).x;
        rate = dt > 0 ? 1.0 / dt : 0.0;
    }
    result.a.resize(n / 2 + 1);
    AmplitudeSpectrum(range.first(n), ScopeSettings()._FFTWindow, result.a);
    result.rate = rate / static_cast<double>(n);
    return result;
}

double Klirrfaktor(int curve)
{
    const std::span<const double> range = ZoomedRange(curve);
    const std::size_t n = PowerOfTwoAtMost(range.size());
    if (n < 4) return 0;
    thread_local std::vector<double> lines;
    lines.resize(n / 2 + 1);
    AmplitudeSpectrum(range.first(n), ScopeSettings()._FFTWindow, lines);
    // Lines 0 .. n/2 - 1, the span the engine searches for harmonics.
    return HarmonicDistortion(std::span(lines.data(), n / 2), SuchBreite);
}

}  // namespace dv::analysis
