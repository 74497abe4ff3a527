#include "analysis/extrema.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <numeric>

namespace dv::analysis {

namespace {
// The best point of a window that slides forward over positions 0, 1, 2, ...: a monotonic queue
// holding only the points that can still become the best. Better(a, b) must be a strict order.
template <typename Better>
class TSlidingBest {
public:
    explicit TSlidingBest(Better better) : better_(better) {}
    void Push(std::size_t position)
    {
        while (!q_.empty() && better_(position, q_.back())) q_.pop_back();
        q_.push_back(position);
    }
    void DropBefore(std::size_t first)
    {
        while (!q_.empty() && q_.front() < first) q_.pop_front();
    }
    std::size_t Best() const { return q_.front(); }

private:
    Better better_;
    std::deque<std::size_t> q_;
};
}  // namespace

std::vector<int> FindAllExtrema(std::span<const double> x, std::span<const double> y,
                                TExtremumKind kind, double tolerance, double epsilon)
{
    const std::size_t n = std::min(x.size(), y.size());
    // The taking part points in time order (stable: equal times keep their index order), their
    // values turned upside down for minima.
    std::vector<int> index;
    for (std::size_t i = 0; i < n; ++i) {
        if (std::isfinite(x[i]) && std::isfinite(y[i])) index.push_back(static_cast<int>(i));
    }
    auto time = [&x](int i) { return x[static_cast<std::size_t>(i)]; };
    if (!std::ranges::is_sorted(index, {}, time)) std::ranges::stable_sort(index, {}, time);
    const double sign = kind == TExtremumKind::Maximum ? 1.0 : -1.0;
    std::vector<double> t(index.size()), v(index.size());
    for (std::size_t k = 0; k < index.size(); ++k) {
        t[k] = time(index[k]);
        v[k] = sign * y[static_cast<std::size_t>(index[k])];
    }

    // The window of position k is [first, end) plus k itself. As times ascend, |t[j] - t[k]| grows
    // with the distance in positions on either side, and both ends only move forward.
    TSlidingBest highest([&](std::size_t a, std::size_t b) {
        return v[a] > v[b] || (v[a] == v[b] && index[a] < index[b]);
    });
    TSlidingBest lowest([&](std::size_t a, std::size_t b) { return v[a] < v[b]; });
    std::vector<int> found;
    std::size_t first = 0, end = 0;
    for (std::size_t k = 0; k < t.size(); ++k) {
        while (first < k && !(std::abs(t[k] - t[first]) <= tolerance)) ++first;
        for (; end <= k || (end < t.size() && std::abs(t[end] - t[k]) <= tolerance); ++end) {
            highest.Push(end);
            lowest.Push(end);
        }
        highest.DropBefore(first);
        lowest.DropBefore(first);
        if (highest.Best() == k && v[k] - v[lowest.Best()] >= epsilon) found.push_back(index[k]);
    }
    std::ranges::sort(found);
    return found;
}

}  // namespace dv::analysis
