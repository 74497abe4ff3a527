#include "analysis/radix2.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <vector>

namespace dv::analysis {
namespace {

using LongComplex = std::complex<long double>;

// The literal DFT with the engine's sign convention, in long double.
std::vector<LongComplex> NaiveDft(const std::vector<LongComplex>& x, int sign)
{
    const std::size_t n = x.size();
    std::vector<LongComplex> unitRoots(n);
    for (std::size_t m = 0; m < n; ++m) {
        const long double angle = sign * 2.0L * std::numbers::pi_v<long double> * static_cast<long double>(m) / n;
        unitRoots[m] = {std::cos(angle), std::sin(angle)};
    }
    std::vector<LongComplex> out(n);
    for (std::size_t k = 0; k < n; ++k) {
        LongComplex sum = 0;
        for (std::size_t j = 0; j < n; ++j) sum += x[j] * unitRoots[(j * k) % n];
        out[k] = sum;
    }
    return out;
}

std::vector<double> RandomData(std::size_t count, unsigned seed)
{
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    std::vector<double> data(count);
    for (double& v : data) v = dist(gen);
    return data;
}

// Rounding of a radix-2 transform grows like log2(n) * eps times the data's norm; 1e-12 of the
// largest input sum leaves three orders of margin at 1024 points.
constexpr double kTolerance = 1e-12;

TEST(Radix2Test, ComplexTransformMatchesLiteralDftForEverySize)
{
    for (std::size_t points = 2; points <= 1024; points *= 2) {
        for (bool inverse : {false, true}) {
            std::vector<double> data = RandomData(2 * points, static_cast<unsigned>(points));
            std::vector<LongComplex> x(points);
            for (std::size_t i = 0; i < points; ++i) x[i] = {data[2 * i], data[2 * i + 1]};
            const auto expected = NaiveDft(x, inverse ? -1 : 1);
            radix2::ComplexTransform(data, inverse);
            const double scale = static_cast<double>(points);
            for (std::size_t k = 0; k < points; ++k) {
                ASSERT_NEAR(data[2 * k], static_cast<double>(expected[k].real()), kTolerance * scale)
                    << "points " << points << " inverse " << inverse << " line " << k;
                ASSERT_NEAR(data[2 * k + 1], static_cast<double>(expected[k].imag()), kTolerance * scale)
                    << "points " << points << " inverse " << inverse << " line " << k;
            }
        }
    }
}

TEST(Radix2Test, PackedRealTransformHoldsHalfSpectrumWithNyquistBesideDc)
{
    for (std::size_t n = 4; n <= 1024; n *= 2) {
        std::vector<double> data = RandomData(n, static_cast<unsigned>(n) + 7);
        std::vector<LongComplex> x(data.begin(), data.end());
        const auto expected = NaiveDft(x, 1);
        const std::vector<double> original = data;
        radix2::PackedRealTransform(data, false);
        const double tolerance = kTolerance * static_cast<double>(n);
        ASSERT_NEAR(data[0], static_cast<double>(expected[0].real()), tolerance) << n;
        ASSERT_NEAR(data[1], static_cast<double>(expected[n / 2].real()), tolerance) << n;
        for (std::size_t k = 1; k < n / 2; ++k) {
            ASSERT_NEAR(data[2 * k], static_cast<double>(expected[k].real()), tolerance) << n << " line " << k;
            ASSERT_NEAR(data[2 * k + 1], static_cast<double>(expected[k].imag()), tolerance) << n << " line " << k;
        }
        // The inverse returns the samples times n/2.
        radix2::PackedRealTransform(data, true);
        for (std::size_t i = 0; i < n; ++i) {
            ASSERT_NEAR(data[i], original[i] * static_cast<double>(n / 2), tolerance) << n << " sample " << i;
        }
    }
}

}  // namespace
}  // namespace dv::analysis
