#pragma once
// What the scope window shows, kept free of widgets: units, colours, zero point and divisions,
// vertical lines, labels, the spectrum of the second scope, visibility and the "Weiter" button.
// The curves and crosses themselves are in the curve store (analysis/curvestore.h).
#include "scope/scopesettings.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace dv::scope {

struct TScopeLine {
    double x = 0;
    int color = 0;
};

// Colour numbers are the window system's (blue in the high byte, red in the low one).
inline constexpr std::array<int, kColorCount> kDefaultColors{0x00FFFF, 0x00FF00, 0xFFFF00, 0xFF00FF, 0x000000, 0x000000, 0xFF0000};
inline constexpr int kClipLineColor = 65535;  // yellow

// The plot of the main scope in pixels and the size of a division; the steps of the division
// selectors are in scope/scopeview.h.
inline constexpr int kPlotWidth = 1126;
inline constexpr int kPlotHeight = 570;
inline constexpr int kPixelsPerDivision = 50;
inline constexpr int kDefaultZeroX = 40;
inline constexpr int kDefaultZeroY = (kPlotHeight - 30) / 2;

struct TScopeModel {
    QString UnitX;
    QString UnitY;
    std::array<int, kColorCount> Colors = kDefaultColors;
    int Intensity = kDefaultColors[6] / 65536;
    std::array<QString, kCurveSlots> CurveNames;
    int XDivStep = 18;  // 1 ms
    int YDivStep = 9;   // 1 V
    int ZeroX = kDefaultZeroX;
    int ZeroY = kDefaultZeroY;
    int SecondZeroX = kDefaultZeroX;
    int SecondZeroY = kDefaultZeroY;
    std::vector<TScopeLine> Lines;
    std::vector<double> Spectrum;  // second scope: lines 0 .. n/2
    double SpectrumSpacing = 0;    // Hz between lines
    QString ResultText;
    std::optional<double> ResultValue;  // the number behind ResultText, for the prefix button
    QString ResultUnit;
    QString FunctionLabel;
    QString ChannelLabel;
    bool ResultShown = false;
    bool InfoLabelVisible = true;
    bool Visible = false;
    bool Running = false;  // run panel shown, both scopes running
    bool PrefixButton = false;
    int AutoScaleRuns = 0;  // the display autoscales once per new run
    bool WeiterEnabled = false;
    bool BlinkTimerActive = false;

    // The zero point from the "[SETSCALE:" fields: division steps, then the pixel position.
    void ApplyScaling(const TDecodedSettings& settings);
};

TScopeModel& ScopeModel();

}  // namespace dv::scope
