#include "analysis/iirfilter.h"

#include "framework/exceptions.h"
#include "framework/translate.h"

#include <liquid/liquid.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <vector>

namespace dv::analysis {

static_assert(static_cast<int>(TFilterResponse::LowPass) == LIQUID_IIRDES_LOWPASS);
static_assert(static_cast<int>(TFilterResponse::HighPass) == LIQUID_IIRDES_HIGHPASS);
static_assert(static_cast<int>(TFilterResponse::BandPass) == LIQUID_IIRDES_BANDPASS);

namespace {

using Complex = std::complex<double>;

// Bilinear transform s = K (z - 1) / (z + 1); prewarping with the same K keeps the edges exact.
constexpr double K = 2.0;

double Prewarp(double frequency, double sampleRate)
{
    return K * std::tan(std::numbers::pi * frequency / sampleRate);
}

QString Number(double v) { return QString::number(v, 'g', 10); }

void Validate(TFilterResponse response, int order, double f1, double f2, double rate)
{
    if (order < 1 || order > kMaxFilterOrder) {
        throw TDravikException(Format(_("Ungültige Filterordnung %d (erlaubt 1 bis %d)"),
                                      {QString::number(order), QString::number(kMaxFilterOrder)}));
    }
    if (!(rate > 0) || !std::isfinite(rate)) {
        throw TDravikException(Format(_("Ungültige Abtastrate %s"), {Number(rate)}));
    }
    auto checkEdge = [rate](double f) {
        if (!(f > 0 && f < rate / 2)) {
            throw TDravikException(Format(_("Grenzfrequenz %s liegt nicht zwischen 0 und der halben Abtastrate %s"),
                                          {Number(f), Number(rate)}));
        }
    };
    checkEdge(f1);
    if (response == TFilterResponse::BandPass) {
        checkEdge(f2);
        if (!(f1 < f2)) {
            throw TDravikException(Format(_("Untere Grenzfrequenz %s ist nicht kleiner als die obere %s"),
                                          {Number(f1), Number(f2)}));
        }
    }
}

// The poles above the real axis (one of each conjugate pair) ordered by real part, then the real
// poles ordered likewise.
std::vector<Complex> ReducedPoles(const std::vector<Complex>& all)
{
    constexpr double tolerance = 100 * std::numeric_limits<double>::epsilon();
    std::vector<Complex> complexPoles, realPoles;
    for (const Complex& p : all) {
        if (std::abs(p.imag()) <= tolerance * std::abs(p)) {
            realPoles.emplace_back(p.real(), 0.0);
        } else if (p.imag() > 0) {
            complexPoles.push_back(p);
        }
    }
    auto byReal = [](const Complex& a, const Complex& b) {
        return a.real() != b.real() ? a.real() < b.real() : a.imag() < b.imag();
    };
    std::ranges::stable_sort(complexPoles, byReal);
    std::ranges::stable_sort(realPoles, byReal);
    complexPoles.insert(complexPoles.end(), realPoles.begin(), realPoles.end());
    return complexPoles;
}

bool IsReal(Complex p) { return p.imag() == 0; }

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

// Index of the pole nearest to the unit circle, of the real ones only when asked; the first of
// equally near ones; kNone when there is none.
std::size_t NearestToUnitCircle(const std::vector<Complex>& poles, bool realOnly)
{
    std::size_t best = kNone;
    for (std::size_t i = 0; i < poles.size(); ++i) {
        if (realOnly && !IsReal(poles[i])) continue;
        if (best == kNone || std::abs(1 - std::abs(poles[i])) < std::abs(1 - std::abs(poles[best]))) best = i;
    }
    return best;
}

template <typename T>
T Take(std::vector<T>& v, std::size_t i)
{
    const T e = v[i];
    v.erase(v.begin() + static_cast<std::ptrdiff_t>(i));
    return e;
}

// Removes and returns the zero nearest to p; the first (lowest) of equally near ones.
double TakeNearestZero(std::vector<double>& zeros, Complex p)
{
    std::size_t best = 0;
    for (std::size_t i = 1; i < zeros.size(); ++i) {
        if (std::abs(zeros[i] - p) < std::abs(zeros[best] - p)) best = i;
    }
    return Take(zeros, best);
}

// Second-order sections from the digital poles and as many real zeros. Working from the last
// section back, the pole nearest the unit circle goes in next and takes the two zeros nearest to
// it; the gain goes into the first section. A band pass thus gets a double zero at z = 1 beside its
// low poles and at z = -1 beside its high ones: a zero pair (1, -1) on every section instead lets
// the signal between the sections of a wide band grow by orders of magnitude.
TSosCascade PairIntoSections(const std::vector<Complex>& allPoles, std::vector<double> zeros, double gain)
{
    std::vector<Complex> poles = ReducedPoles(allPoles);
    if (allPoles.size() % 2 == 1) {  // an odd count gets a pole and a zero at the origin
        poles.emplace_back(0.0, 0.0);
        zeros.push_back(0.0);
    }
    std::ranges::sort(zeros);
    TSosCascade cascade;
    cascade.count = static_cast<int>((allPoles.size() + 1) / 2);
    for (int si = cascade.count - 1; si >= 0; --si) {
        TBiquad& s = cascade.sections[static_cast<std::size_t>(si)];
        const Complex p1 = Take(poles, NearestToUnitCircle(poles, false));
        const bool realLeft = std::ranges::any_of(poles, IsReal);
        if (IsReal(p1) && !realLeft) {  // the last real pole: a first-order section
            const double z1 = TakeNearestZero(zeros, p1);
            s = {1, -z1, 0, -p1.real(), 0};
            continue;
        }
        const Complex p2 = IsReal(p1) ? Take(poles, NearestToUnitCircle(poles, true)) : std::conj(p1);
        const double z1 = TakeNearestZero(zeros, p1);
        const double z2 = TakeNearestZero(zeros, p1);
        s = {1, -(z1 + z2), z1 * z2, -(p1 + p2).real(), (p1 * p2).real()};
    }
    TBiquad& first = cascade.sections[0];
    first.b0 *= gain;
    first.b1 *= gain;
    first.b2 *= gain;
    return cascade;
}
}  // namespace

TSosCascade DesignButterworth(TFilterResponse response, int order, double frequency1, double frequency2,
                              double sampleRate)
{
    Validate(response, order, frequency1, frequency2, sampleRate);

    // Analog prototype: n poles evenly on the left half of the unit circle, no zeros.
    std::vector<Complex> poles;
    for (int m = -order + 1; m < order; m += 2) {
        poles.push_back(-std::exp(Complex(0, std::numbers::pi * m / (2.0 * order))));
    }
    int zerosAtOrigin = 0;
    double gain = 1.0;
    std::vector<Complex> analog;
    if (response == TFilterResponse::LowPass) {
        const double wc = Prewarp(frequency1, sampleRate);
        for (const Complex& p : poles) analog.push_back(wc * p);
        gain = std::pow(wc, order);
    } else if (response == TFilterResponse::HighPass) {
        const double wc = Prewarp(frequency1, sampleRate);
        Complex product = 1.0;
        for (const Complex& p : poles) {
            analog.push_back(wc / p);
            product *= -p;
        }
        zerosAtOrigin = order;
        gain = (1.0 / product).real();
    } else {
        const double w1 = Prewarp(frequency1, sampleRate);
        const double w2 = Prewarp(frequency2, sampleRate);
        const double bandwidth = w2 - w1;
        const double centre2 = w1 * w2;
        for (const Complex& p : poles) {
            const Complex scaled = p * (bandwidth / 2);
            const Complex root = std::sqrt(scaled * scaled - centre2);
            analog.push_back(scaled + root);
            analog.push_back(scaled - root);
        }
        zerosAtOrigin = order;
        gain = std::pow(bandwidth, order);
    }

    // Bilinear transform; zeros at infinity land on z = -1, those at the origin on z = +1.
    Complex gainFactor = std::pow(K, zerosAtOrigin);
    std::vector<Complex> digital;
    for (const Complex& p : analog) {
        digital.push_back((K + p) / (K - p));
        gainFactor /= (K - p);
    }
    std::vector<double> zeros(digital.size() - static_cast<std::size_t>(zerosAtOrigin), -1.0);
    zeros.insert(zeros.end(), static_cast<std::size_t>(zerosAtOrigin), 1.0);
    return PairIntoSections(digital, zeros, gain * gainFactor.real());
}

namespace {

constexpr std::size_t kGroupSections = 4;  // states and coefficients of four sections fit in registers
constexpr std::size_t kBlockSamples = 1024;

// Up to four sections over a run of samples, sample by sample so that the sections' dependency
// chains overlap in the pipeline. The count is a template argument so that the loop unrolls and
// the states stay in registers: a state stored and reloaded every sample would put memory
// latency on the recursion's critical path. input and output may be the same memory.
template <std::size_t Count>
inline __attribute__((always_inline)) void RunGroup(const TBiquad* sections, double* state1, double* state2, const double* input, double* output,
              std::size_t length)
{
    std::array<TBiquad, Count> s;
    std::array<double, Count> s1;
    std::array<double, Count> s2;
    for (std::size_t k = 0; k < Count; ++k) {
        s[k] = sections[k];
        s1[k] = state1[k];
        s2[k] = state2[k];
    }
    for (std::size_t i = 0; i < length; ++i) {
        double x = input[i];
        for (std::size_t k = 0; k < Count; ++k) {
            const double y = s[k].b0 * x + s1[k];
            s1[k] = s[k].b1 * x - s[k].a1 * y + s2[k];
            s2[k] = s[k].b2 * x - s[k].a2 * y;
            x = y;
        }
        output[i] = x;
    }
    for (std::size_t k = 0; k < Count; ++k) {
        state1[k] = s1[k];
        state2[k] = s2[k];
    }
}

// Where the processor has FMA a second build fuses each multiply with its add: half the
// arithmetic instructions on a path that is bound by them.
__attribute__((target_clones("fma", "default"))) void RunAnyGroup(std::size_t count, const TBiquad* sections, double* state1, double* state2, const double* input,
                 double* output, std::size_t length)
{
    switch (count) {
    case 1: RunGroup<1>(sections, state1, state2, input, output, length); break;
    case 2: RunGroup<2>(sections, state1, state2, input, output, length); break;
    case 3: RunGroup<3>(sections, state1, state2, input, output, length); break;
    default: RunGroup<4>(sections, state1, state2, input, output, length); break;
    }
}

}  // namespace

void RunCascade(const TSosCascade& cascade, std::span<const double> input, std::span<double> output)
{
    const std::size_t length = std::min(input.size(), output.size());
    const auto count = static_cast<std::size_t>(cascade.count);
    std::array<double, kMaxFilterOrder> state1{};
    std::array<double, kMaxFilterOrder> state2{};
    if (count <= kGroupSections) {
        if (count > 0) RunAnyGroup(count, cascade.sections.data(), state1.data(), state2.data(), input.data(), output.data(), length);
        return;
    }
    // Longer cascades go four sections at a time over blocks that stay in the first-level cache;
    // each group after the first works in place on the block the one before it wrote.
    for (std::size_t start = 0; start < length; start += kBlockSamples) {
        const std::size_t block = std::min(kBlockSamples, length - start);
        for (std::size_t first = 0; first < count; first += kGroupSections) {
            const double* from = first == 0 ? input.data() + start : output.data() + start;
            RunAnyGroup(std::min(kGroupSections, count - first), cascade.sections.data() + first, state1.data() + first,
                        state2.data() + first, from, output.data() + start, block);
        }
    }
}

}  // namespace dv::analysis
