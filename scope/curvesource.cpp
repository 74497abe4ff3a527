#include "scope/curvesource.h"

#include "analysis/fftwspectrum.h"
#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/intconvert.h"
#include "framework/parser.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "image/currentimage.h"
#include "scope/curvefile.h"

namespace dv::scope {

namespace {

using analysis::StrToFloatP;

// The text after key up to the next "," (or the end).
QString Between(const QString& text, const QString& key)
{
    const qsizetype at = text.indexOf(key);
    if (at < 0) return {};
    const qsizetype from = at + key.size();
    const qsizetype comma = text.indexOf(',', from);
    return text.mid(from, comma < 0 ? -1 : comma - from);
}

// The text after key to the end.
QString After(const QString& text, const QString& key)
{
    const qsizetype at = text.indexOf(key);
    return at < 0 ? QString() : text.mid(at + key.size());
}

// Cuts the modifier starting at key off the end of text; the cut part is returned.
QString CutModifier(QString& text, const QString& key)
{
    const qsizetype at = text.indexOf(key);
    if (at < 0) return {};
    QString part = text.mid(at);
    text.truncate(at);
    return part;
}

void SplitPair(const QString& part, const QString& firstKey, const QString& secondKey, QString& first, QString& second)
{
    if (part.isEmpty()) return;
    const qsizetype split = part.indexOf(secondKey);
    first = part.mid(firstKey.size(), split < 0 ? -1 : split - firstKey.size());
    second = split < 0 ? QString() : part.mid(split + secondKey.size());
}

class TImageOutside {};

double Number(const QString& text) { return StrToFloatP(VarAccess().ResolveText(text)); }

// Element i of an array as a number; an element of another kind is read from its text.
double ElementNumber(const TArrayValue& array, int i)
{
    if (array.GetKindAt(i) == TValueKind::Number) return static_cast<double>(array.GetNumber(i));
    return StrToFloatP(array.GetText(i));
}

// The values of a variable: the elements of an array, else its one value. A text naming no
// variable must be a number; anything else is a misspelt name, which would plot as 0 unnoticed.
std::vector<double> VariableValues(const QString& name)
{
    if (TDVVariable* var = VarAccess().FindVariable(name.trimmed())) {
        if (const auto* array = dynamic_cast<const TArrayValue*>(&var->GetValue())) {
            std::vector<double> values(static_cast<std::size_t>(array->GetSize()));
            for (int i = 1; i <= array->GetSize(); ++i) values[static_cast<std::size_t>(i - 1)] = ElementNumber(*array, i);
            return values;
        }
        return {Number(name)};
    }
    const QString value = VarAccess().ResolveText(name);
    if (value != name) return {StrToFloatP(value)};
    if (const std::optional<double> number = analysis::ReadFloatP(name)) return {*number};
    throw TDVRuntimeException(Format(_("Die Variable \"%s\" ist nicht deklariert."), {name.trimmed()}));
}

const TArrayValue& ArrayVariable(const QString& name)
{
    TDVVariable* var = VarAccess().FindVariable(name.trimmed());
    if (!var) throw TDVRuntimeException(Format(_("Die Variable \"%s\" ist nicht deklariert."), {name}));
    const auto* array = dynamic_cast<const TArrayValue*>(&var->GetValue());
    if (!array) throw TDVRuntimeException(Format(_("Die Variable \"%s\" ist kein Array."), {name}));
    return *array;
}

// x = (i - 1) / rate for the samples i = 1..n; a rate of 0 gives x = i - 1.
std::vector<double> SampleTimes(std::size_t n, double rate)
{
    std::vector<double> x(n);
    for (std::size_t i = 0; i < n; ++i) x[i] = rate == 0 ? static_cast<double>(i) : static_cast<double>(i) / rate;
    return x;
}

// Told the number of samples of the curve as soon as it is known, before they are read.
using TSizeHint = std::function<void(std::size_t samples)>;

TCurvePoints ArrayPoints(const TCurveSource& s, const TSizeHint& hint)
{
    const TArrayValue& array = ArrayVariable(s.main);
    hint(static_cast<std::size_t>(array.GetSize()));
    TCurvePoints p;
    p.y.resize(static_cast<std::size_t>(array.GetSize()));
    for (int i = 1; i <= array.GetSize(); ++i) p.y[static_cast<std::size_t>(i - 1)] = ElementNumber(array, i);
    p.x = SampleTimes(p.y.size(), Number(s.second));
    return p;
}

TCurvePoints FilePoints(const TCurveSource& s, const TSizeHint& hint)
{
    QString path = StripQuotes(VarAccess().ResolveText(s.main).trimmed());
    if (TDVParser* parser = CurrentParser()) path = parser->GetEnvironment().ReplaceProjectPath(path);
    const QString code = VarAccess().ResolveText(s.second).trimmed();
    // The code is the separator's Windows-1252 code, which is its byte in the file.
    const int separator = code.isEmpty() ? ';' : StrToInt(code);
    if (separator < 1 || separator > 255) throw TDravikException(Format(_("Ungültiges Trennzeichen %s"), {code}));
    return ReadCurveFile(path, static_cast<char>(separator), hint);
}

TCurvePoints ImagePoints(const TCurveSource& s)
{
    const std::optional<std::int32_t> n = TryStrToInt(VarAccess().ResolveText(s.main));
    if (!n) throw TDravikException(Format(_("\"%s\" ist kein gültiger Integerwert"), {s.main}));
    const QImage image = CurrentImage::snapshot();
    const int length = s.row ? image.width() : image.height();
    const int across = s.row ? image.height() : image.width();
    if (image.isNull() || *n < 0 || *n >= across) throw TImageOutside();
    const int channel = s.channel == 'R' ? 0 : s.channel == 'G' ? 1 : 2;
    TCurvePoints p;
    p.y.resize(static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) {
        const uchar* line = image.constScanLine(s.row ? *n : i);
        p.y[static_cast<std::size_t>(i)] = line[(s.row ? i : *n) * 3 + channel];
    }
    p.x = SampleTimes(p.y.size(), Number(s.second));
    return p;
}

void ApplyModifiers(const TCurveSource& s, std::vector<double>& x, std::vector<double>& y)
{
    const double fx = s.factorX.trimmed().isEmpty() ? 1.0 : Number(s.factorX);
    const double fy = s.factorY.trimmed().isEmpty() ? 1.0 : Number(s.factorY);
    const double ox = s.offsetX.trimmed().isEmpty() ? 0.0 : Number(s.offsetX);
    const double oy = s.offsetY.trimmed().isEmpty() ? 0.0 : Number(s.offsetY);
    if (fx == 1 && ox == 0 && fy == 1 && oy == 0) return;
    for (double& v : x) v = v * fx + ox;
    for (double& v : y) v = v * fy + oy;
}

void Draw(analysis::TCurveStore& store, int handle, const TCurveSource& s, bool spectrumNext)
{
    // The spectrum's plan and buffers are made ready in the background while the curve loads.
    const TSizeHint hint = [spectrumNext](std::size_t samples) {
        if (spectrumNext) analysis::PrepareSpectrum(samples, analysis::ScopeSettings()._FFTWindow);
    };
    TCurvePoints p;
    switch (s.kind) {
    case TSourceKind::Empty: return;
    case TSourceKind::Recording: throw TDravikException(_("Keine Adx-Scopedaten vorhanden !"));
    case TSourceKind::File: p = FilePoints(s, hint); break;
    case TSourceKind::Array: p = ArrayPoints(s, hint); break;
    case TSourceKind::Image: p = ImagePoints(s); break;
    case TSourceKind::Point: {
        p.x = VariableValues(s.main);
        p.y = VariableValues(s.second);
        const std::size_t n = std::min(p.x.size(), p.y.size());
        hint(static_cast<std::size_t>(store.CurveValuesCount(handle)) + n);
        p.x.resize(n);
        p.y.resize(n);
        ApplyModifiers(s, p.x, p.y);
        for (std::size_t i = 0; i < n; ++i) store.Append(handle, p.x[i], p.y[i]);
        return;
    }
    }
    ApplyModifiers(s, p.x, p.y);
    hint(p.y.size());  // rows that held no numbers may have made it fewer
    store.Assign(handle, std::move(p.x), std::move(p.y));
}

}  // namespace

TCurveSource ParseCurveSource(const QString& text)
{
    TCurveSource s;
    QString rest = text;
    const QString name = CutModifier(rest, QStringLiteral(",NAME:"));
    if (!name.isEmpty()) s.name = name.mid(6);
    SplitPair(CutModifier(rest, QStringLiteral(",FAKX:")), QStringLiteral(",FAKX:"), QStringLiteral(":FAKY:"), s.factorX, s.factorY);
    SplitPair(CutModifier(rest, QStringLiteral(",OFX:")), QStringLiteral(",OFX:"), QStringLiteral(":OFY:"), s.offsetX, s.offsetY);
    if (rest.contains(QLatin1String("FILE:"))) {
        s.kind = TSourceKind::File;
        const qsizetype sep = rest.indexOf(QLatin1String(",SEP:"));
        const qsizetype from = rest.indexOf(QLatin1String("FILE:")) + 5;
        s.main = rest.mid(from, sep < 0 ? -1 : sep - from);
        s.second = After(rest, QStringLiteral(",SEP:"));
    } else if (rest.contains(QLatin1String("ARRAY:"))) {
        s.kind = TSourceKind::Array;
        s.main = Between(rest, QStringLiteral("ARRAY:"));
        s.second = After(rest, QStringLiteral(",FREQ:"));
    } else if (rest.contains(QLatin1String("X:"))) {
        s.kind = TSourceKind::Point;
        s.main = Between(rest, QStringLiteral("X:"));
        s.second = After(rest, QStringLiteral(",Y:"));
    } else if (rest.contains(QLatin1String("ADX_DATA:"))) {
        s.kind = TSourceKind::Recording;
    } else if (rest.contains(QLatin1String("IMAGE-"))) {
        s.kind = TSourceKind::Image;
        s.channel = rest.contains(QLatin1String("-R-")) ? 'R' : rest.contains(QLatin1String("-G-")) ? 'G' : 'B';
        s.row = rest.contains(QLatin1String("-L:"));
        s.main = Between(rest, QStringLiteral(":"));
        s.second = After(rest, QStringLiteral(",FREQ:"));
    }
    // A form without its main field leaves the slot unused.
    if (s.kind != TSourceKind::Recording && s.main.trimmed().isEmpty()) s.kind = TSourceKind::Empty;
    if (s.kind == TSourceKind::Point && s.second.trimmed().isEmpty()) s.kind = TSourceKind::Empty;
    return s;
}

void DrawCurve(analysis::TCurveStore& store, int handle, const QString& text, QString& name, bool spectrumNext)
{
    const TCurveSource source = ParseCurveSource(text);
    try {
        Draw(store, handle, source, spectrumNext);
    } catch (const TImageOutside&) {
        throw TDravikException(_("Bildposition außerhalb des Bildes."));
    } catch (const TDravikException& e) {
        if (source.kind == TSourceKind::Recording) throw;
        throw TDravikException(_("Fehler bei der Kurvendarstellung !") + '\n' + e.Message());
    }
    if (!source.name.isEmpty()) name = source.name;
}

}  // namespace dv::scope
