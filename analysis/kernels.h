#pragma once
// Pure measurement kernels over sample spans: no curve store, no scope state. Indices are the
// curve's own 0-based sample positions; every range is inclusive [from, to] unless said otherwise.
// The curve functions read the store, call these and mark what they return.
#include "analysis/curvestore.h"
#include "analysis/curvetypes.h"

#include <span>
#include <vector>

namespace dv::analysis::kernels {

using Samples = std::span<const double>;
using Marks = std::vector<TPoint>;  // crosses found by a kernel, as (time, value)

// Time at which the segment (x1, y1) -> (x2, y2) reaches level; x2 when the level is not strictly
// between the two values on the side of y2. The crossing is appended to marks.
double CrossingTime(double x1, double y1, double x2, double y2, double level, Marks& marks);

// Sum of y over [from, to].
double Sum(Samples y, int from, int to);
// Sum of (y - offset)^2 over [from, to].
double SumOfSquares(Samples y, int from, int to, double offset);

// Offset over whole periods: the mean of the samples from the first rising crossing of the
// mid level up to (not including) the last one. Samples that are exactly 0.0 are gaps for the
// min/max search. from is the first index whose predecessor is read.
struct TOffsetResult {
    double value = 0;
    bool found = false;  // at least one whole period
    double firstCrossing = 0;
    double lastCrossing = 0;
};
TOffsetResult OffsetOverPeriods(Samples x, Samples y, int from, int to);

// Falling crossing of level, searched forward over segments (i, i+1), i = from .. to - 2, or
// backward over (i, i-1), i = to .. from + 2. Returns the index of the segment's sample nearer
// the crossing (the neighbour on a tie), -1 when there is none.
struct TCrossingIndex {
    int index = -1;
    double time = 0;
};
TCrossingIndex FallingCrossingForward(Samples x, Samples y, int from, int to, double level);
TCrossingIndex FallingCrossingBackward(Samples x, Samples y, int from, int to, double level);

// Largest and smallest non-zero sample over [from, last]; ties keep the earlier sample.
struct TPeakScan {
    double min;
    double minX = 0;
    double max;
    double maxX = 0;
};
TPeakScan ScanPeaks(Samples x, Samples y, int from, int last);

// Edge search of the time difference, frequency, pulse count, duty cycle and phase measurements.
struct TEdgeQuery {
    double startLevel = 0;
    double stopLevel = 0;
    bool startRising = true;
    bool stopRising = true;
    bool startNeedsEdge = true;
    int count = 1;
    TImpulsMode mode = imTime;
};
double TimeDifference(Samples x, Samples y, int from, int to, const TEdgeQuery& q, Marks& marks);

// Index of the first sample in [from, to] that lies beyond the envelope (above an upper, below a
// lower one), -1 when none does. Samples outside the envelope's time span are not tested; a sample
// on an envelope point's time uses the segment that ends there.
int FirstEnvelopeViolation(Samples x, Samples y, int from, int to, Samples envX, Samples envY,
                           bool upper);

}  // namespace dv::analysis::kernels
