// Edge measurements: time difference, frequency, pulse count, duty cycle and phase shift.
#include "analysis/curvefunctions.h"

#include "analysis/curvemarks.h"
#include "analysis/kernels.h"

#include <algorithm>

namespace dv::analysis {

double Zeitdifferenz(int Curve, double StartLevel, double StopLevel, bool StartRising,
                     bool StopRising, bool StartNeedsEdge, int Count, TImpulsMode Mode)
{
    TCurveStore& store = ScopeStore();
    // The phase measurement collects the crosses of several edge searches.
    if (Mode != imPhase) store.ClearCrosses();
    int from = 0, to = 0;
    store.GetCurveZoomParams(Curve, from, to);
    const kernels::TEdgeQuery query{StartLevel, StopLevel, StartRising, StopRising, StartNeedsEdge,
                                    Count, Mode};
    kernels::Marks& marks = detail::EmptyMarks();
    const double result =
        kernels::TimeDifference(store.X(Curve), store.Y(Curve), from, to, query, marks);
    detail::SetCrosses(store, marks);
    return result;
}

namespace {
double FirstRisingEdge(int curve, double level, int count)
{
    return Zeitdifferenz(curve, level, 0, true, true, true, count, imPhase);
}
}  // namespace

// The edge searches in phase mode always find the first edge of the range, whatever the count,
// so every pass measures the same pair; the count is passed on all the same.
double Phasenverschiebung(unsigned char CurveA, unsigned char CurveB, int Periods)
{
    TCurveStore& store = ScopeStore();
    const int passes = std::max(Periods, 1);
    const double offA = KurvenOffset(CurveA);
    const double offB = KurvenOffset(CurveB);
    const double period = Zeitdifferenz(CurveA, offA, offA, true, true, true, 1, imTime);
    double sum = 0;
    int completed = 0;
    for (int k = 1; k <= passes; ++k) {
        store.ClearCrosses();
        double tA = FirstRisingEdge(CurveA, offA, k);
        double tB = FirstRisingEdge(CurveB, offB, k);
        if (tB < tA) {
            store.ClearCrosses();
            tA = FirstRisingEdge(CurveA, offA, k + 1);
            tB = FirstRisingEdge(CurveB, offB, k + 1);
        }
        // An edge at time 0 reads as no edge.
        if (tB == 0 || tA == 0) break;
        sum = sum + (tB - tA) * 360 / period;
        ++completed;
    }
    if (period == 0) {
        store.ClearCrosses();
        return 0;
    }
    // No pass completed: no edge in one of the curves, reported like a curve without periods.
    if (completed == 0) return 0;
    return sum / completed;
}

}  // namespace dv::analysis
