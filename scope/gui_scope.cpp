#include "scope/gui_scope.h"

#include "analysis/curvestore.h"
#include "framework/intconvert.h"
#include "framework/synchronize.h"
#include "framework/translate.h"
#include "framework/waitevents.h"
#include "scope/curvesource.h"
#include "scope/scopedialogs.h"
#include "scope/scopeedit.h"
#include "scope/scopeformat.h"
#include "scope/scopefunctions.h"
#include "scope/scopemodel.h"
#include "scope/scopetags.h"

#include <atomic>
#include <exception>

namespace dv {

namespace scope {

namespace {

// Written by the GUI thread during the synchronised run, read by the worker after it returned.
std::atomic<bool> g_waitEnabled{false};

std::function<void()> g_afterRunHook;

// A fault already reported and answered with Cancel: the run ends without a second dialog.
struct TRunCancelled {};

// The functions whose result is an array, written element by element.
bool WritesArray(TScopeFnc f)
{
    return f == TScopeFnc::DiffCurve || f == TScopeFnc::LowPass || f == TScopeFnc::BandPass || f == TScopeFnc::HighPass ||
           f == TScopeFnc::Fft;
}

}  // namespace

void TScopeState::DecodeScript(const QString& command, const QString& special, bool running)
{
    TDecodedSettings& s = ScopeSettings();
    try {
        DecodeTags(command, special, s);
    } catch (const TScopeDecodeFault& fault) {
        ScopeDialogs().ShowDecodeError(fault.Message());
        TestEnvironment().StopTest();
    }
    if (!running) FillEditor(s);
    g_waitEnabled = s.WaitEnabled;
}

void TScopeState::Start()
{
    DecodeScript(Command, Special, true);
    TDecodedSettings& s = ScopeSettings();
    TScopeModel& m = ScopeModel();
    try {
        m.ResultText.clear();
        m.ResultValue.reset();
        if (s.ClearData) ClearScope();
        ApplyUnits();
        if (s.UseColors) ApplyColors();
        if (s.UseScaling) m.ApplyScaling(s);
        m.SecondZeroX = kDefaultZeroX;
        m.SecondZeroY = kDefaultZeroY;
        DrawCurves();
        RunAnalysis();
        if (s.WaitEnabled && !s.WaitVar.isEmpty()) {
            s.WaitVar = VarAccess().ResolveText(s.WaitVar).trimmed();
            if (s.WaitVar == QLatin1String("0")) s.WaitEnabled = false;
        }
        ShowOrHide();
        if (s.AutoScale) ++m.AutoScaleRuns;
        m.WeiterEnabled = s.WaitEnabled;
        m.BlinkTimerActive = s.WaitEnabled;
    } catch (const TRunCancelled&) {
        s.WaitEnabled = false;
    } catch (const TDravikException& e) {
        s.WaitEnabled = false;
        ReportExecutionFault(_("Scope-Plugin: Fehler bei der Befehlsausführung !") + '\n' + e.Message());
    } catch (const std::exception& e) {
        // Out of memory or a library's own fault: the scope's dialog all the same, never a crash.
        s.WaitEnabled = false;
        ReportExecutionFault(_("Scope-Plugin: Fehler bei der Befehlsausführung !") + '\n' + QString::fromLocal8Bit(e.what()));
    }
    g_waitEnabled = s.WaitEnabled;
    if (g_afterRunHook) g_afterRunHook();
}

void TScopeState::ClearScope()
{
    TScopeModel& m = ScopeModel();
    analysis::TCurveStore& store = analysis::ScopeStore();
    m.InfoLabelVisible = false;
    store.ClearCrosses();
    store.ClearMarkerLines();
    m.Lines.clear();
    m.Colors = kDefaultColors;
    store.ClearAll();
    m.CurveNames = {};
}

void TScopeState::ApplyUnits()
{
    TDecodedSettings& s = ScopeSettings();
    TScopeModel& m = ScopeModel();
    if (!s.UnitTextX.isEmpty()) s.UnitTextX = VarAccess().ResolveText(s.UnitTextX);
    if (!s.UnitTextY.isEmpty()) s.UnitTextY = VarAccess().ResolveText(s.UnitTextY);
    m.UnitX = s.UnitTextX;
    m.UnitY = s.UnitTextY;
}

void TScopeState::ApplyColors()
{
    const TDecodedSettings& s = ScopeSettings();
    TScopeModel& m = ScopeModel();
    m.Colors = s.ColorValues;
    m.Intensity = s.ColorValues[6] / 65536;
}

void TScopeState::DrawCurves()
{
    const TDecodedSettings& s = ScopeSettings();
    const bool spectrum = s.FxFunction == TScopeFnc::Fft || s.FxFunction == TScopeFnc::Dist;
    const int spectrumCurve = spectrum ? TryStrToInt(s.FxChannel).value_or(0) : 0;
    for (int slot = 0; slot < kCurveSlots; ++slot) {
        const auto i = static_cast<std::size_t>(slot);
        if (s.CurveSource[i].isEmpty()) continue;
        try {
            DrawCurve(analysis::ScopeStore(), slot + 1, s.CurveSource[i], ScopeModel().CurveNames[i], spectrumCurve == slot + 1);
        } catch (const TDravikException& e) {
            // A curve that cannot be drawn is reported on its own; Ignore goes on with the next.
            if (ReportExecutionFault(QStringLiteral("Scope-Plugin: ") + e.Message()) == TErrorAnswer::Cancel) throw TRunCancelled();
        }
    }
}

void TScopeState::RunAnalysis()
{
    TDecodedSettings& s = ScopeSettings();
    TScopeModel& m = ScopeModel();
    analysis::TCurveStore& store = analysis::ScopeStore();
    if (s.FxFunction == TScopeFnc::None) {
        if (m.ResultShown) {
            m.ResultText.clear();
            m.FunctionLabel.clear();
            m.ChannelLabel.clear();
            m.ResultShown = false;
        }
        store.SetClip({}, {});
        return;
    }
    store.ClearMarkerLines();
    m.Lines.clear();
    if (!s.ClipStart.isEmpty()) {
        s.ClipStart = VarAccess().ResolveText(s.ClipStart);
        m.Lines.push_back({analysis::StrToFloatP(s.ClipStart), kClipLineColor});
    }
    if (!s.ClipStop.isEmpty()) {
        s.ClipStop = VarAccess().ResolveText(s.ClipStop);
        m.Lines.push_back({analysis::StrToFloatP(s.ClipStop), kClipLineColor});
    }
    store.SetClip(s.ClipStart, s.ClipStop);

    const TFxOutcome out = RunFunction(s);
    m.FunctionLabel = out.label;
    m.ChannelLabel = out.channelLabel;
    if (out.spectrum && out.array) {
        m.Spectrum = *out.array;
        m.SpectrumSpacing = out.spectrumSpacing;
    }
    if (out.number) {
        m.ResultText = ResultText(*out.number, out.unit, s.PrefixMode);
        m.ResultValue = out.number;
        m.ResultUnit = out.unit;
        if (!s.ResultVar.isEmpty()) VarAccess().SetVariable(s.ResultVar, std::make_unique<TNumberValue>(*out.number));
    } else {
        m.ResultText = out.arrayText;
    }
    if (out.array && WritesArray(s.FxFunction)) SendMemArrayContents(*out.array);
    m.ResultShown = true;
}

void TScopeState::ShowOrHide()
{
    const TDecodedSettings& s = ScopeSettings();
    TScopeModel& m = ScopeModel();
    if (!s.WaitEnabled && (s.KeepScope || s.HideScope)) {
        if (s.HideScope) m.Visible = false;
        return;
    }
    m.Running = true;
    m.Visible = true;
    m.PrefixButton = s.PrefixMode;
}

void TScopeState::SendMemArrayContents(const std::vector<double>& values)
{
    const QString& name = ScopeSettings().ResultVar;
    if (name.isEmpty()) {
        ScopeDialogs().ShowInformation(_("keine Ergebnisvariable angegeben"));
        return;
    }
    // Element 0 is never written: the script's arrays start at 1.
    for (std::size_t i = 1; i < values.size(); ++i) {
        VarAccess().SetVariable(name + '{' + QString::number(i) + '}', std::make_unique<TNumberValue>(values[i]));
    }
}

void TScopeState::Continue()
{
    ScopeModel().BlinkTimerActive = false;
    ScopeModel().WeiterEnabled = false;
    ContinueEvent.SignalStop();
}

void SetAfterRunHook(std::function<void()> hook) { g_afterRunHook = std::move(hook); }

TScopeState& Scope()
{
    static TScopeState state;
    return state;
}

}  // namespace scope

TDVCmdScope::TDVCmdScope(TDVParser* parser) : TDVThreadRunEdit("TDVCmdScope", parser)
{
    scope::ScopeSettings().ZeroPosX = 0.0;
    scope::ScopeSettings().ZeroPosY = 0.5;
}

void TDVCmdScope::RunThreaded(TParamList& params)
{
    scope::TScopeState& state = scope::Scope();
    state.Command = params.GetString(QStringLiteral("Command"));
    state.Special = params.GetString(QStringLiteral("Special"));
    state.ContinueEvent.Reset();
    Synchronize([&state] { state.Start(); });
    if (!scope::g_waitEnabled) return;
    if (!scope::ScopeDialogs().BeginWait()) return;
    WaitForEvents({{state.ContinueEvent.StopHandle(), POLLIN}}, &TestEnvironment().GetRunControl(), -1);
    if (state.ContinueEvent.StopRequested()) return;
    // Ended by the stop: "Weiter" no longer offers to go on.
    Synchronize([] {
        scope::ScopeModel().WeiterEnabled = false;
        scope::ScopeModel().BlinkTimerActive = false;
        scope::ScopeDialogs().EndWait();
    });
}

}  // namespace dv
