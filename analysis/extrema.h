#pragma once
// Local extrema of a sampled curve, for the peak measurement's "local extrema" mode.
#include <span>
#include <vector>

namespace dv::analysis {

enum class TExtremumKind { Maximum, Minimum };

// Indices, ascending, of all local maxima (or minima) of the points (x, y). Only points whose x
// and y are both finite take part. Point i is a local maximum when, within its window (the points
// j with |x[j] - x[i]| <= tolerance, and i itself), no point lies above it, none before it
// (lower index) lies level with it, and it stands at least epsilon above the window's lowest point.
// Minima are the same with the values turned upside down. Times need not be ascending. Runs in
// O(n log n), O(n) for ascending times.
std::vector<int> FindAllExtrema(std::span<const double> x, std::span<const double> y,
                                TExtremumKind kind, double tolerance, double epsilon);

}  // namespace dv::analysis
