#pragma once
// Butterworth IIR filters as cascades of second-order sections, designed and run in double
// precision: the kernel under the scope's low, high and band pass.
#include <array>
#include <span>

namespace dv::analysis {

// The scope's response numbering, the same as the IIR design library's band types.
enum class TFilterResponse { LowPass = 0, HighPass = 1, BandPass = 2 };

inline constexpr int kMaxFilterOrder = 16;

// y = b0 x + s1, s1' = b1 x - a1 y + s2, s2' = b2 x - a2 y (transposed direct form II).
struct TBiquad {
    double b0 = 1, b1 = 0, b2 = 0;
    double a1 = 0, a2 = 0;
};

struct TSosCascade {
    std::array<TBiquad, kMaxFilterOrder> sections;
    int count = 0;
};

// Designs the filter of the given order by the bilinear transform of the analog Butterworth
// prototype, band edges prewarped. frequency2 is read only by the band pass (a band pass of order
// n has 2n poles). Throws TDravikException naming the bad argument for an order outside
// 1..kMaxFilterOrder, a rate that is not positive, or edges outside (0, rate/2) or not ascending.
TSosCascade DesignButterworth(TFilterResponse response, int order, double frequency1, double frequency2,
                              double sampleRate);

// Filters input into output (same length, may be the same memory) from the rest state.
void RunCascade(const TSosCascade& cascade, std::span<const double> input, std::span<double> output);

}  // namespace dv::analysis
