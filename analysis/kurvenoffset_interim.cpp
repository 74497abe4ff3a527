// Interim: the whole-period offset that SINAD removes, until the measurement half of the curve
// functions (which owns KurvenOffset) joins this branch. Delete this file then.
#include "analysis/curvestore.h"

namespace dv::analysis {

double KurvenOffset(int curve)
{
    TCurveStore& store = ScopeStore();
    store.ClearCrosses();
    if (store.CurveValuesCount(curve) - 2 < 2) return 0;
    store.GetCurveZoomParams(curve, RangeFrom, RangeTo);
    RangeFrom = RangeFrom + 1;
    const auto x = store.X(curve);
    const auto y = store.Y(curve);
    double max = -1000000.0;
    double min = 1000000.0;
    for (int i = RangeFrom; i <= RangeTo; ++i) {
        const double v = y[static_cast<std::size_t>(i)];
        if (v == 0.0) continue;
        if (v > max) max = v;
        if (v < min) min = v;
    }
    const double mid = (max + min) / 2;
    double sum = 0, runningSum = 0;
    long long count = 0, runningCount = 0;
    bool started = false;
    double first = 0, last = 0;
    for (int i = RangeFrom; i <= RangeTo; ++i) {
        const double previous = y[static_cast<std::size_t>(i - 1)];
        const double current = y[static_cast<std::size_t>(i)];
        if (previous < mid && mid <= current) {
            sum += runningSum;
            count += runningCount;
            runningSum = 0;
            runningCount = 0;
            if (!started) first = x[static_cast<std::size_t>(i)];
            else last = x[static_cast<std::size_t>(i)];
            started = true;
        }
        if (started) {
            runningSum += current;
            ++runningCount;
        }
    }
    if (count == 0) return 0;
    store.FSetCrossSize(5);
    store.SetCross(0, first);
    store.SetCross(0, last);
    return sum / static_cast<double>(count);
}

}  // namespace dv::analysis
