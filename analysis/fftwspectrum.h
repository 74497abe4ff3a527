#pragma once
// Spectra of long real curves on FFTW3 in double precision, and the distortion factor taken from
// such a spectrum. Plans are made once per size and shared; work buffers are per thread, so the
// functions may run on several threads at once.
#include <cstddef>
#include <span>

namespace dv::analysis {

// The largest power of two not above count (0 for count 0).
std::size_t PowerOfTwoAtMost(std::size_t count);

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
