#pragma once
// Local extrema of a sampled curve, for the peak measurement's "local extrema" mode.
#include <span>
#include <vector>

namespace dv::analysis {

enum class TExtremumKind { Maximum, Minimum };

// Indices of all local maxima (or minima) of the points (x, y), x ascending. Point i is a local
// maximum when no point within tolerance of x[i] (in x) is greater than y[i] + epsilon, and every
// earlier point within that window is lower than y[i] - epsilon: on a plateau only its first point
// counts. Minima likewise with the comparisons turned round. Runs in linear time.
std::vector<int> FindAllExtrema(std::span<const double> x, std::span<const double> y,
                                TExtremumKind kind, double tolerance, double epsilon);

}  // namespace dv::analysis
