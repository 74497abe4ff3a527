#pragma once
// The arithmetic of the scope display, kept free of widgets so that tests and the benchmark call
// it directly: the division tables, the mapping between axis units and pixels, min/max decimation
// of a curve per pixel column, autoscale and the cursor readout.
#include <QString>

#include <span>
#include <vector>

namespace dv::scope {

// The plot area inside the main scope: the zero-point fractions of "[SETSCALE:" count in it.
inline constexpr int kPlotLeft = 40;
inline constexpr int kPlotAreaWidth = 1086;
inline constexpr int kPlotAreaHeight = 540;

// Value per division of the selectors, 1-2-5 steps: X from 1 ns to 100 s, Y from 1 mV to 100 V.
std::span<const double> XDivisionSteps();
std::span<const double> YDivisionSteps();
// Frequency per division of the spectrum scope, 1-2-5 steps from 1 mHz to 100 MHz, so that the
// lines up to half the sample rate fit for any rate a curve is sampled at.
std::span<const double> FrequencyDivisionSteps();
// "5 ms/Div": the step scaled to an SI prefix in front of the unit.
QString DivisionText(double step, const QString& unit);

// Axis units to pixels of a widget: the zero point in pixels, pixelsPerDivision per step.
struct TViewMapping {
    double zeroX = 0;
    double zeroY = 0;
    double xStep = 1;
    double yStep = 1;
    double pixelsPerDivision = 50;

    double PixelX(double x) const { return zeroX + x * pixelsPerDivision / xStep; }
    double PixelY(double y) const { return zeroY - y * pixelsPerDivision / yStep; }
    double ValueX(double px) const { return (px - zeroX) * xStep / pixelsPerDivision; }
    double ValueY(double py) const { return (zeroY - py) * yStep / pixelsPerDivision; }
};

// The points of a curve that fall into one pixel column, in drawing order: a vertical stroke from
// top to bottom, entered at (xFirst, yFirst) and left at (xLast, yLast). Points left or right of
// the visible columns are gathered into one span per run, with their real positions kept for the
// strokes that join them to the visible ones.
struct TColumnSpan {
    int column = 0;
    double top = 0;
    double bottom = 0;
    double xFirst = 0;
    double yFirst = 0;
    double xLast = 0;
    double yLast = 0;
};

// Decimates a curve for columns [left, left + width): consecutive points in the same column become
// one span, so the result has at most about two spans per column for a curve with ascending x,
// however many points it has. Pixel coordinates are limited to +-1e6.
std::vector<TColumnSpan> DecimateMinMax(std::span<const double> x, std::span<const double> y, const TViewMapping& map,
                                        int left, int width);

// The division steps and zero point that show every point of the curves in the plot area: the
// smallest steps under which the curves' extent fits, the first point at the left edge and the
// value range centred. Curves without points are left out; when no curve has any, valid is false.
struct TAutoScale {
    bool valid = false;
    int xStep = 0;
    int yStep = 0;
    double zeroX = 0;
    double zeroY = 0;
};
struct TCurveView {
    std::span<const double> x;
    std::span<const double> y;
};
// xStep counts in xSteps (the X selector's steps unless given).
TAutoScale AutoScale(const std::vector<TCurveView>& curves, int plotLeft, int plotWidth, int plotHeight,
                     double pixelsPerDivision, std::span<const double> xSteps = XDivisionSteps());

// Two measuring cursors at pixel columns: their X values, the difference and, when the X unit is
// seconds, its frequency.
QString CursorReadout(const TViewMapping& map, double cursor1, double cursor2, const QString& unitX);

}  // namespace dv::scope
