// Level measurements: offset, RMS, mean, peaks and the x/y query.
#include "analysis/curvefunctions.h"

#include "analysis/extrema.h"
#include "analysis/kernels.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace dv::analysis {

namespace {
std::size_t U(int i) { return static_cast<std::size_t>(i); }
}  // namespace

double KurvenOffset(int Curve)
{
    TCurveStore& store = ScopeStore();
    store.ClearCrosses();
    if (store.CurveValuesCount(Curve) - 2 < 2) return 0;
    store.GetCurveZoomParams(Curve, RangeFrom, RangeTo);
    RangeFrom = RangeFrom + 1;
    const auto r = kernels::OffsetOverPeriods(store.X(Curve), store.Y(Curve), RangeFrom, RangeTo);
    if (!r.found) return 0;
    store.FSetCrossSize(5);
    store.SetCross(0, r.firstCrossing);
    store.SetCross(0, r.lastCrossing);
    return r.value;
}

double KurvenEffektivwert(int Curve, double Offset, unsigned char Mode)
{
    TCurveStore& store = ScopeStore();
    store.GetCurveZoomParams(Curve, RangeFrom, RangeTo);
    const auto x = store.X(Curve);
    const auto y = store.Y(Curve);
    if (Mode > 1) {
        // KurvenOffset reloads the range and moves its start on by one; the search starts there.
        const double off = KurvenOffset(Curve);
        store.ClearCrosses();
        const auto forward = kernels::FallingCrossingForward(x, y, RangeFrom, RangeTo, off);
        if (forward.index >= 0) {
            store.SetCross(off, forward.time);
            RangeFrom = forward.index;
        }
        const auto backward = kernels::FallingCrossingBackward(x, y, RangeFrom, RangeTo, off);
        if (backward.index >= 0) {
            store.SetCross(off, backward.time);
            RangeTo = backward.index;
        }
    }
    const int n = RangeTo - RangeFrom + 1;
    if (n <= 0) return 0;  // empty curve
    return std::sqrt(kernels::SumOfSquares(y, RangeFrom, RangeTo, Offset) / n);
}

double KurvenMittelwert(int Curve)
{
    TCurveStore& store = ScopeStore();
    store.ClearCrosses();
    store.GetCurveZoomParams(Curve, RangeFrom, RangeTo);
    const int n = RangeTo - RangeFrom + 1;
    if (n <= 0) return 0;  // empty curve
    return kernels::Sum(store.Y(Curve), RangeFrom, RangeTo) / n;
}

namespace {
double PeakLevel(TCurveStore& store, int curve, TPeakMode mode)
{
    // The last sample of the range is not examined.
    const auto p = kernels::ScanPeaks(store.X(curve), store.Y(curve), RangeFrom, RangeTo - 2);
    store.ClearCrosses();
    if (mode != PeakMax) store.SetCross(p.min, p.minX);
    if (mode != PeakMin) store.SetCross(p.max, p.maxX);
    switch (mode) {
    case PeakMin: return p.min;
    case PeakMax: return p.max;
    case PeakDiff: break;
    }
    return p.max - p.min;
}

double FirstLocalExtremumTime(TCurveStore& store, int curve, TPeakMode mode, double tolerance,
                              double epsilon)
{
    constexpr double kNoExtremum = -2.0;
    const int n = RangeTo - RangeFrom;  // the points From .. To - 1
    if (n <= 0) return kNoExtremum;
    const auto x = store.X(curve).subspan(U(RangeFrom), U(n));
    const auto y = store.Y(curve).subspan(U(RangeFrom), U(n));
    const auto kind = mode == PeakMax ? TExtremumKind::Maximum : TExtremumKind::Minimum;
    const std::vector<int> found = FindAllExtrema(x, y, kind, tolerance, epsilon);
    if (found.empty()) return kNoExtremum;
    // An extremum on the range's first sample is an edge, not a peak.
    int chosen = found[0];
    if (found.size() > 1 && std::abs(x[U(found[0])] - x[0]) < 1e-9) chosen = found[1];
    store.SetCross(y[U(chosen)], x[U(chosen)]);
    return x[U(chosen)];
}
}  // namespace

double Peak(unsigned char Curve, TPeakMode Mode, bool Extremum, double Tolerance, double Epsilon)
{
    TCurveStore& store = ScopeStore();
    store.GetCurveZoomParams(Curve, RangeFrom, RangeTo);
    if (!Extremum) return PeakLevel(store, Curve, Mode);
    return FirstLocalExtremumTime(store, Curve, Mode, Tolerance, Epsilon);
}

double Query_XY(unsigned char Curve, bool YGiven, double Value)
{
    TCurveStore& store = ScopeStore();
    int from = 0, to = 0;
    store.GetCurveZoomParams(Curve, from, to);
    const auto x = store.X(Curve);
    const auto y = store.Y(Curve);
    for (int i = from + 1; i <= to - 1; ++i) {
        const double xp = x[U(i - 1)], yp = y[U(i - 1)], xc = x[U(i)], yc = y[U(i)];
        if (YGiven) {
            if (std::min(yc, yp) <= Value && Value <= std::max(yc, yp)) {
                const double t = yp == yc ? xc : (Value - yc) * (xp - xc) / (yp - yc) + xc;
                store.SetCross(Value, t);
                return t;
            }
        } else if (Value <= xc) {
            const double v = xc == xp ? yc : (Value - xp) * (yc - yp) / (xc - xp) + yp;
            store.SetCross(v, Value);
            return v;
        }
    }
    return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace dv::analysis
