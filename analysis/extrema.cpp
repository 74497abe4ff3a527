#include "analysis/extrema.h"

#include <algorithm>
#include <deque>

namespace dv::analysis {

namespace {
// Largest value of a window of indices that slides forward; a monotonic queue of candidates.
class TSlidingMax {
public:
    explicit TSlidingMax(std::span<const double> v) : v_(v) {}
    void Push(std::size_t i)
    {
        while (!q_.empty() && v_[q_.back()] <= v_[i]) q_.pop_back();
        q_.push_back(i);
    }
    void DropBefore(std::size_t first)
    {
        while (!q_.empty() && q_.front() < first) q_.pop_front();
    }
    bool Empty() const { return q_.empty(); }
    double Max() const { return v_[q_.front()]; }

private:
    std::span<const double> v_;
    std::deque<std::size_t> q_;
};
}  // namespace

std::vector<int> FindAllExtrema(std::span<const double> x, std::span<const double> y,
                                TExtremumKind kind, double tolerance, double epsilon)
{
    const std::size_t n = std::min(x.size(), y.size());
    // Minima are the maxima of the negated values.
    std::vector<double> v(y.begin(), y.begin() + static_cast<std::ptrdiff_t>(n));
    if (kind == TExtremumKind::Minimum) {
        for (double& e : v) e = -e;
    }
    std::vector<int> found;
    TSlidingMax before(v), after(v);
    std::size_t leftEdge = 0;   // first index within tolerance before i
    std::size_t rightEnd = 0;   // one past the last index within tolerance after i
    for (std::size_t i = 0; i < n; ++i) {
        // Window before i: [leftEdge, i).
        if (i > 0) before.Push(i - 1);
        while (leftEdge < i && x[i] - x[leftEdge] > tolerance) ++leftEdge;
        before.DropBefore(leftEdge);
        // Window after i: (i, rightEnd).
        if (rightEnd < i + 1) rightEnd = i + 1;
        while (rightEnd < n && x[rightEnd] - x[i] <= tolerance) after.Push(rightEnd++);
        after.DropBefore(i + 1);

        const bool aboveEarlier = before.Empty() || before.Max() < v[i] - epsilon;
        const bool notBelowLater = after.Empty() || after.Max() <= v[i] + epsilon;
        if (aboveEarlier && notBelowLater) found.push_back(static_cast<int>(i));
    }
    return found;
}

}  // namespace dv::analysis
