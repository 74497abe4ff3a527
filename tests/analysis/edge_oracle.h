#pragma once
// The edge search of the time-difference measurements stepped literally, sample by sample. Kept
// as the oracle that the block-skipping search is proven against.
#include "analysis/kernels.h"

namespace dv::analysis::test {

using kernels::CrossingTime;
using kernels::Marks;
using kernels::Samples;
using kernels::TEdgeQuery;

inline double LiteralTimeDifference(Samples x, Samples y, int from, int to, const TEdgeQuery& q,
                                    Marks& marks)
{
    const double t0 = static_cast<std::size_t>(from) < x.size() ? x[static_cast<std::size_t>(from)] : 0.0;
    double tStart = t0, tStop = t0, tFirst = t0;
    if (from == 0) from = 1;  // every step reads the sample before it
    int periods = 0;
    double highTime = 0;
    bool started = false;
    for (int i = from; i <= to - 1; ++i) {
        const double x1 = x[static_cast<std::size_t>(i - 1)], y1 = y[static_cast<std::size_t>(i - 1)], x2 = x[static_cast<std::size_t>(i)], y2 = y[static_cast<std::size_t>(i)];
        if (started) {
            const double l = q.stopLevel;
            const bool hit = q.stopRising ? (y1 <= l && l <= y2) : (y1 >= l && l >= y2);
            if (hit) {
                tStop = CrossingTime(x1, y1, x2, y2, l, marks);
                if (q.mode == imTime && q.count <= periods) break;
            }
        }
        const double l = q.startLevel;
        // Before the first start edge a curve that already starts beyond the level may count.
        const bool needsEdge = started || q.startNeedsEdge;
        const bool hit = q.startRising ? ((!needsEdge || y1 <= l) && l <= y2)
                                       : ((!needsEdge || y1 >= l) && l >= y2);
        if (hit) {
            if (!started || tStart < tStop) {
                ++periods;
                highTime += tStop - tStart;
            }
            tStart = CrossingTime(x1, y1, x2, y2, l, marks);
            if (!started) {
                tFirst = tStart;
                started = true;
            }
            if (q.mode == imPhase) return tStart;
        }
    }
    switch (q.mode) {
    case imTime: return tStop - tStart;
    case imCount: return periods;
    default: break;
    }
    if (periods < 2) return 0;
    if (q.mode == imDutyCycle) return highTime * 100 / (tStart - tFirst);
    if (q.mode == imFreq) return (periods - 1) / (tStart - tFirst);
    return 0;
}

}  // namespace dv::analysis::test
