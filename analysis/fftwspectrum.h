#pragma once
// Spectra of long real curves on FFTW3 in double precision, and the distortion factor taken from
// such a spectrum. Plans are made once per size and shared, and so are the work buffers; the
// functions may run on several threads at once. A size can be made ready on a background thread
// before its first spectrum, which then takes no longer than a repeat; FFTW's one-time setup is
// done so as soon as the library is loaded.
#include <cstddef>
#include <mutex>
#include <span>

namespace dv::analysis {

// The largest power of two not above count (0 for count 0).
std::size_t PowerOfTwoAtMost(std::size_t count);

// Makes the spectrum of the largest power of two not above samples ready on a background thread:
// its plan, the weights of windowKind and a work buffer already in memory, ahead of any other
// size waiting. Returns at once; a spectrum of that size asked for meanwhile waits for the work
// rather than doing it twice.
void PrepareSpectrum(std::size_t samples, int windowKind);

// FFTW's planner is one per process and not reentrant, and this engine plans on a background
// thread: other code of the process that plans or destroys FFTW plans holds this lock meanwhile.
[[nodiscard]] std::unique_lock<std::mutex> LockFftwPlanner();

// Amplitude spectrum of samples (a power of two, at least 2) weighted by window kind
// (FFTWindowWeight): amplitudes[k] for k = 0 .. n/2, scaled by the window's sum so that a sine of
// amplitude A on line k reads A and the DC line reads the weighted mean. amplitudes must hold
// n/2 + 1 values.
void AmplitudeSpectrum(std::span<const double> samples, int windowKind, std::span<double> amplitudes);

// Distortion in percent over lines 0 .. lines.size() - 1, picked like the spectrum engine: the
// fundamental is the first largest line above DC, harmonic h the largest line within searchWidth
// of (h + 1) times it, up to the first that falls beyond the lines or h = 101. 0 without a
// fundamental.
double HarmonicDistortion(std::span<const double> lines, int searchWidth);

}  // namespace dv::analysis
