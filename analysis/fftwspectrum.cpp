#include "analysis/fftwspectrum.h"

#include "analysis/_fft.h"

#include <fftw3.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <complex>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <numbers>
#include <thread>
#include <utility>
#include <vector>

namespace dv::analysis {
namespace {

using Complex = std::complex<double>;

constexpr int kWindowKinds = 5;
constexpr int kMaxLog2 = 31;
// Spectra up to this many points share one work buffer and are made ready by running them once.
constexpr std::size_t kShortSpectrum = std::size_t{1} << 16;

// The n real samples are transformed as n/2 complex points (even samples real, odd imaginary)
// and the real spectrum is unfolded from that. FFTW plans such a complex transform a hundred
// times faster than its real-input one (1 ms against 110 ms for 2^23 points, estimated), and
// runs it as fast: planning, not transforming, was what made the first spectrum of a size slow.
struct TSizeEntry {
    fftw_plan plan = nullptr;  // n/2 complex points forward
    // The unfolding's twiddles e^(-2 pi i k / n), k < n/2, as products coarse[k >> fineBits] *
    // fine[k & fineMask]: two tables of about sqrt(n/2) entries, exact to a few ulp.
    int fineBits = 0;
    std::vector<Complex> coarse, fine;
    std::array<std::vector<double>, kWindowKinds> window;  // weights, filled on first use
    std::array<double, kWindowKinds> windowSum{};

    // Written out: std::complex's product checks for infinities in a library call.
    void Twiddle(std::size_t k, double& re, double& im) const
    {
        const Complex c = coarse[k >> fineBits];
        const Complex f = fine[k & ((std::size_t{1} << fineBits) - 1)];
        re = c.real() * f.real() - c.imag() * f.imag();
        im = c.real() * f.imag() + c.imag() * f.real();
    }
};

// FFTW's planner is not reentrant; executing a finished plan on other arrays of the same
// alignment is. So planning and the tables sit behind one lock, the transforms do not.
std::mutex cacheGuard;
std::array<TSizeEntry, kMaxLog2> sizes;

template <typename T>
struct TFftwFree {
    void operator()(T* p) const { fftw_free(p); }
};

struct TWorkBuffers {
    std::size_t points = 0;
    std::unique_ptr<double, TFftwFree<double>> in;            // points samples: points/2 complex
    std::unique_ptr<fftw_complex, TFftwFree<fftw_complex>> out;  // points/2 complex

    explicit TWorkBuffers(std::size_t n) : points(n), in(fftw_alloc_real(n)), out(fftw_alloc_complex(n / 2))
    {
        if (!in || !out) throw std::bad_alloc();
    }
    fftw_complex* InPoints() const { return reinterpret_cast<fftw_complex*>(in.get()); }
};

// Work buffers shared by all threads, so that one made ready in the background serves the
// caller: the first touch of a fresh buffer of 2^23 points costs a quarter of a transform.
class TBufferPool {
public:
    // The smallest free buffer that holds n points, else a new one (short spectra share one of
    // kShortSpectrum points); fresh tells which.
    std::unique_ptr<TWorkBuffers> Take(std::size_t n, bool& fresh)
    {
        {
            std::lock_guard lock(guard_);
            auto best = free_.end();
            for (auto it = free_.begin(); it != free_.end(); ++it) {
                if ((*it)->points >= n && (best == free_.end() || (*it)->points < (*best)->points)) best = it;
            }
            if (best != free_.end()) {
                std::unique_ptr<TWorkBuffers> taken = std::move(*best);
                free_.erase(best);
                fresh = false;
                return taken;
            }
        }
        fresh = true;
        return std::make_unique<TWorkBuffers>(std::max(n, kShortSpectrum));
    }

