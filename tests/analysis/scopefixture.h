#pragma once
// A clean scope store for each curve-function test.
#include "analysis/curvestore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace dv::analysis::test {

class ScopeTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        Store().ClearAll();
        Store().ClearCrosses();
        Store().SetClip("", "");
    }
    void TearDown() override { SetUp(); }
    static TCurveStore& Store() { return ScopeStore(); }
    // Curve c with times 0, dt, 2 dt, ...
    static void SetCurve(int c, const std::vector<double>& y, double dt = 1.0)
    {
        std::vector<double> x(y.size());
        for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<double>(i) * dt;
        Store().Assign(c, x, y);
    }
};

// Relative comparison that prints both numbers in full on failure.
inline ::testing::AssertionResult NearRel(double actual, double expected, double tolerance)
{
    const double scale = std::max(std::abs(expected), 1e-300);
    if (std::abs(actual - expected) <= tolerance * scale) return ::testing::AssertionSuccess();
    char text[160];
    std::snprintf(text, sizeof text, "actual %.17g, expected %.17g, relative error %.3g > %.3g",
                  actual, expected, std::abs(actual - expected) / scale, tolerance);
    return ::testing::AssertionFailure() << text;
}

}  // namespace dv::analysis::test
