#include "analysis/kernels.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace dv::analysis::kernels {

namespace {
std::size_t U(int i) { return static_cast<std::size_t>(i); }
}  // namespace

double CrossingTime(double x1, double y1, double x2, double y2, double level, Marks& marks)
{
    double t = x2;
    if ((y2 < level && level <= y1) || (y1 <= level && level < y2)) {
        t = (x1 - x2) * ((level - y2) / (y1 - y2)) + x2;
    }
    marks.push_back({t, level});
    return t;
}

// Four independent partial sums keep the adds pipelined; the order differs from a single running
// sum only in rounding.
double Sum(Samples y, int from, int to)
{
    if (to < from) return 0;
    const double* p = y.data() + from;
    const std::size_t n = U(to - from + 1);
    double s0 = 0, s1 = 0, s2 = 0, s3 = 0;
    std::size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        s0 += p[i];
        s1 += p[i + 1];
        s2 += p[i + 2];
        s3 += p[i + 3];
    }
    for (; i < n; ++i) s0 += p[i];
    return (s0 + s1) + (s2 + s3);
}

double SumOfSquares(Samples y, int from, int to, double offset)
{
    if (to < from) return 0;
    const double* p = y.data() + from;
    const std::size_t n = U(to - from + 1);
    double s0 = 0, s1 = 0, s2 = 0, s3 = 0;
    std::size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const double d0 = p[i] - offset, d1 = p[i + 1] - offset;
        const double d2 = p[i + 2] - offset, d3 = p[i + 3] - offset;
        s0 += d0 * d0;
        s1 += d1 * d1;
        s2 += d2 * d2;
        s3 += d3 * d3;
    }
    for (; i < n; ++i) {
        const double d = p[i] - offset;
        s0 += d * d;
    }
    return (s0 + s1) + (s2 + s3);
}

TOffsetResult OffsetOverPeriods(Samples x, Samples y, int from, int to)
{
    TOffsetResult r;
    // The start values bound what a measured signal can reach; zero samples are gaps.
    double maxY = -1000000.0, minY = 1000000.0;
    for (int i = from; i <= to; ++i) {
        const double v = y[U(i)];
        if (v == 0.0) continue;
        maxY = v > maxY ? v : maxY;
        minY = v < minY ? v : minY;
    }
    const double mid = (maxY + minY) / 2;
    auto risesAt = [&](int i) { return y[U(i - 1)] < mid && mid <= y[U(i)]; };

    int first = -1;
    for (int i = from; i <= to && first < 0; ++i) {
        if (risesAt(i)) first = i;
    }
    if (first < 0) return r;
    int last = first;
    for (int i = to; i > first; --i) {
        if (risesAt(i)) {
            last = i;
            break;
        }
    }
    // Every sample from the first crossing up to the one before the last crossing belongs to a
    // whole period; the rest is left out.
    if (last == first) return r;
    r.value = Sum(y, first, last - 1) / (last - first);
    r.found = true;
    r.firstCrossing = x[U(first)];
    r.lastCrossing = x[U(last)];
    return r;
}

namespace {
// Crossing of level on the falling segment a -> b, or nothing when the segment is flat, rising,
// or meets the level only at or outside its ends.
bool FallingCrossing(Samples x, Samples y, int a, int b, double level, TCrossingIndex& out)
{
    const double xa = x[U(a)], ya = y[U(a)], xb = x[U(b)], yb = y[U(b)];
    if (ya == yb) return false;
    const double m = (ya - yb) / (xa - xb);
    const double intercept = ya - xa * m;
    if (!(m < 0)) return false;
    const double x0 = (level - intercept) / m;
    if (!((x0 - xa) * (x0 - xb) < 0)) return false;
    out.index = std::abs(x0 - xa) < std::abs(x0 - xb) ? a : b;
    out.time = x0;
    return true;
}
}  // namespace

TCrossingIndex FallingCrossingForward(Samples x, Samples y, int from, int to, double level)
{
    TCrossingIndex r;
    for (int i = from; i <= to - 2; ++i) {
        if (FallingCrossing(x, y, i, i + 1, level, r)) return r;
    }
    return {};
}

