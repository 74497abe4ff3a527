#pragma once
// The scope's filters: Butterworth low, high and band pass over the zoomed range of a curve.
#include "analysis/iirfilter.h"

#include <vector>

namespace dv::analysis {

// One filtered value per sample of the curve's zoomed range, position 0 for its first sample; the
// filter starts at rest. Rates above 1,000,000 are divided by 1000 with both frequencies (the
// ratio, and so the filter, stays the same). Invalid orders or frequencies raise
// TDravikException.
std::vector<double> FilterCurve(int curve, TFilterResponse response, double frequency1, double frequency2,
                                double sampleRate, int order);

std::vector<double> FuncLowPass(int curve, double frequency, double sampleRate, int order);
std::vector<double> FuncHighPass(int curve, double frequency, double sampleRate, int order);
std::vector<double> FuncBandPass(int curve, double frequency1, double frequency2, double sampleRate, int order);

}  // namespace dv::analysis
