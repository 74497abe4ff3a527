#include "analysis/radix2.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <memory>
#include <mutex>
#include <numbers>
#include <vector>

namespace dv::analysis::radix2 {
namespace {

// Everything a transform of one size needs that does not depend on the data: the bit-reversed
// order and, per butterfly stage, its twiddle factors laid out contiguously so the inner loop
// streams over them. Built once per size.
struct TPlan {
    std::vector<unsigned> reversed;  // reversed[i]: the point that goes to position i
    std::vector<double> cosine;      // stage with half-width h uses [h, 2h)
    std::vector<double> sine;
};

TPlan MakePlan(std::size_t points)
{
    TPlan plan;
    const int bits = std::countr_zero(points);
    plan.reversed.resize(points);
    for (std::size_t i = 0; i < points; ++i) {
        unsigned r = 0;
        for (int b = 0; b < bits; ++b) r |= ((i >> b) & 1u) << (bits - 1 - b);
        plan.reversed[i] = r;
    }
    plan.cosine.assign(points, 0.0);
    plan.sine.assign(points, 0.0);
    for (std::size_t half = 1; half < points; half *= 2) {
        for (std::size_t k = 0; k < half; ++k) {
            const double angle = std::numbers::pi * static_cast<double>(k) / static_cast<double>(half);
            plan.cosine[half + k] = std::cos(angle);
            plan.sine[half + k] = std::sin(angle);
        }
    }
    return plan;
}

const TPlan& PlanFor(std::size_t points)
{
    static std::array<std::unique_ptr<TPlan>, 15> plans;
    static std::mutex guard;
    const auto log2 = static_cast<std::size_t>(std::countr_zero(points));
    std::lock_guard lock(guard);
    if (!plans[log2]) plans[log2] = std::make_unique<TPlan>(MakePlan(points));
    return *plans[log2];
}

// Split real and imaginary parts keep the butterfly loops free of shuffles.
struct TScratch {
    std::vector<double> re;
    std::vector<double> im;
};

void Butterflies(double* re, double* im, std::size_t points, const TPlan& plan, double sign)
{
    for (std::size_t i = 0; i < points; i += 2) {
        const double ar = re[i], ai = im[i], br = re[i + 1], bi = im[i + 1];
        re[i] = ar + br;
        im[i] = ai + bi;
        re[i + 1] = ar - br;
        im[i + 1] = ai - bi;
    }
    for (std::size_t half = 2; half < points; half *= 2) {
        const double* wr = plan.cosine.data() + half;
        const double* ws = plan.sine.data() + half;
        for (std::size_t start = 0; start < points; start += 2 * half) {
            double* aRe = re + start;
            double* aIm = im + start;
            double* bRe = aRe + half;
            double* bIm = aIm + half;
            for (std::size_t k = 0; k < half; ++k) {
                const double wi = sign * ws[k];
                const double tr = wr[k] * bRe[k] - wi * bIm[k];
                const double ti = wr[k] * bIm[k] + wi * bRe[k];
                bRe[k] = aRe[k] - tr;
                bIm[k] = aIm[k] - ti;
                aRe[k] += tr;
                aIm[k] += ti;
            }
        }
    }
}

}  // namespace

void ComplexTransform(std::span<double> data, bool inverse)
{
    const std::size_t points = data.size() / 2;
    if (points < 2) return;
    const TPlan& plan = PlanFor(points);
    thread_local TScratch scratch;
    if (scratch.re.size() < points) {
        scratch.re.resize(points);
        scratch.im.resize(points);
    }
    double* re = scratch.re.data();
    double* im = scratch.im.data();
    for (std::size_t i = 0; i < points; ++i) {
        const std::size_t from = plan.reversed[i];
        re[i] = data[2 * from];
        im[i] = data[2 * from + 1];
    }
    Butterflies(re, im, points, plan, inverse ? -1.0 : 1.0);
    for (std::size_t i = 0; i < points; ++i) {
        data[2 * i] = re[i];
        data[2 * i + 1] = im[i];
    }
}

void PackedRealTransform(std::span<double> data, bool inverse)
{
    const std::size_t n = data.size();
    if (n < 4) return;
    const std::size_t points = n / 2;
    // Splitting the packed transform into the spectra of even and odd samples: the constants
    // are those of the classic formulation, c2 = -0.5 forward and +0.5 inverse.
    const double c1 = 0.5;
    const double c2 = inverse ? 0.5 : -0.5;
    const double sign = inverse ? -1.0 : 1.0;
    // exp(i pi p / points) is the twiddle of stage half-width `points` in the plan of n points.
    const TPlan& twiddles = PlanFor(n);
    if (!inverse) ComplexTransform(data, false);
    for (std::size_t i = 1; i < n / 4; ++i) {
        const std::size_t i1 = 2 * i;        // point i
        const std::size_t i3 = n - 2 * i;    // point n/2 - i
        const double wr = twiddles.cosine[points + i];
        const double wi = sign * twiddles.sine[points + i];
        const double h1r = c1 * (data[i1] + data[i3]);
        const double h1i = c1 * (data[i1 + 1] - data[i3 + 1]);
        const double h2r = -c2 * (data[i1 + 1] + data[i3 + 1]);
        const double h2i = c2 * (data[i1] - data[i3]);
        data[i1] = h1r + wr * h2r - wi * h2i;
        data[i1 + 1] = h1i + wr * h2i + wi * h2r;
        data[i3] = h1r - wr * h2r + wi * h2i;
        data[i3 + 1] = -h1i + wr * h2i + wi * h2r;
    }
    const double first = data[0];
    if (!inverse) {
        data[0] = first + data[1];
        data[1] = first - data[1];
    } else {
        data[0] = c1 * (first + data[1]);
        data[1] = c1 * (first - data[1]);
        ComplexTransform(data, true);
    }
}

}  // namespace dv::analysis::radix2