    // Keeps the largest few; one per thread that ran a spectrum at the same time would pile up.
    void Give(std::unique_ptr<TWorkBuffers> buffers)
    {
        std::lock_guard lock(guard_);
        free_.push_back(std::move(buffers));
        std::ranges::sort(free_, std::greater{}, [](const auto& b) { return b->points; });
        if (free_.size() > kKept) free_.resize(kKept);
    }

private:
    static constexpr std::size_t kKept = 2;
    std::mutex guard_;
    std::vector<std::unique_ptr<TWorkBuffers>> free_;
};
TBufferPool pool;

Complex UnitRoot(std::size_t k, std::size_t n)
{
    return std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(n));
}

// Call with cacheGuard held: the size's plan, twiddles and the window's weights, made when
// missing. planned tells whether the plan was made now.
TSizeEntry& EntryLocked(std::size_t points, int windowKind, bool& planned)
{
    TSizeEntry& entry = sizes[static_cast<std::size_t>(std::countr_zero(points))];
    planned = entry.plan == nullptr;
    if (planned) {
        const std::size_t half = points / 2;
        // Estimated, not measured: measuring takes seconds to minutes for long curves. The plan
        // reads only the arrays' alignment, which fftw_alloc gives every work buffer alike.
        TWorkBuffers scratch(points);
        entry.plan = fftw_plan_dft_1d(static_cast<int>(half), scratch.InPoints(), scratch.out.get(), FFTW_FORWARD, FFTW_ESTIMATE);
        if (entry.plan == nullptr) throw std::bad_alloc();
        entry.fineBits = (std::countr_zero(half) + 1) / 2;
        const std::size_t fine = std::size_t{1} << entry.fineBits;
        entry.fine.resize(fine);
        for (std::size_t k = 0; k < fine; ++k) entry.fine[k] = UnitRoot(k, points);
        entry.coarse.resize(half / fine + 1);
        for (std::size_t j = 0; j < entry.coarse.size(); ++j) entry.coarse[j] = UnitRoot(j * fine, points);
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

const TSizeEntry& EntryFor(std::size_t points, int windowKind)
{
    std::lock_guard lock(cacheGuard);
    bool planned = false;
    return EntryLocked(points, windowKind, planned);
}

// The spectrum on a size's entry (made for windowKind); samples.size() is the entry's size.
void Transform(const TSizeEntry& entry, std::span<const double> samples, int windowKind, std::span<double> amplitudes)
{
    const std::size_t n = samples.size();
    const std::size_t half = n / 2;
    bool fresh = false;
    std::unique_ptr<TWorkBuffers> work = pool.Take(n, fresh);
    double* in = work->in.get();
    double weightSum = static_cast<double>(n);
    if (windowKind > 0 && windowKind < kWindowKinds) {
        const std::vector<double>& w = entry.window[static_cast<std::size_t>(windowKind)];
        for (std::size_t i = 0; i < n; ++i) in[i] = samples[i] * w[i];
        weightSum = entry.windowSum[static_cast<std::size_t>(windowKind)];
    } else {
        std::copy(samples.begin(), samples.end(), in);
    }
    fftw_execute_dft(entry.plan, work->InPoints(), work->out.get());

    // Z = the transform of the complex points; line k of the real samples is
    // X(k) = E - i w^k O with E = (Z(k) + conj Z(n/2 - k)) / 2, O = (Z(k) - conj Z(n/2 - k)) / 2.
    const fftw_complex* z = work->out.get();
    const double edgeScale = 1.0 / weightSum;
    const double scale = 2.0 / weightSum;
    amplitudes[0] = std::abs(z[0][0] + z[0][1]) * edgeScale;
    amplitudes[half] = std::abs(z[0][0] - z[0][1]) * edgeScale;
    for (std::size_t k = 1; k < half; ++k) {
        const double ar = z[k][0], ai = z[k][1];
        const double br = z[half - k][0], bi = -z[half - k][1];
        const double er = 0.5 * (ar + br), ei = 0.5 * (ai + bi);
        const double oddRe = 0.5 * (ar - br), oddIm = 0.5 * (ai - bi);
        double wr = 0, wi = 0;
        entry.Twiddle(k, wr, wi);
        // -i w O
        const double re = er + (wr * oddIm + wi * oddRe);
        const double im = ei - (wr * oddRe - wi * oddIm);
        amplitudes[k] = std::sqrt(re * re + im * im) * scale;
    }
    pool.Give(std::move(work));
}

// Makes a size ready as its first spectrum would find it after a repeat: plan, tables, and a
// work buffer that has been through one transform (its pages and the plan's code in memory).
// The lock is held throughout, so a spectrum asked for meanwhile waits for the finished work
// instead of doing it a second time.
void PrepareNow(std::size_t points, int windowKind)
{
    std::lock_guard lock(cacheGuard);
    bool planned = false;
    const TSizeEntry& entry = EntryLocked(points, windowKind, planned);
    if (points <= kShortSpectrum) {
        // A short spectrum takes microseconds, less than the first run of its code in the
        // process: the whole transform runs once here.
        const std::vector<double> zeros(points);
        std::vector<double> lines(points / 2 + 1);
        Transform(entry, zeros, windowKind, lines);
        return;
    }
    bool fresh = false;
    std::unique_ptr<TWorkBuffers> buffers = pool.Take(points, fresh);
    if (planned || fresh) {
        std::fill_n(buffers->in.get(), buffers->points, 0.0);
        fftw_execute_dft(entry.plan, buffers->InPoints(), buffers->out.get());
    }
    pool.Give(std::move(buffers));
}

// One background thread works off the sizes asked for, in order.
class TPreparer {
public:
    ~TPreparer()
    {
        {
            std::lock_guard lock(guard_);
            stopping_ = true;
            jobs_.clear();
        }
        wake_.notify_one();
        if (worker_.joinable()) worker_.join();
    }

    // urgent: a curve is loading for its spectrum right now; it goes before the others waiting.
    void Post(std::size_t points, int windowKind, bool urgent)
    {
        std::lock_guard lock(guard_);
        if (stopping_) return;
        const std::pair job{points, windowKind};
        if (const auto queued = std::ranges::find(jobs_, job); queued != jobs_.end()) {
            if (!urgent) return;
            jobs_.erase(queued);
        }
        if (urgent) {
            jobs_.push_front(job);
        } else {
            jobs_.push_back(job);
        }
        if (!worker_.joinable()) worker_ = std::thread([this] { Run(); });
        wake_.notify_one();
    }

private:
    void Run()
    {
        std::unique_lock lock(guard_);
        for (;;) {
            wake_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
            if (stopping_) return;
            const auto [points, windowKind] = jobs_.front();
            jobs_.pop_front();
            lock.unlock();
            try {
                PrepareNow(points, windowKind);
            } catch (const std::bad_alloc&) {
                // Not enough memory now: the spectrum itself tries again when it is asked for.
            }
            lock.lock();
        }
    }

    std::mutex guard_;
    std::condition_variable wake_;
    std::deque<std::pair<std::size_t, int>> jobs_;
    bool stopping_ = false;
    std::thread worker_;
};
// Defined after the plans and buffers: it ends (joining its thread) before they go.
TPreparer preparer;

// The engine starts with the library: FFTW's one-time setup takes a few tenths of a millisecond,
// a hundred times a short transform, and no curve announces it. Sizes wait until a curve is
// loaded for its spectrum.
struct TStartAtLoad {
    TStartAtLoad() { preparer.Post(2, 0, false); }
} startAtLoad;

}  // namespace

void PrepareSpectrum(std::size_t samples, int windowKind)
{
    const std::size_t points = PowerOfTwoAtMost(samples);
    if (points < 2 || points > (std::size_t{1} << (kMaxLog2 - 1))) return;
    preparer.Post(points, windowKind > 0 && windowKind < kWindowKinds ? windowKind : 0, true);
}

std::unique_lock<std::mutex> LockFftwPlanner() { return std::unique_lock(cacheGuard); }

std::size_t PowerOfTwoAtMost(std::size_t count) { return count == 0 ? 0 : std::bit_floor(count); }

void AmplitudeSpectrum(std::span<const double> samples, int windowKind, std::span<double> amplitudes)
{
    const std::size_t n = samples.size();
    if (n < 2 || !std::has_single_bit(n) || amplitudes.size() < n / 2 + 1) return;
    Transform(EntryFor(n, windowKind), samples, windowKind, amplitudes);
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
