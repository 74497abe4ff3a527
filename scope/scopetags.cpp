#include "scope/scopetags.h"

#include "framework/intconvert.h"
#include "framework/translate.h"

#include <cmath>
#include <span>

namespace dv::scope {

namespace {

// Where one field of an "[FX:" tag goes; the keyword itself is field 1.
enum class TField { Channel, Arg1, Arg2, Arg3, Arg4, Arg5, Order, RmsOffset, OfsWord, Sinad1, Sinad2, Sinad3, SinadWindow, Unread };

// Fields 2, 3, ... of a tag in written order.
class TFieldList {
public:
    constexpr TFieldList(std::initializer_list<TField> fields) : count_(fields.size())
    {
        std::size_t i = 0;
        for (TField f : fields) fields_[i++] = f;
    }
    const TField* begin() const { return fields_.data(); }
    const TField* end() const { return fields_.data() + count_; }

private:
    std::array<TField, 6> fields_{};
    std::size_t count_;
};

struct TFxRow {
    const char* keyword;  // without its colon
    TScopeFnc function;
    TFieldList fields;
};

using enum TField;
// In the order the keywords are tested: the first one found in the tag wins.
const TFxRow kFxRows[] = {
    {"OFFSET", TScopeFnc::Offset, {Channel}},
    {"RMS", TScopeFnc::Rms, {Channel, OfsWord, RmsOffset, Arg1}},
    {"MID", TScopeFnc::Mid, {Channel}},
    {"DIST", TScopeFnc::Dist, {Channel}},
    {"SINAD", TScopeFnc::Sinad, {Channel, Sinad1, Sinad2, Sinad3, SinadWindow}},
    {"TIMEDIFF", TScopeFnc::TimeDiff, {Channel, Arg1, Arg2, Arg3, Arg4, Arg5}},
    {"PHASESHIFT", TScopeFnc::PhaseShift, {Arg1, Arg2, Arg3}},
    {"PEAK", TScopeFnc::Peak, {Channel, Arg1, Arg2, Arg3, Arg4}},
    {"QUERY", TScopeFnc::Query, {Channel, Arg1, Arg2}},
    {"DIFFCUR", TScopeFnc::DiffCurve, {Channel, Arg1, Unread}},
    {"CURVEPATCH", TScopeFnc::CurvePatch, {Channel, Arg1}},
    {"ENVELOPE", TScopeFnc::Envelope, {Channel}},
    {"LOWPASS", TScopeFnc::LowPass, {Arg1, Arg2, Order, Channel}},
    {"BANDPASS", TScopeFnc::BandPass, {Arg1, Arg2, Arg3, Order, Channel}},
    {"HIGHPASS", TScopeFnc::HighPass, {Arg1, Arg2, Order, Channel}},
    {"FFT", TScopeFnc::Fft, {Arg1, Channel}},
    {"FREQ", TScopeFnc::Freq, {Channel, Arg1, Arg2, Arg3, Arg4}},
    {"IMPULSCOUNT", TScopeFnc::ImpulsCount, {Channel, Arg1, Arg2, Arg3, Arg4}},
    {"DUTYCYCLE", TScopeFnc::DutyCycle, {Channel, Arg1, Arg2, Arg3, Arg4}},
};

const TFxRow* RowOf(TScopeFnc function)
{
    for (const TFxRow& row : kFxRows) {
        if (row.function == function) return &row;
    }
    return nullptr;
}

template <class Settings>
auto* FieldText(Settings& s, TField field)
{
    switch (field) {
    case Channel: return &s.FxChannel;
    case Arg1: return &s.FxArg[0];
    case Arg2: return &s.FxArg[1];
    case Arg3: return &s.FxArg[2];
    case Arg4: return &s.FxArg[3];
    case Arg5: return &s.FxArg[4];
    case Order: return &s.FxOrder;
    case RmsOffset: return &s.FxRmsOffset;
    case Sinad1: return &s.FxSinadArg[0];
    case Sinad2: return &s.FxSinadArg[1];
    case Sinad3: return &s.FxSinadArg[2];
    case OfsWord:
    case SinadWindow:
    case Unread: break;
    }
    return static_cast<decltype(&s.FxChannel)>(nullptr);
}

[[noreturn]] void Fault() { throw TScopeDecodeFault(_("Scope-Plugin: Fehler bei der Befehlsumsetzung !")); }

int IntegerField(const QString& text)
{
    const std::optional<std::int32_t> value = TryStrToInt(text);
    if (!value) Fault();
    return *value;
}

double NumberField(const QString& text)
{
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value)) Fault();
    return value;
}

