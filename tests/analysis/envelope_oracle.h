#pragma once
// The envelope comparison walked literally: every sample against every envelope segment. Kept as
// the oracle that the fast comparison is proven against (and timed against in bench/).
#include <span>

namespace dv::analysis::test {

// Index of the first sample in [from, to] beyond the envelope, -1 when none is.
inline int LiteralEnvelopeWalk(std::span<const double> x, std::span<const double> y, int from,
                               int to, std::span<const double> ex, std::span<const double> ey,
                               bool upper)
{
    for (int i = from; i <= to; ++i) {
        for (int j = 1; j <= static_cast<int>(ex.size()) - 2; ++j) {
            const double x0 = ex[j - 1], y0 = ey[j - 1], x1 = ex[j], y1 = ey[j], x2 = ex[j + 1];
            if (x0 < x[i] && x[i] <= x1 && x[i] < x2) {
                const double d = x1 == x0 ? 1.0 : x1 - x0;
                const double e = (y1 - y0) * ((x[i] - x0) * 100 / d / 100) + y0;
                if (upper ? y[i] > e : y[i] < e) return i;
            }
        }
    }
    return -1;
}

}  // namespace dv::analysis::test
