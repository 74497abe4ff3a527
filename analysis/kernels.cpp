#include "analysis/kernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
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

// Two-lane vectors (the baseline of every x86-64) in four independent accumulators: eight partial
// sums keep the adds pipelined. The order differs from a single running sum only in rounding.
using V2 = double __attribute__((vector_size(16)));

inline V2 Load2(const double* p)
{
    V2 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

inline double Lanes(V2 a, V2 b, V2 c, V2 d)
{
    const V2 s = (a + b) + (c + d);
    return s[0] + s[1];
}

double Sum(Samples y, int from, int to)
{
    if (to < from) return 0;
    const double* p = y.data() + from;
    const std::size_t n = U(to - from + 1);
    V2 s0{0, 0}, s1{0, 0}, s2{0, 0}, s3{0, 0};
    std::size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        s0 += Load2(p + i);
        s1 += Load2(p + i + 2);
        s2 += Load2(p + i + 4);
        s3 += Load2(p + i + 6);
    }
    double tail = 0;
    for (; i < n; ++i) tail += p[i];
    return Lanes(s0, s1, s2, s3) + tail;
}

double SumOfSquares(Samples y, int from, int to, double offset)
{
    if (to < from) return 0;
    const double* p = y.data() + from;
    const std::size_t n = U(to - from + 1);
    const V2 off{offset, offset};
    V2 s0{0, 0}, s1{0, 0}, s2{0, 0}, s3{0, 0};
    std::size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const V2 d0 = Load2(p + i) - off, d1 = Load2(p + i + 2) - off;
        const V2 d2 = Load2(p + i + 4) - off, d3 = Load2(p + i + 6) - off;
        s0 += d0 * d0;
        s1 += d1 * d1;
        s2 += d2 * d2;
        s3 += d3 * d3;
    }
    double tail = 0;
    for (; i < n; ++i) {
        const double d = p[i] - offset;
        tail += d * d;
    }
    return Lanes(s0, s1, s2, s3) + tail;
}

namespace {
struct TMinMax {
    double min;
    double max;
};

// Smallest and largest sample of [from, to] that is not exactly 0.0, starting from the given
// bounds. Zeros are turned into values that lose every comparison, so the loop has no branch;
// NaN loses every comparison too, as in a plain scan.
TMinMax NonZeroMinMax(Samples y, int from, int to, TMinMax start)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    double lo[4] = {start.min, start.min, start.min, start.min};
    double hi[4] = {start.max, start.max, start.max, start.max};
    int i = from;
    for (; i + 4 <= to + 1; i += 4) {
        for (int k = 0; k < 4; ++k) {
            const double v = y[U(i + k)];
            const double forMax = v == 0.0 ? -inf : v;
            const double forMin = v == 0.0 ? inf : v;
            hi[k] = forMax > hi[k] ? forMax : hi[k];
            lo[k] = forMin < lo[k] ? forMin : lo[k];
        }
    }
    for (; i <= to; ++i) {
        const double v = y[U(i)];
        if (v == 0.0) continue;
        hi[0] = v > hi[0] ? v : hi[0];
        lo[0] = v < lo[0] ? v : lo[0];
    }
    return {std::min({lo[0], lo[1], lo[2], lo[3]}), std::max({hi[0], hi[1], hi[2], hi[3]})};
}

// Time of the first sample of [from, to] equal to value.
double FirstTimeOf(Samples x, Samples y, int from, int to, double value)
{
    for (int i = from; i <= to; ++i) {
        if (y[U(i)] == value) return x[U(i)];
    }
    return 0;
}
}  // namespace