void DecodeFunction(const QString& command, TDecodedSettings& s)
{
    const QString fx = GetStrPart(QStringLiteral("[FX:"), QStringLiteral("]"), command, 0);
    const TFxRow* row = nullptr;
    for (const TFxRow& r : kFxRows) {
        if (fx.contains(QLatin1String(r.keyword) + ':')) {
            row = &r;
            break;
        }
    }
    if (!row) return;
    s.FxFunction = row->function;
    int position = 2;
    for (TField field : row->fields) {
        const QString text = Segment(fx, QStringLiteral(":"), position++);
        if (field == Channel) IntegerField(text);
        if (field == SinadWindow) s.FxSinadWindow = IntegerField(text);
        if (QString* target = FieldText(s, field)) *target = text;
    }
    switch (row->function) {
    case TScopeFnc::Rms:
        if (s.FxArg[0].isEmpty()) s.FxArg[0] = QStringLiteral("1");
        break;
    case TScopeFnc::PhaseShift:
        if (s.FxArg[2].isEmpty()) s.FxArg[2] = QStringLiteral("1");
        break;
    case TScopeFnc::TimeDiff:
        if (fx.count(':') < 6) s.FxArg[4] = QStringLiteral("0");
        break;
    case TScopeFnc::Freq:
    case TScopeFnc::ImpulsCount:
    case TScopeFnc::DutyCycle: s.FxArg[4] = QStringLiteral("0"); break;
    case TScopeFnc::Envelope:
        s.FxArg[0] = GetStrPart(QStringLiteral(",[FILE:"), QStringLiteral("]"), command, 0);
        break;
    default: break;
    }
}

void DecodeColors(const QString& special, TDecodedSettings& s)
{
    const QString tag = GetStrPart(QStringLiteral("[SETCOL:"), QStringLiteral("]"), special, 0);
    for (int i = 0; i < kColorCount; ++i) {
        const QString field = Segment(tag, QStringLiteral(":"), i + 1);
        s.ColorValues[static_cast<std::size_t>(i)] = IntegerField('$' + field);
        s.ColorFields[static_cast<std::size_t>(i)] = field;
    }
    s.UseColors = true;
}

void DecodeScaling(const QString& special, TDecodedSettings& s)
{
    const QString tag = GetStrPart(QStringLiteral("[SETSCALE:"), QStringLiteral("]"), special, 0);
    auto field = [&](int n) { return Segment(tag, QStringLiteral(":"), n); };
    IntegerField(field(1));
    s.ScaleFields[0] = field(1);
    IntegerField(field(2));
    s.ScaleFields[1] = field(2);
    s.ScaleFields[2] = field(3);
    s.ScaleFields[3] = field(4);
    s.ZeroPosX = field(5).isEmpty() ? 0.0 : NumberField(field(5)) / 1086;
    s.ZeroPosY = field(6).isEmpty() ? 0.5 : NumberField(field(6)) / 540;
    s.UseScaling = true;
}

QString Tag(const QString& command, const QString& start) { return GetStrPart(start, QStringLiteral("]"), command, 0); }

QString SixHexDigits(int value) { return QStringLiteral("%1").arg(static_cast<unsigned>(value) & 0xFFFFFFu, 6, 16, QChar('0')).toUpper(); }

QString FunctionTag(const TDecodedSettings& s)
{
    const TFxRow* row = RowOf(s.FxFunction);
    if (!row) return {};
    QString tag = QStringLiteral("[FX:") + QLatin1String(row->keyword);
    for (TField field : row->fields) {
        tag += ':';
        if (field == OfsWord) tag += QStringLiteral("OFS");
        if (field == SinadWindow) tag += QString::number(s.FxSinadWindow);
        if (const QString* text = FieldText(s, field)) tag += *text;
    }
    tag += ']';
    if (s.FxFunction == TScopeFnc::Envelope) tag += QStringLiteral(",[FILE:") + s.FxArg[0] + ']';
    // The FFT tag is written without the separator that follows every other tag.
    return s.FxFunction == TScopeFnc::Fft ? tag : tag + ',';
}

}  // namespace

QString GetStrPart(const QString& startTag, const QString& endTag, const QString& text, int skip)
{
    QString rest = text;
    for (int i = 1; i < skip; ++i) {
        const qsizetype end = rest.indexOf(endTag);
        if (end < 0) return {};
        rest.remove(0, end + 1);
    }
    const qsizetype start = rest.indexOf(startTag);
    if (start < 0) return {};
    const qsizetype from = start + startTag.size();
    const qsizetype end = rest.indexOf(endTag, from);
    if (end < 0) return {};
    return rest.mid(from, end - from);
}

