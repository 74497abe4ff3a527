#pragma once
// The scope's spectrum measurements: SINAD on the unit's own FFT engine, and the amplitude
// spectrum and distortion factor of long curves on FFTW3.
#include "analysis/memarray.h"

#include <span>

namespace dv::analysis {

// Signal to noise and distortion of a curve in dB, rounded to two decimals: the offset-free
// zoomed range (at most 4,096 samples) goes through the FFT engine with the scope's window; the
// notch of _Bandbreite around the fundamental (or _Nutzsignal) is the signal, the rest the noise.
// 0 for a curve of fewer than three samples or a spectrum without noise. Fills RangeFrom/RangeTo.
double Sinad(int curve);

// The SINAD sum over spectrum lines 1 .. lines.size() - 1 (DC is left out): all of them against
// those outside fundamental +- halfWidth, in dB; 0 when nothing lies outside the notch.
double SinadOfLines(std::span<const double> lines, int fundamental, int halfWidth);

// Amplitude spectrum of the zoomed range: the largest power of two of its samples from its start,
// weighted by the scope's FFT window; a holds lines 0 .. n/2 (a sine of amplitude A reads A),
// rate the spacing of the lines in Hz. sampleRate is the curve's rate in Hz; 0 or less takes it
// from the times of the range's first two samples. Empty for a range of fewer than two samples.
TMemArray FastFourierTransformation(int curve, int sampleRate);

// Distortion factor in percent of the zoomed range (same transform as above), harmonics picked
// like FFTDistortion; 0 when there is no fundamental.
double Klirrfaktor(int curve);

}  // namespace dv::analysis