TOffsetResult OffsetOverPeriods(Samples x, Samples y, int from, int to)
{
    TOffsetResult r;
    // The start values bound what a measured signal can reach; zero samples are gaps.
    const TMinMax range = NonZeroMinMax(y, from, to, {1000000.0, -1000000.0});
    const double maxY = range.max, minY = range.min;
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

// The extreme values first, then the first sample that holds each: the same sample a running
// scan with strict comparisons keeps.
TPeakScan ScanPeaks(Samples x, Samples y, int from, int last)
{
    constexpr double big = std::numeric_limits<double>::max();
    const TMinMax m = NonZeroMinMax(y, from, last, {big, -big});
    TPeakScan r{m.min, 0, m.max, 0};
    if (m.min != big) r.minX = FirstTimeOf(x, y, from, last, m.min);
    if (m.max != -big) r.maxX = FirstTimeOf(x, y, from, last, m.max);
    return r;
}

namespace {
constexpr int kBlock = 16;

inline V2 Min2(V2 a, V2 b) { return a < b ? a : b; }
inline V2 Max2(V2 a, V2 b) { return a > b ? a : b; }

// First index k >= i, in steps of whole blocks, whose block may hold a segment (k-1, k) that
// reaches level a or level b; end when none does. A block reaches no level when all its samples
// and the one before lie on one side of each level, which its minimum and maximum tell without a
// branch per sample. Segments that reach neither level change nothing in the edge search.
// The branch-free min/max lets a NaN overwrite the extremes gathered before it, so a block that
// holds a NaN or an infinity (s - s is then NaN) is always stepped through sample by sample.
int NextCandidateBlock(const double* y, int i, int end, double a, double b)
{
    for (; i + kBlock <= end; i += kBlock) {
        const double* p = y + i;
        V2 lo0{p[-1], p[-1]}, hi0 = lo0, lo1 = lo0, hi1 = lo0;
        V2 nonFinite = lo0 - lo0;
        for (int k = 0; k < kBlock; k += 4) {
            const V2 u = Load2(p + k), v = Load2(p + k + 2);
            lo0 = Min2(lo0, u);
            hi0 = Max2(hi0, u);
            lo1 = Min2(lo1, v);
            hi1 = Max2(hi1, v);
            nonFinite += (u - u) + (v - v);
        }
        const V2 lo = Min2(lo0, lo1), hi = Max2(hi0, hi1);
        const double mn = std::min(lo[0], lo[1]), mx = std::max(hi[0], hi[1]);
        const bool clearOfA = mn > a || mx < a;
        const bool clearOfB = mn > b || mx < b;
        const bool finite = nonFinite[0] + nonFinite[1] == 0.0;
        if (!(clearOfA && clearOfB && finite)) return i;
    }
    return i;
}
}  // namespace

double TimeDifference(Samples x, Samples y, int from, int to, const TEdgeQuery& q, Marks& marks)
{
    const double t0 = U(from) < x.size() ? x[U(from)] : 0.0;
    double tStart = t0, tStop = t0, tFirst = t0;
    if (from == 0) from = 1;  // every step reads the sample before it
    int periods = 0;
    double highTime = 0;
    bool started = false;
    enum class Next { Go, Stop, Phase };
    // One step of the search over the segment (i-1, i); the stop test comes before the start test.
    auto step = [&](int i) {
        const double x1 = x[U(i - 1)], y1 = y[U(i - 1)], x2 = x[U(i)], y2 = y[U(i)];
        if (started) {
            const double l = q.stopLevel;
            const bool hit = q.stopRising ? (y1 <= l && l <= y2) : (y1 >= l && l >= y2);
            if (hit) {
                tStop = CrossingTime(x1, y1, x2, y2, l, marks);
                if (q.mode == imTime && q.count <= periods) return Next::Stop;
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
            if (q.mode == imPhase) return Next::Phase;
        }
        return Next::Go;
    };
    const int end = to;  // steps run up to To - 1
    Next next = Next::Go;
    for (int i = from; i < end && next == Next::Go;) {
        // Skipping needs every hit to meet its level between two samples, which the start edge
        // does not before the first hit when no edge is needed.
        if (started || q.startNeedsEdge) {
            i = NextCandidateBlock(y.data(), i, end, q.startLevel, q.stopLevel);
            for (const int blockEnd = std::min(i + kBlock, end); i < blockEnd && next == Next::Go; ++i) {
                next = step(i);
            }
        } else {
            next = step(i++);
        }
    }
    if (next == Next::Phase) return tStart;
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
