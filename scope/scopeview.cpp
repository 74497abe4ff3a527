#include "scope/scopeview.h"

#include "scope/scopeformat.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace dv::scope {

namespace {

// 1-2-5 steps from 10^firstExponent up to and including 10^lastExponent.
template <std::size_t N>
constexpr std::array<double, N> Steps125(int firstExponent)
{
    std::array<double, N> steps{};
    double decade = 1;
    for (int e = 0; e > firstExponent; --e) decade /= 10;
    for (int e = 0; e < firstExponent; ++e) decade *= 10;
    for (std::size_t i = 0; i < N; ++i) {
        constexpr double kMantissa[3] = {1, 2, 5};
        steps[i] = kMantissa[i % 3] * decade;
        if (i % 3 == 2) decade *= 10;
    }
    return steps;
}

const std::array<double, 34> kXSteps = Steps125<34>(-9);  // 1 ns .. 100 s
const std::array<double, 16> kYSteps = Steps125<16>(-3);  // 1 mV .. 100 V
const std::array<double, 34> kFrequencySteps = Steps125<34>(-3);  // 1 mHz .. 100 MHz

constexpr double kPixelLimit = 1e6;

double Limited(double pixel) { return std::clamp(pixel, -kPixelLimit, kPixelLimit); }

// The first step under which extent fits into divisions (the last step when none does).
int FittingStep(std::span<const double> steps, double extent, double divisions)
{
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (extent <= steps[i] * divisions) return static_cast<int>(i);
    }
    return static_cast<int>(steps.size()) - 1;
}

}  // namespace

std::span<const double> XDivisionSteps() { return kXSteps; }
std::span<const double> YDivisionSteps() { return kYSteps; }
std::span<const double> FrequencyDivisionSteps() { return kFrequencySteps; }

QString DivisionText(double step, const QString& unit)
{
    QString u = unit;
    Einheiten(step, u);
    return QString::number(std::round(step)) + ' ' + u + QStringLiteral("/Div");
}

std::vector<TColumnSpan> DecimateMinMax(std::span<const double> x, std::span<const double> y, const TViewMapping& map,
                                        int left, int width)
{
    std::vector<TColumnSpan> spans;
    const std::size_t n = std::min(x.size(), y.size());
    spans.reserve(std::min<std::size_t>(n, static_cast<std::size_t>(4 * std::max(width, 1))));
    const int right = left + width;
    const bool ascendingAxis = map.xStep > 0 && map.pixelsPerDivision > 0;
    std::size_t i = 0;
    while (i < n) {
        const double px = Limited(map.PixelX(x[i]));
        const double py = Limited(map.PixelY(y[i]));
        if (std::isnan(px) || std::isnan(py)) {
            ++i;
            continue;
        }
        // Everything outside the visible columns shares one column per side.
        const int column = px < left ? left - 1 : px >= right ? right : static_cast<int>(px);
        if (spans.empty() || spans.back().column != column) spans.push_back({column, py, py, px, py, px, py});
        TColumnSpan& s = spans.back();
        s.top = std::min(s.top, py);
        s.bottom = std::max(s.bottom, py);
        s.xLast = px;
        s.yLast = py;
        ++i;
        if (!ascendingAxis || column < left || column >= right) continue;
        // The points that follow in ascending x within the same column need only their raw
        // extremes: a tight loop over plain doubles, mapped once per column.
        const double columnEnd = map.ValueX(column + 1);
        double low = y[i - 1];
        double high = y[i - 1];
        double previous = x[i - 1];
        std::size_t j = i;
        while (j < n && x[j] >= previous && x[j] < columnEnd) {
            previous = x[j];
            low = std::min(low, y[j]);
            high = std::max(high, y[j]);
            ++j;
        }
        if (j == i) continue;
        s.top = std::min(s.top, Limited(map.PixelY(high)));
        s.bottom = std::max(s.bottom, Limited(map.PixelY(low)));
        s.xLast = Limited(map.PixelX(x[j - 1]));
        s.yLast = Limited(map.PixelY(y[j - 1]));
        i = j;
    }
    return spans;
}

TAutoScale AutoScale(const std::vector<TCurveView>& curves, int plotLeft, int plotWidth, int plotHeight,
                     double pixelsPerDivision, std::span<const double> xSteps)
{
    double xMin = INFINITY, xMax = -INFINITY, yMin = INFINITY, yMax = -INFINITY;
    for (const TCurveView& c : curves) {
        const std::size_t n = std::min(c.x.size(), c.y.size());
        for (std::size_t i = 0; i < n; ++i) {
            if (!std::isfinite(c.x[i]) || !std::isfinite(c.y[i])) continue;
            xMin = std::min(xMin, c.x[i]);
            xMax = std::max(xMax, c.x[i]);
            yMin = std::min(yMin, c.y[i]);
            yMax = std::max(yMax, c.y[i]);
        }
    }
    TAutoScale a;
    if (xMin > xMax) return a;
    a.valid = true;
    // One pixel less than the area, so the last point lands on a visible column.
    a.xStep = FittingStep(xSteps, xMax - xMin, (plotWidth - 1) / pixelsPerDivision);
    a.yStep = FittingStep(kYSteps, yMax - yMin, (plotHeight - 1) / pixelsPerDivision);
    const double xStep = xSteps[static_cast<std::size_t>(a.xStep)];
    const double yStep = kYSteps[static_cast<std::size_t>(a.yStep)];
    a.zeroX = plotLeft - xMin * pixelsPerDivision / xStep;
    a.zeroY = plotHeight / 2.0 + (yMin + yMax) / 2 * pixelsPerDivision / yStep;
    return a;
}

QString CursorReadout(const TViewMapping& map, double cursor1, double cursor2, const QString& unitX)
{
    const double x1 = map.ValueX(cursor1);
    const double x2 = map.ValueX(cursor2);
    const double dx = x2 - x1;
    QString text = QStringLiteral("X1 = %1 %2   X2 = %3 %2   dX = %4 %2")
                       .arg(GeneralText(x1, 6, 2), unitX, GeneralText(x2, 6, 2), GeneralText(dx, 6, 2));
    if (unitX == QLatin1String("s") && dx != 0) text += QStringLiteral("   1/dX = %1 Hz").arg(GeneralText(1 / dx, 6, 2));
    return text;
}

}  // namespace dv::scope
