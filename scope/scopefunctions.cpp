#include "scope/scopefunctions.h"

#include "analysis/curvefunctions.h"
#include "framework/exceptions.h"
#include "framework/intconvert.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "scope/envelopefile.h"
#include "scope/scopedialogs.h"

#include <limits>

namespace dv::scope {

namespace {

using namespace analysis;

// Reads a field through the script's variables and keeps the value in the setting.
const QString& Resolve(QString& field)
{
    field = VarAccess().ResolveText(field);
    return field;
}

double ResolvedNumber(QString& field) { return StrToFloatP(Resolve(field)); }

// A typed number ("," or "." as the decimal separator) only when the whole text is one;
// otherwise def.
double StrictNumber(const QString& text, double def) { return ReadFloatP(text).value_or(def); }

QString YUnit(const TDecodedSettings& s) { return s.UnitTextY.isEmpty() ? QStringLiteral("V") : s.UnitTextY; }

TImpulsMode ImpulsModeOf(TScopeFnc f)
{
    switch (f) {
    case TScopeFnc::Freq: return imFreq;
    case TScopeFnc::ImpulsCount: return imCount;
    case TScopeFnc::DutyCycle: return imDutyCycle;
    default: return imTime;
    }
}

TFxOutcome EdgeFunction(TDecodedSettings& s, int ch)
{
    static const char* const labels[] = {"ZEITDIFFERENZ", "FREQUENZ", "IMPULSCOUNT", "DUTYCYCLE"};
    const double y1 = ResolvedNumber(s.FxArg[0]);
    const double y2 = ResolvedNumber(s.FxArg[1]);
    const QString& e1 = s.FxArg[2];
    const bool startRising = e1 == QLatin1String("0") || e1 == QLatin1String("2");
    const bool startNeedsEdge = e1 == QLatin1String("0") || e1 == QLatin1String("1");
    const bool stopRising = s.FxArg[3] == QLatin1String("0");
    const int edge = StrToInt(s.FxArg[4]) + 1;
    const TImpulsMode mode = ImpulsModeOf(s.FxFunction);
    TFxOutcome out;
    out.label = QLatin1String(labels[mode == imTime ? 0 : mode == imFreq ? 1 : mode == imCount ? 2 : 3]);
    out.number = Zeitdifferenz(ch, y1, y2, startRising, stopRising, startNeedsEdge, edge, mode);
    out.unit = s.UnitTextX;
    if (mode == imFreq) out.unit = s.UnitTextX == QLatin1String("s") ? QStringLiteral("Hz") : QStringLiteral("(1/") + s.UnitTextX + ')';
    if (mode == imDutyCycle && s.UnitTextX.isEmpty()) out.unit = QStringLiteral("%");
    return out;
}

TFxOutcome PeakFunction(TDecodedSettings& s, int ch)
{
    TFxOutcome out;
    TPeakMode mode = PeakMin;
    bool local = s.FxArg[1] == QLatin1String("2");
    out.label = QStringLiteral("PEAK MIN");
    if (s.FxArg[0] == QLatin1String("1")) {
        mode = PeakMax;
        out.label = QStringLiteral("PEAK MAX");
    } else if (s.FxArg[0] == QLatin1String("3")) {
        mode = PeakDiff;
        local = false;
        out.label = QStringLiteral("PEAK MIN-MAX");
    }
    const double epsX = StrictNumber(s.FxArg[2], std::numeric_limits<double>::max());
    const double epsY = StrictNumber(s.FxArg[3], 1e-5);
    out.number = Peak(static_cast<unsigned char>(ch), mode, local, epsX, epsY);
    out.unit = s.UnitTextY;
    return out;
}

// The functions measure the curves 1 to 4. The envelopes (5, 6) and the further curve (7) are
// no channel: measuring an envelope against itself would only look like a result.
int Channel(const QString& text)
{
    const int ch = StrToInt(text);
    if (ch < 1 || ch > kCurveSlots) throw TDravikException(Format(_("Ungültige Kurvennummer %d"), {QString::number(ch)}));
    return ch;
}

TFxOutcome FilterFunction(TDecodedSettings& s, int ch)
{
    const double rate = ResolvedNumber(s.FxArg[0]);
    const double f1 = ResolvedNumber(s.FxArg[1]);
    TFxOutcome out;
    if (s.FxFunction == TScopeFnc::BandPass) {
        const double f2 = ResolvedNumber(s.FxArg[2]);
        const int order = static_cast<int>(ResolvedNumber(s.FxOrder));
        out.label = QStringLiteral("BANDPASS");
        out.array = FuncBandPass(ch, f1, f2, rate, order);
        return out;
    }
    const int order = static_cast<int>(ResolvedNumber(s.FxOrder));
    const bool low = s.FxFunction == TScopeFnc::LowPass;
    out.label = low ? QStringLiteral("LOWPASS") : QStringLiteral("HIGHPASS");
    out.array = low ? FuncLowPass(ch, f1, rate, order) : FuncHighPass(ch, f1, rate, order);
    return out;
}

// The envelope comparison loads its file with the window's fault dialogs: a missing file offers
// only Cancel and ends the test, any other fault asks Cancel or Ignore. False: not loaded.
bool EnvelopeLoads(const QString& file)
{
    try {
        LoadHK(analysis::ScopeStore(), file);
        return true;
    } catch (const TEnvelopeFileMissing& e) {
        ScopeDialogs().ShowCancelError(e.Message());
        TestEnvironment().StopTest();
    } catch (const TDravikException& e) {
        ReportExecutionFault(EnvelopeLoadFaultText(file, e.Message()));
    }
    return false;
}

}  // namespace

TFxOutcome RunFunction(TDecodedSettings& s)
{
    const int ch = Channel(s.FxChannel);  // "1" for the phase shift, which names its curves itself
    const auto byteCh = static_cast<unsigned char>(ch);
    TFxOutcome out;
    switch (s.FxFunction) {
    case TScopeFnc::None: break;
    case TScopeFnc::Offset:
        out.label = QStringLiteral("OFFSET");
        out.number = KurvenOffset(ch);
        out.unit = YUnit(s);
        break;
    case TScopeFnc::Rms: {
        if (s.FxRmsOffset.isEmpty()) s.FxRmsOffset = QStringLiteral("0");
        const double offset = ResolvedNumber(s.FxRmsOffset);
        out.label = QStringLiteral("EFFEKTIVWERT");
        out.number = KurvenEffektivwert(ch, offset, static_cast<unsigned char>(StrToInt(s.FxArg[0])));
        out.unit = YUnit(s);
        break;
    }
    case TScopeFnc::Mid:
        out.label = QStringLiteral("MITTELWERT");
        out.number = KurvenMittelwert(ch);
        out.unit = YUnit(s);
        break;
    case TScopeFnc::Dist:
        out.label = QStringLiteral("KLIRRFAKTOR");
        out.number = Klirrfaktor(ch);
        out.unit = QStringLiteral("%");
        break;
    case TScopeFnc::Sinad: {
        analysis::TScopeSettings& measure = analysis::ScopeSettings();
        measure._Abtastrate = Resolve(s.FxSinadArg[0]);
        measure._Nutzsignal = Resolve(s.FxSinadArg[1]);
        measure._Bandbreite = Resolve(s.FxSinadArg[2]);
        measure._FFTWindow = static_cast<unsigned char>(s.FxSinadWindow);
        out.label = QStringLiteral("SINAD");
        out.number = Sinad(ch);
        out.unit = QStringLiteral("dB");
        break;
    }
    case TScopeFnc::TimeDiff:
    case TScopeFnc::Freq:
    case TScopeFnc::ImpulsCount:
    case TScopeFnc::DutyCycle: out = EdgeFunction(s, ch); break;
    case TScopeFnc::Peak: out = PeakFunction(s, ch); break;
    case TScopeFnc::PhaseShift: {
        const int count = StrToInt(Resolve(s.FxArg[2]));
        const int a = Channel(s.FxArg[0]);
        const int b = Channel(s.FxArg[1]);
        out.label = QStringLiteral("Phasenverschiebung");
        out.number = Phasenverschiebung(static_cast<unsigned char>(a), static_cast<unsigned char>(b), count);
        out.unit = QStringLiteral("°");
        out.channelLabel = s.FxArg[0] + QStringLiteral(" / ") + s.FxArg[1];
        break;
    }
    case TScopeFnc::Query: {
        const bool byX = s.FxArg[0] == QLatin1String("1");
        const double ref = ResolvedNumber(s.FxArg[1]);
        out.label = byX ? QStringLiteral("Abfrage X-WERT") : QStringLiteral("Abfrage Y-WERT");
        out.number = Query_XY(byteCh, byX, ref);
        out.unit = byX ? s.UnitTextX : s.UnitTextY;
        break;
    }
    case TScopeFnc::DiffCurve:
        if (s.FxArg[0].isEmpty()) s.FxArg[0] = QStringLiteral("0");
        out.label = QStringLiteral("DIFFERENZKURVE");
        out.array = Differenzkurve(byteCh, ResolvedNumber(s.FxArg[0])).a;
        out.arrayText = QStringLiteral("im Array:");
        break;
    case TScopeFnc::CurvePatch:
        out.label = QStringLiteral("KURVENKORREKTUR");
        KurvenKorrektur(byteCh, Resolve(s.FxArg[0]));
        break;
    case TScopeFnc::Envelope:
        out.label = QStringLiteral("Hüllkurvenvergleich");
        out.number = EnvelopeLoads(Resolve(s.FxArg[0])) && Huellkurvenvergleich(byteCh, s.FxArg[0]) ? 1 : 0;
        break;
    case TScopeFnc::LowPass:
    case TScopeFnc::BandPass:
    case TScopeFnc::HighPass: out = FilterFunction(s, ch); break;
    case TScopeFnc::Fft: {
        const int rate = StrToInt(Resolve(s.FxArg[0]));
        TMemArray spectrum = FastFourierTransformation(ch, rate);
        out.label = QStringLiteral("FFT");
        out.spectrum = true;
        out.spectrumSpacing = spectrum.rate;
        out.array = std::move(spectrum.a);
        break;
    }
    }
    if (out.channelLabel.isEmpty()) out.channelLabel = s.FxChannel;
    return out;
}

}  // namespace dv::scope
