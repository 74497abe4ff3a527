#include "analysis/radix2.h"

#include <algorithm>
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
    std::vector<double> negativeSine;  // the inverse's twiddles
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
    plan.negativeSine = plan.sine;
    for (double& v : plan.negativeSine) v = -v;
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

// Reads the points in bit-reversed order straight into the first two stages: their twiddles are
// 1 and +-i, so they need no multiplications. points >= 4.
inline __attribute__((always_inline)) void GatherFirstTwoStages(const double* data, double* re, double* im,
                                                                 std::size_t points, const TPlan& plan, double sign)
{
    const unsigned* order = plan.reversed.data();
    for (std::size_t i = 0; i < points; i += 4) {
        const double* p0 = data + 2 * order[i];
        const double* p1 = data + 2 * order[i + 1];
        const double* p2 = data + 2 * order[i + 2];
        const double* p3 = data + 2 * order[i + 3];
        const double s0r = p0[0] + p1[0], s0i = p0[1] + p1[1];
        const double d0r = p0[0] - p1[0], d0i = p0[1] - p1[1];
        const double s1r = p2[0] + p3[0], s1i = p2[1] + p3[1];
        const double d1r = p2[0] - p3[0], d1i = p2[1] - p3[1];
        const double tr = -sign * d1i, ti = sign * d1r;  // (+-i) * d1
        re[i] = s0r + s1r;
        im[i] = s0i + s1i;
        re[i + 2] = s0r - s1r;
        im[i + 2] = s0i - s1i;
        re[i + 1] = d0r + tr;
        im[i + 1] = d0i + ti;
        re[i + 3] = d0r - tr;
        im[i + 3] = d0i - ti;
    }
}

// One block of a stage: points a[k] and b[k] = a[k + half] with twiddle w[k]. Separate arrays
// that never overlap, so the loop runs in vector registers.
inline __attribute__((always_inline)) void BlockButterflies(double* __restrict aRe, double* __restrict aIm,
                                                            double* __restrict bRe, double* __restrict bIm,
                                                            const double* __restrict wr,
                                                            const double* __restrict wi, std::size_t half)
{
    for (std::size_t k = 0; k < half; ++k) {
        const double tr = wr[k] * bRe[k] - wi[k] * bIm[k];
        const double ti = wr[k] * bIm[k] + wi[k] * bRe[k];
        bRe[k] = aRe[k] - tr;
        bIm[k] = aIm[k] - ti;
        aRe[k] += tr;
        aIm[k] += ti;
    }
}

// The last stage writes its results interleaved back into the caller's data.
inline __attribute__((always_inline)) void LastStageScatter(const double* __restrict re, const double* __restrict im,
                                                            double* __restrict data, const double* __restrict wr,
                                                            const double* __restrict wi, std::size_t half)
{
    for (std::size_t k = 0; k < half; ++k) {
        const double tr = wr[k] * re[k + half] - wi[k] * im[k + half];
        const double ti = wr[k] * im[k + half] + wi[k] * re[k + half];
        data[2 * k] = re[k] + tr;
        data[2 * k + 1] = im[k] + ti;
        data[2 * (k + half)] = re[k] - tr;
        data[2 * (k + half) + 1] = im[k] - ti;
    }
}

// The whole transform of points >= 8. Where the processor has AVX and FMA a second build runs
// four points at a time.
__attribute__((target_clones("fma", "default"))) void Transform(double* data, double* re, double* im,
                                                                         std::size_t points, const TPlan& plan,
                                                                         bool inverse)
{
    GatherFirstTwoStages(data, re, im, points, plan, inverse ? -1.0 : 1.0);
    const double* sine = (inverse ? plan.negativeSine : plan.sine).data();
    const double* cosine = plan.cosine.data();
    std::size_t half = 4;
    for (; half < points / 2; half *= 2) {
        for (std::size_t start = 0; start < points; start += 2 * half) {
            BlockButterflies(re + start, im + start, re + start + half, im + start + half, cosine + half,
                             sine + half, half);
        }
    }
    LastStageScatter(re, im, data, cosine + half, sine + half, half);
}

// Sizes 2 and 4 by the literal definition; the fast path starts at 8.
void SmallTransform(double* data, std::size_t points, bool inverse)
{
    const double sign = inverse ? -1.0 : 1.0;
    double out[8] = {};
    for (std::size_t k = 0; k < points; ++k) {
        for (std::size_t j = 0; j < points; ++j) {
            const std::size_t m = (j * k) % points;
            // exp(sign * 2 pi i m / points) for points 2 or 4: 1, i, -1, -i.
            const double c = (points == 2) ? (m == 0 ? 1 : -1) : (m == 0 ? 1 : m == 2 ? -1 : 0);
            const double s = (points == 2) ? 0 : sign * (m == 1 ? 1 : m == 3 ? -1 : 0);
            out[2 * k] += c * data[2 * j] - s * data[2 * j + 1];
            out[2 * k + 1] += c * data[2 * j + 1] + s * data[2 * j];
        }
    }
    std::copy_n(out, 2 * points, data);
}

}  // namespace

void ComplexTransform(std::span<double> data, bool inverse)
{
    const std::size_t points = data.size() / 2;
    if (points < 2) return;
    if (points < 8) {
        SmallTransform(data.data(), points, inverse);
        return;
    }
    const TPlan& plan = PlanFor(points);
    thread_local TScratch scratch;
    if (scratch.re.size() < points) {
        scratch.re.resize(points);
        scratch.im.resize(points);
    }
    Transform(data.data(), scratch.re.data(), scratch.im.data(), points, plan, inverse);
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