QString Segment(const QString& text, const QString& delimiter, int n)
{
    // "0" as a delimiter would cut numbers apart; it is swapped for a text that never occurs.
    const QString separator = delimiter == QLatin1String("0") ? QStringLiteral("ägläödflg#dl") : delimiter;
    if (separator.isEmpty() || !text.contains(separator)) return text;
    const QStringList fields = text.split(separator);
    const int index = std::min<int>(std::max(n, 1), static_cast<int>(fields.size()));
    return fields[index - 1];
}

void DecodeTags(const QString& command, const QString& special, TDecodedSettings& s)
{
    s.ResetForDecode();
    s.ClearData = command.contains(QLatin1String("[CLR]"));
    s.KeepScope = command.contains(QLatin1String("[KEEP]"));
    s.HideScope = command.contains(QLatin1String("[HIDE]"));
    s.PrefixMode = command.contains(QLatin1String("[PREFIX]"));
    s.AutoScale = command.contains(QLatin1String("[AUTO]"));
    for (int slot = 0; slot < kCurveSlots; ++slot) {
        s.CurveSource[static_cast<std::size_t>(slot)] = Tag(command, QStringLiteral("%1:[").arg(slot + 1));
    }
    if (command.contains(QLatin1String("[FX:"))) {
        DecodeFunction(command, s);
        s.ResultVar = Tag(command, QStringLiteral("[OUT:"));
        const QString clip = Tag(command, QStringLiteral("[CLIP:"));
        s.ClipStart = Segment(clip, QStringLiteral(":"), 1);
        s.ClipStop = Segment(clip, QStringLiteral(":"), 2);
    }
    s.WaitEnabled = command.contains(QLatin1String("[WAIT"));
    s.WaitVar = Tag(command, QStringLiteral("[WAIT:"));
    if (command.contains(QLatin1String("[TX:")) || command.contains(QLatin1String("[TY:"))) {
        s.UnitTextX = Tag(command, QStringLiteral("[TX:"));
        s.UnitTextY = Tag(command, QStringLiteral("[TY:"));
    }
    if (special.isEmpty()) return;
    if (special.contains(QLatin1String("[SETCOL:"))) DecodeColors(special, s);
    if (special.contains(QLatin1String("[SETSCALE:"))) DecodeScaling(special, s);
}

TScopeScript WriteScript(const TDecodedSettings& s)
{
    QString c = QStringLiteral("Scope(");
    auto add = [&c](bool on, const QString& tag) {
        if (on) c += tag + ',';
    };
    add(s.UseScaling, QStringLiteral("[SETSCALE]"));
    add(s.UseColors, QStringLiteral("[SETCOLOR]"));
    add(s.HideScope, QStringLiteral("[HIDE]"));
    add(s.KeepScope, QStringLiteral("[KEEP]"));
    add(s.ClearData, QStringLiteral("[CLR]"));
    add(s.AutoScale, QStringLiteral("[AUTO]"));
    add(s.PrefixMode, QStringLiteral("[PREFIX]"));
    for (int slot = 0; slot < kCurveSlots; ++slot) {
        const QString& source = s.CurveSource[static_cast<std::size_t>(slot)];
        add(!source.isEmpty(), QStringLiteral("%1:[%2]").arg(slot + 1).arg(source));
    }
    c += FunctionTag(s);
    add(true, QStringLiteral("[OUT:") + s.ResultVar + ']');
    add(!s.ClipStart.isEmpty() || !s.ClipStop.isEmpty(), QStringLiteral("[CLIP:") + s.ClipStart + ':' + s.ClipStop + ']');
    if (s.WaitEnabled) add(true, s.WaitVar.isEmpty() ? QStringLiteral("[WAIT]") : QStringLiteral("[WAIT:") + s.WaitVar + ']');
    add(!s.UnitTextX.isEmpty(), QStringLiteral("[TX:") + s.UnitTextX + ']');
    add(!s.UnitTextY.isEmpty(), QStringLiteral("[TY:") + s.UnitTextY + ']');
    if (c.endsWith(',')) c.chop(1);
    c += QStringLiteral(");");

    QString special;
    if (s.UseColors) {
        QStringList colors;
        for (int value : s.ColorValues) colors << SixHexDigits(value);
        special += QStringLiteral("[SETCOL:") + colors.join(':') + ']';
    }
    if (s.UseScaling) {
        special += QStringLiteral("[SETSCALE:%1:%2:0:0:%3:%4]")
                       .arg(s.ScaleFields[0], s.ScaleFields[1])
                       .arg(std::lround(s.ZeroPosX * 1086))
                       .arg(std::lround(s.ZeroPosY * 540));
    }
    return {c, special};
}

QString FunctionKeyword(TScopeFnc function)
{
    const TFxRow* row = RowOf(function);
    return row ? QLatin1String(row->keyword) : QString();
}

}  // namespace dv::scope
