#include "scope/scopefxparams.h"

#include "framework/intconvert.h"
#include "framework/translate.h"

namespace dv::scope {

namespace {

using enum TFxSetting;

QStringList Translated(std::initializer_list<const char*> texts)
{
    QStringList out;
    for (const char* t : texts) out << _(t);
    return out;
}

QStringList Numbers(int from, int to)
{
    QStringList out;
    for (int i = from; i <= to; ++i) out << QString::number(i);
    return out;
}

TFxEditField EditField(const char* label, TFxSetting setting, const char* defaultText = "")
{
    return {_(label), setting, QString::fromUtf8(defaultText)};
}

// The edges of the time-difference family: Y1 and Y2, the edge of each, and for the time
// difference itself which edge counts.
TFxFields EdgeFields(bool withEdgeNumber)
{
    TFxFields f{{EditField("Y1", Arg1), EditField("Y2", Arg2)},
                {{_("Flanke Y1"), Translated({"Positiv", "Negativ", "Positiv / Kurvenanfang", "Negativ / Kurvenanfang"}), Arg3, 0},
                 {_("Flanke Y2"), Translated({"Positiv", "Negativ"}), Arg4, 0}}};
    if (withEdgeNumber) f.choices.push_back({_("Benutze Flanke"), Numbers(1, 10), Arg5, 0});
    return f;
}

TFxFields FilterFields(bool band)
{
    TFxFields f{{EditField("Samplerate [Hz]", Arg1)}, {}};
    if (band) {
        f.edits.push_back(EditField("untere Grenzfrequenz [Hz]", Arg2));
        f.edits.push_back(EditField("obere Grenzfrequenz [Hz]", Arg3));
    } else {
        f.edits.push_back(EditField("Grenzfrequenz [Hz]", Arg2));
    }
    f.edits.push_back(EditField("Filterordnung [1-8]", Order, "1"));
    return f;
}

QString SettingText(const TDecodedSettings& s, TFxSetting setting)
{
    switch (setting) {
    case Arg1: return s.FxArg[0];
    case Arg2: return s.FxArg[1];
    case Arg3: return s.FxArg[2];
    case Arg4: return s.FxArg[3];
    case Arg5: return s.FxArg[4];
    case Order: return s.FxOrder;
    case RmsOffset: return s.FxRmsOffset;
    case Sinad1: return s.FxSinadArg[0];
    case Sinad2: return s.FxSinadArg[1];
    case Sinad3: return s.FxSinadArg[2];
    case SinadWindow: return QString::number(s.FxSinadWindow);
    case Channel: return s.FxChannel;
    }
    return {};
}

void SetSettingText(TDecodedSettings& s, TFxSetting setting, const QString& text)
{
    switch (setting) {
    case Arg1: s.FxArg[0] = text; break;
    case Arg2: s.FxArg[1] = text; break;
    case Arg3: s.FxArg[2] = text; break;
    case Arg4: s.FxArg[3] = text; break;
    case Arg5: s.FxArg[4] = text; break;
    case Order: s.FxOrder = text; break;
    case RmsOffset: s.FxRmsOffset = text; break;
    case Sinad1: s.FxSinadArg[0] = text; break;
    case Sinad2: s.FxSinadArg[1] = text; break;
    case Sinad3: s.FxSinadArg[2] = text; break;
    case SinadWindow: s.FxSinadWindow = text.toInt(); break;
    case Channel: s.FxChannel = text; break;
    }
}

}  // namespace

TFxFields FxFields(TScopeFnc function)
{
    const QStringList curves = Numbers(1, 4);
    switch (function) {
    case TScopeFnc::Rms:
        return {{EditField("Offset:", RmsOffset)}, {{_("Nulldurchgang:"), Translated({"Ignorieren", "Berücksichtigen"}), Arg1, 1}}};
    case TScopeFnc::Sinad:
        return {{EditField("Abtastrate (Hz)", Sinad1), EditField("Nutzsignal (Hz)", Sinad2), EditField("Bandbreite (Hz)", Sinad3)},
                {{_("FFT-Fenster"), {"Square", "Parzen", "Hanning", "Welch", "Hamming"}, SinadWindow, 0}}};
    case TScopeFnc::TimeDiff: return EdgeFields(true);
    case TScopeFnc::Freq:
    case TScopeFnc::ImpulsCount:
    case TScopeFnc::DutyCycle: return EdgeFields(false);
    case TScopeFnc::Peak:
        return {{EditField("EpsilonX", Arg3), EditField("EpsilonY", Arg4)},
                {{_("Peak"), Translated({"Peak Max", "Peak Min", "Peak Min-Max"}), Arg1, 1},
                 {_("lokale Extrema"), Translated({"Ohne", "Mit"}), Arg2, 1}}};
    case TScopeFnc::PhaseShift:
        return {{EditField("Anzahl d.Kurvenzüge", Arg3)}, {{_("Kurve 1"), curves, Arg1, 1}, {_("Kurve 2"), curves, Arg2, 1}}};
    case TScopeFnc::Query:
        return {{EditField("Bezugswert:", Arg2)}, {{_("Suche nach:"), {"X", "Y"}, Arg1, 1}}};
    case TScopeFnc::DiffCurve: return {{EditField("Skalierung:", Arg1)}, {}};
    case TScopeFnc::CurvePatch: return {{EditField("Korrekturdatei:", Arg1)}, {{_("Kurve:"), curves, Channel, 1}}};
    case TScopeFnc::Envelope: return {{EditField("Hüllkurvendatei:", Arg1)}, {{_("Kurve:"), curves, Channel, 1}}};
    case TScopeFnc::LowPass:
    case TScopeFnc::HighPass: return FilterFields(false);
    case TScopeFnc::BandPass: return FilterFields(true);
    case TScopeFnc::Fft: return {{EditField("Samplerate [Hz]", Arg1)}, {}};
    case TScopeFnc::None:
    case TScopeFnc::Offset:
    case TScopeFnc::Mid:
    case TScopeFnc::Dist: break;
    }
    return {};
}

TFxFieldValues DefaultFxFieldValues(TScopeFnc function)
{
    const TFxFields fields = FxFields(function);
    TFxFieldValues v;
    for (std::size_t i = 0; i < fields.edits.size(); ++i) v.edits[i] = fields.edits[i].defaultText;
    return v;
}

TFxFieldValues FxFieldValues(const TDecodedSettings& s)
{
    const TFxFields fields = FxFields(s.FxFunction);
    TFxFieldValues v;
    for (std::size_t i = 0; i < fields.edits.size(); ++i) v.edits[i] = SettingText(s, fields.edits[i].setting);
    for (std::size_t i = 0; i < fields.choices.size(); ++i) {
        const TFxChoiceField& c = fields.choices[i];
        const std::optional<std::int32_t> number = TryStrToInt(SettingText(s, c.setting));
        const int index = number ? *number - c.base : 0;
        v.choices[i] = index >= 0 && index < c.items.size() ? index : 0;
    }
    return v;
}

void StoreFxFieldValues(const TFxFieldValues& values, TDecodedSettings& s)
{
    const TFxFields fields = FxFields(s.FxFunction);
    for (std::size_t i = 0; i < fields.edits.size(); ++i) SetSettingText(s, fields.edits[i].setting, values.edits[i]);
    for (std::size_t i = 0; i < fields.choices.size(); ++i) {
        const TFxChoiceField& c = fields.choices[i];
        SetSettingText(s, c.setting, QString::number(values.choices[i] + c.base));
    }
}

}  // namespace dv::scope
