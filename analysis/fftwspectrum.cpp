#include "analysis/fftwspectrum.h"

#include "analysis/_fft.h"

#include <fftw3.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <memory>
#include <mutex>
#include <vector>

namespace dv::analysis {
namespace {

constexpr int kWindowKinds = 5;
constexpr int kMaxLog2 = 31;

struct TSizeEntry {
    fftw_plan plan = nullptr;
    std::array<std::vector<double>, kWindowKinds> window;  // weights, filled on first use
    std::array<double, kWindowKinds> windowSum{};
};

// FFTW's planner is not reentrant; executing a finished plan on other arrays of the same
// alignment is. So planning and the window tables sit behind one lock, the transforms do not.
std::mutex cacheGuard;
std::array<TSizeEntry, kMaxLog2> sizes;

template <typename T>
struct TFftwFree {
    void operator()(T* p) const { fftw_free(p); }
};

struct TWorkBuffers {
    std::size_t points = 0;
    std::unique_ptr<double, TFftwFree<double>> in;
    std::unique_ptr<fftw_complex, TFftwFree<fftw_complex>> out;

    void Reserve(std::size_t n)
    {
        if (n <= points) return;
        in.reset(fftw_alloc_real(n));
        out.reset(fftw_alloc_complex(n / 2 + 1));
        points = n;
    }
};

const TSizeEntry& EntryFor(std::size_t points, int windowKind)
{
    std::lock_guard lock(cacheGuard);
    TSizeEntry& entry = sizes[static_cast<std::size_t>(std::countr_zero(points))];
    if (entry.plan == nullptr) {
        // Planning by measurement takes seconds to minutes for long curves (2^20 points and up)
        // and freezes the first spectrum of every new size; the estimated plan is ready at once
        // and transforms within a few tens of percent of the measured one. It reads only the
        // arrays' alignment, which fftw_alloc gives every work buffer alike.
        TWorkBuffers scratch;
        scratch.Reserve(points);
        entry.plan = fftw_plan_dft_r2c_1d(static_cast<int>(points), scratch.in.get(), scratch.out.get(),
                                          FFTW_ESTIMATE);
    }
    if (windowKind > 0 && windowKind < kWindowKinds) {
        std::vector<double>& window = entry.window[static_cast<std::size_t>(windowKind)];
        if (window.empty()) {
            window.resize(points);
            double sum = 0;
            for (std::size_t n = 0; n < points; ++n) {
                window[n] = FFTWindowWeight(windowKind, static_cast<int>(n + 1), static_cast<int>(points));
                sum += window[n];
            }
            entry.windowSum[static_cast<std::size_t>(windowKind)] = sum;
        }
    }
    return entry;
}

}  // namespace

std::size_t PowerOfTwoAtMost(std::size_t count) { return count == 0 ? 0 : std::bit_floor(count); }

void AmplitudeSpectrum(std::span<const double> samples, int windowKind, std::span<double> amplitudes)
{
    const std::size_t n = samples.size();
    if (n < 2 || !std::has_single_bit(n) || amplitudes.size() < n / 2 + 1) return;
    const bool windowed = windowKind > 0 && windowKind < kWindowKinds;
    const TSizeEntry& entry = EntryFor(n, windowKind);

    thread_local TWorkBuffers work;
    work.Reserve(n);
    double* in = work.in.get();
    double weightSum = static_cast<double>(n);
    if (windowed) {
        const std::vector<double>& w = entry.window[static_cast<std::size_t>(windowKind)];
        for (std::size_t i = 0; i < n; ++i) in[i] = samples[i] * w[i];
        weightSum = entry.windowSum[static_cast<std::size_t>(windowKind)];
    } else {
        std::copy(samples.begin(), samples.end(), in);
    }
    fftw_execute_dft_r2c(entry.plan, in, work.out.get());

    const fftw_complex* out = work.out.get();
    const double edgeScale = 1.0 / weightSum;
    const double scale = 2.0 / weightSum;
    for (std::size_t k = 0; k <= n / 2; ++k) {
        const double magnitude = std::sqrt(out[k][0] * out[k][0] + out[k][1] * out[k][1]);
        amplitudes[k] = magnitude * ((k == 0 || k == n / 2) ? edgeScale : scale);
    }
}

double HarmonicDistortion(std::span<const double> lines, int searchWidth)
{
    const int count = static_cast<int>(lines.size());
    int fundamental = 0;
    double largest = 0;
    for (int k = 1; k < count; ++k) {
        if (lines[static_cast<std::size_t>(k)] > largest) {
            largest = lines[static_cast<std::size_t>(k)];
            fundamental = k;
        }
    }
    if (fundamental < 1) return 0;
    auto harmonic = [&](int h) -> double {
        const int expected = (h + 1) * fundamental;
        if (expected >= count) return -1.0;
        int best = expected;
        for (int j = expected - searchWidth; j <= expected + searchWidth; ++j) {
            if (j > 0 && j < count && lines[static_cast<std::size_t>(j)] > lines[static_cast<std::size_t>(best)]) best = j;
        }
        return lines[static_cast<std::size_t>(best)];
    };
    const double base = harmonic(0);
    double total = base * base;
    double sum = 0;
    for (int h = 1; h <= 101; ++h) {
        const double v = harmonic(h);
        if (v < 0) break;
        sum += v * v;
        total += v * v;
    }
    return total == 0 ? -1.0 : std::sqrt(sum / total) * 100.0;
}

}  // namespace dv::analysis
