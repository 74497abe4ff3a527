#pragma once
// The in-place radix-2 transforms of the spectrum engine, over interleaved complex data
// (real part, imaginary part of each point in turn). Forward uses the positive exponent
// exp(+2 pi i j k / n); neither direction scales. Sizes are powers of two up to kRadix2MaxPoints.
#include <span>

namespace dv::analysis::radix2 {

inline constexpr int kMaxPoints = 8192;

// Complex transform of data.size() / 2 points, bit-reversal reordering first.
void ComplexTransform(std::span<double> data, bool inverse);

// Transform of data.size() real samples packed as data.size() / 2 complex points. Forward leaves
// F(0) in data[0], F(n/2) in data[1] and F(k) in data[2k], data[2k+1] for 0 < k < n/2; inverse
// takes that layout back to the samples times n/2.
void PackedRealTransform(std::span<double> data, bool inverse);

}  // namespace dv::analysis::radix2