TCrossingIndex FallingCrossingBackward(Samples x, Samples y, int from, int to, double level)
{
    TCrossingIndex r;
    for (int i = to; i >= from + 2; --i) {
        if (FallingCrossing(x, y, i, i - 1, level, r)) return r;
    }
    return {};
}

TPeakScan ScanPeaks(Samples x, Samples y, int from, int last)
{
    TPeakScan r{std::numeric_limits<double>::max(), 0, -std::numeric_limits<double>::max(), 0};
    for (int i = from; i <= last; ++i) {
        const double v = y[U(i)];
        if (v == 0.0) continue;
        if (v > r.max) {
            r.max = v;
            r.maxX = x[U(i)];
        }
        if (v < r.min) {
            r.min = v;
            r.minX = x[U(i)];
        }
    }
    return r;
}

double TimeDifference(Samples x, Samples y, int from, int to, const TEdgeQuery& q, Marks& marks)
{
    const double t0 = U(from) < x.size() ? x[U(from)] : 0.0;
    double tStart = t0, tStop = t0, tFirst = t0;
    if (from == 0) from = 1;  // every step reads the sample before it
    int periods = 0;
    double highTime = 0;
    bool started = false;
    for (int i = from; i <= to - 1; ++i) {
        const double x1 = x[U(i - 1)], y1 = y[U(i - 1)], x2 = x[U(i)], y2 = y[U(i)];
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

namespace {
double EnvelopeValue(double xs, double x0, double y0, double x1, double y1)
{
    double d = x1 - x0;
    if (x1 == x0) d = 1.0;
    return (y1 - y0) * ((xs - x0) * 100 / d / 100) + y0;
}

bool Violates(double ys, double e, bool upper) { return upper ? ys > e : ys < e; }

bool Ascending(Samples v)
{
    for (std::size_t k = 1; k < v.size(); ++k) {
        if (!(v[k] >= v[k - 1])) return false;
    }
    return true;
}

// Envelope points in any order: every segment has to be tried for every sample.
int ViolationUnordered(Samples x, Samples y, int from, int to, Samples ex, Samples ey, bool upper)
{
    const int segments = static_cast<int>(ex.size()) - 2;
    for (int i = from; i <= to; ++i) {
        const double xs = x[U(i)], ys = y[U(i)];
        for (int j = 1; j <= segments; ++j) {
            const double x0 = ex[U(j - 1)], x1 = ex[U(j)], x2 = ex[U(j + 1)];
            if (x0 < xs && xs <= x1 && xs < x2 &&
                Violates(ys, EnvelopeValue(xs, x0, ey[U(j - 1)], x1, ey[U(j)]), upper)) {
                return i;
            }
        }
    }
    return -1;
}
}  // namespace

// With ascending envelope times the only segment j that can hold a sample is the first point at
// or beyond it (x[j-1] < xs <= x[j]); for ascending sample times it only moves forward.
int FirstEnvelopeViolation(Samples x, Samples y, int from, int to, Samples envX, Samples envY,
                           bool upper)
{
    const int points = static_cast<int>(envX.size());
    if (points < 3) return -1;
    if (!Ascending(envX)) return ViolationUnordered(x, y, from, to, envX, envY, upper);
    const double* ex = envX.data();
    const double* end = ex + points;
    std::size_t j = 0;
    double previous = -std::numeric_limits<double>::infinity();
    for (int i = from; i <= to; ++i) {
        const double xs = x[U(i)];
        if (std::isnan(xs)) continue;
        if (xs >= previous) {
            while (j < U(points) && ex[j] < xs) ++j;
        } else {
            j = U(std::lower_bound(ex, end, xs) - ex);
        }
        previous = xs;
        if (j < 1 || j > U(points - 2) || !(xs < ex[j + 1])) continue;
        const double e = EnvelopeValue(xs, ex[j - 1], envY[j - 1], ex[j], envY[j]);
        if (Violates(y[U(i)], e, upper)) return i;
    }
    return -1;
}

}  // namespace dv::analysis::kernels
