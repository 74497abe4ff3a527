#pragma once
// The decoded settings of one Scope(Command, Special) call: what the tags say, before and after
// their fields are resolved through the script's variables. One set per library (ScopeSettings()),
// shared by the editor and the run.
#include <QString>

#include <array>

namespace dv::scope {

// The analysis functions, numbered as the editor's function list.
enum class TScopeFnc {
    None,
    Offset,
    Rms,
    Mid,
    Dist,
    Sinad,
    TimeDiff,
    Peak,
    PhaseShift,
    Query,
    DiffCurve,
    CurvePatch,
    Envelope,
    LowPass,
    BandPass,
    HighPass,
    Fft,
    Freq,
    ImpulsCount,
    DutyCycle,
};
inline constexpr int kScopeFunctionCount = 20;
inline constexpr int kCurveSlots = 4;
inline constexpr int kColorCount = 7;  // curves 1-4, main scope, second scope, beam intensity

struct TDecodedSettings {
    std::array<QString, kCurveSlots> CurveSource;  // CurveSource1 .. CurveSource4
    bool ClearData = false;
    bool KeepScope = false;
    bool HideScope = false;
    bool PrefixMode = false;
    bool AutoScale = false;
    TScopeFnc FxFunction = TScopeFnc::None;
    QString FxChannel = QStringLiteral("1");
    std::array<QString, 5> FxArg;  // FxArg1 .. FxArg5
    QString FxOrder;
    QString FxRmsOffset;
    QString ResultVar;
    QString ClipStart;
    QString ClipStop;
    bool WaitEnabled = false;
    QString WaitVar;
    QString UnitTextX;
    QString UnitTextY;
    bool UseColors = false;
    bool UseScaling = false;

    // Not reset by decoding: a tag that leaves them out keeps the values of the last one.
    std::array<QString, 3> FxSinadArg;  // sample rate, signal frequency, bandwidth
    int FxSinadWindow = 0;
    std::array<QString, kColorCount> ColorFields;  // six hex digits each
    std::array<int, kColorCount> ColorValues{};
    std::array<QString, 4> ScaleFields;  // X step, Y step, X offset, Y offset
    double ZeroPosX = 0.0;               // fraction of the plot width
    double ZeroPosY = 0.5;               // fraction of the plot height

    // Back to the reset values of a new decoding; the kept settings stay.
    void ResetForDecode();
    bool operator==(const TDecodedSettings&) const = default;
};

// The library's one set of settings.
TDecodedSettings& ScopeSettings();

}  // namespace dv::scope
