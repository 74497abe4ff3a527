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
std::vector<LongComplex> LiteralDft(const std::vector<LongComplex>& x, int sign)
{
    const std::size_t n = x.size();
    std::vector<LongComplex> out(n);
    for (std::size_t k = 0; k < n; ++k) {
        for (std::size_t j = 0; j < n; ++j) out[k] += x[j] * std::polar(1.0L, sign * 2 * std::numbers::pi_v<long double> * static_cast<long double>((j * k) % n) / n);
    }
    return out;
}

// Rounding of a radix-2 transform grows like log2(n) * eps times the data's norm; 1e-12 n leaves
// three orders of margin at 1024 points.
TEST(Radix2Test, TransformsMatchTheLiteralDftForEverySize)
{
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    const auto point = [](const std::vector<double>& data, std::size_t k) { return LongComplex(data[2 * k], data[2 * k + 1]); };
    for (std::size_t n = 2; n <= 1024; n *= 2) {
        const double allowed = 1e-12 * static_cast<double>(n);
        for (bool inverse : {false, true}) {
            std::vector<double> data(2 * n);
            for (double& v : data) v = dist(gen);
            std::vector<LongComplex> x(n);
            for (std::size_t i = 0; i < n; ++i) x[i] = point(data, i);
            const auto expected = LiteralDft(x, inverse ? -1 : 1);
            radix2::ComplexTransform(data, inverse);
            for (std::size_t k = 0; k < n; ++k) ASSERT_LT(std::abs(point(data, k) - expected[k]), allowed) << n << " inverse " << inverse << " line " << k;
        }
        if (n < 4) continue;
        // n real samples packed as n/2 points: F(n/2) sits beside F(0), and the inverse gives the samples times n/2.
        std::vector<double> data(n);
        for (double& v : data) v = dist(gen);
        const std::vector<double> original = data;
        auto expected = LiteralDft(std::vector<LongComplex>(data.begin(), data.end()), 1);
        expected[0] = {expected[0].real(), expected[n / 2].real()};
        radix2::PackedRealTransform(data, false);
        for (std::size_t k = 0; k < n / 2; ++k) ASSERT_LT(std::abs(point(data, k) - expected[k]), allowed) << n << " real line " << k;
        radix2::PackedRealTransform(data, true);
        for (std::size_t i = 0; i < n; ++i) ASSERT_NEAR(data[i], original[i] * static_cast<double>(n / 2), allowed) << n << " sample " << i;
    }
}

}  // namespace
}  // namespace dv::analysis
