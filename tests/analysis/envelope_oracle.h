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
    const int count = static_cast<int>(ex.size());
    for (int i = from; i <= to; ++i) {
        const double xs = x[static_cast<std::size_t>(i)], ys = y[static_cast<std::size_t>(i)];
        for (int j = 1; j <= count - 2; ++j) {
            const auto k = static_cast<std::size_t>(j);
            const double x0 = ex[k - 1], y0 = ey[k - 1], x1 = ex[k], y1 = ey[k], x2 = ex[k + 1];
            if (x0 < xs && xs <= x1 && xs < x2) {
                double d = x1 - x0;
                if (x1 == x0) d = 1.0;
                const double e = (y1 - y0) * ((xs - x0) * 100 / d / 100) + y0;
                if (upper ? ys > e : ys < e) return i;
            }
        }
    }
    return -1;
}

}  // namespace dv::analysis::test
