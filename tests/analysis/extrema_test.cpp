#include "analysis/extrema.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace dv::analysis {
namespace {

// The definition, checked point by point against every other point.
std::vector<int> NaiveExtrema(const std::vector<double>& x, const std::vector<double>& y,
                              TExtremumKind kind, double tolerance, double epsilon)
{
    const double sign = kind == TExtremumKind::Maximum ? 1 : -1;
    std::vector<int> found;
    for (std::size_t i = 0; i < x.size(); ++i) {
        bool extremum = true;
        for (std::size_t j = 0; j < x.size() && extremum; ++j) {
            if (j == i || std::abs(x[j] - x[i]) > tolerance) continue;
            const double vi = sign * y[i], vj = sign * y[j];
            extremum = j < i ? vj < vi - epsilon : vj <= vi + epsilon;
        }
        if (extremum) found.push_back(static_cast<int>(i));
    }
    return found;
}

TEST(FindAllExtremaTest, EqualsTheDefinitionOnRandomPlateausAndWindows)
{
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> level(0, 4);
    std::uniform_int_distribution<int> gap(0, 2);  // repeated times too
    for (int n = 0; n <= 12; ++n) {
        for (int trial = 0; trial < 60; ++trial) {
            std::vector<double> x(n), y(n);
            double t = 0;
            for (int i = 0; i < n; ++i) {
                t += gap(rng) * 0.5;
                x[i] = t;
                y[i] = level(rng) + (trial % 3 == 0 ? 1e-7 * level(rng) : 0.0);
            }
            for (double tolerance : {0.0, 0.5, 1.0, 2.5, 1e300}) {
                for (double epsilon : {0.0, 1e-5}) {
                    for (auto kind : {TExtremumKind::Maximum, TExtremumKind::Minimum}) {
                        ASSERT_EQ(FindAllExtrema(x, y, kind, tolerance, epsilon),
                                  NaiveExtrema(x, y, kind, tolerance, epsilon))
                            << "n=" << n << " tol=" << tolerance << " eps=" << epsilon;
                    }
                }
            }
        }
    }
}

TEST(FindAllExtremaTest, PlateauCountsOnceAtItsStart)
{
    const std::vector<double> x = {0, 1, 2, 3, 4, 5, 6};
    const std::vector<double> y = {0, 2, 2, 2, 1, 3, 0};
    EXPECT_EQ(FindAllExtrema(x, y, TExtremumKind::Maximum, 1, 0), (std::vector<int>{1, 5}));
    EXPECT_EQ(FindAllExtrema(x, y, TExtremumKind::Minimum, 1, 0), (std::vector<int>{0, 4, 6}));
    EXPECT_EQ(FindAllExtrema(x, y, TExtremumKind::Maximum, 10, 0), (std::vector<int>{5}));
    EXPECT_TRUE(FindAllExtrema({}, {}, TExtremumKind::Maximum, 1, 0).empty());
}

}  // namespace
}  // namespace dv::analysis
