#pragma once
// The spectrum engine: one set of FFT buffers and settings held as unit state, a radix-2
// transform over them, the magnitude spectrum normalised to its largest line, the fundamental
// with its harmonics, and the distortion factor. One analysis at a time: nothing is guarded.
#include <array>

namespace dv::analysis {

inline constexpr int kFFTMaxDataNr = 4096;
inline constexpr int kFFTDataLength = 8192;  // real and imaginary part of each point in turn
inline constexpr int kFFTSpectLength = 4096;

using FFTDataArray = std::array<double, kFFTDataLength>;
using FFTSpectArray = std::array<double, kFFTSpectLength>;
using FFTDataPtr = FFTDataArray*;
using FFTSpectPtr = FFTSpectArray*;

// Unit state.
extern int FFTDataNr;           // points of the transform, a power of two from 64 to 4096
extern unsigned char FFTReal;   // 1: the data are real, packed two to a complex point
extern unsigned char FFTWindow; // window kind 0..4, see FFTWindowWeight
extern unsigned char SuchBreite;  // half-width in lines of the search around each harmonic
extern FFTDataPtr FFTData;      // input, between FFTGetMem and FFTFreeMem
extern FFTDataPtr FFTTrans;     // transformed data
extern FFTSpectPtr FFTSpect;    // magnitude spectrum, position 0 is DC
extern double FFTdt;            // sample interval (s), set by the caller before FFTSpectrum
extern double FFTdF;            // line spacing (Hz)
extern double FFTFMax;          // highest frequency (Hz)
extern int Fundamental;         // spectrum position of the fundamental; 0 when none
extern double SpectMaxVal;
extern int SpectMaxNr;
extern int FFTResult;           // -2 after a rejected size

// Takes the largest table size not above n into FFTDataNr and n; a size above 4096 or below 64
// is rejected (FFTResult -2, FFTDataNr and n unchanged).
void FFTSetDataNr(int& n);
void FFTGetMem();
void FFTFreeMem();
void FFTDataClear();
// 1-based position in FFTData of the k-th sample: k for real data, else the real part of point k.
int FFTIndex(int k);
void FFTDataShift();
// Windows FFTData in place, copies it to FFTTrans and transforms FFTTrans over FFTDataNr points.
void FFT(bool inverse);
void FFTSpectrum();

// Weight of point n (1-based) of dataNr points for window kind 0 rectangular, 1 triangular,
// 2 Hann, 3 Welch, 4 Hamming; other kinds weigh 1.
double FFTWindowWeight(int kind, int n, int dataNr);

// Harmonic h (0 the fundamental, h the (h+1)-fold frequency): -1.0 when there is none.
double FFTHarmFrq(unsigned char h);
double FFTHarmVal(unsigned char h);
double FFTHarmRel(unsigned char h);
double FFTHarmdB(unsigned char h);
// Distortion in percent of fundamental and harmonics together; 0 without a fundamental.
double FFTDistortion();

// Test signal: a unit sine of `periods` whole periods over the transform, plus a sine of
// `harmonic` times its frequency at a tenth of its amplitude when harmonic > 1.
void FFTSimulation(int periods, int harmonic);

}  // namespace dv::analysis
