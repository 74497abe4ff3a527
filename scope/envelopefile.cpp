#include "scope/envelopefile.h"

#include "framework/dvtools.h"
#include "framework/intconvert.h"
#include "framework/translate.h"
#include "framework/typeconversion.h"

#include <QByteArrayView>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

// The reader sees single-byte text (Unicode files are converted first): no conversion of its own.
#define SI_NO_CONVERSION
#define SI_IMPLEMENTATION  // the template bodies; the packaged library is built for another converter
#include <SimpleIni.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <vector>

namespace dv::scope {

using analysis::kLowerEnvelope;
using analysis::kUpperEnvelope;
using analysis::TCurveStore;

namespace {
struct TSection {
    int handle;
    const char* name;
};
// Written and read in this order.
constexpr TSection kSections[] = {{kUpperEnvelope, "UpperCurve"}, {kLowerEnvelope, "LowerCurve"}};
// A count beyond any drawn envelope means a damaged file, not millions of points at 0.

QString FloatText(double v, QChar decimalSeparator)
{
    QString s = DVFloatToStr(v);
    s.replace('.', decimalSeparator);
    return s;
}

// A value as the platform's profile reading returns it: trimmed, without the quotes around a
// quoted value.
QString ProfileText(const char* raw)
{
    QString value = QString::fromLatin1(raw).trimmed();
    const bool quoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
                        value.back() == value.front();
    return quoted ? value.mid(1, value.size() - 2) : value;
}

// The name of a section heading line ("[ name ]", leading blanks allowed), or nothing.
std::optional<QByteArray> HeadingName(QByteArrayView line)
{
    line = line.trimmed();
    if (!line.startsWith('[')) return std::nullopt;
    const qsizetype close = line.indexOf(']');
    if (close < 0) return std::nullopt;
    return line.sliced(1, close - 1).trimmed().toByteArray();
}

// The first section of that name, heading to the next heading: the platform's profile functions
// read only that one where the INI reader would merge all sections of the name.
QByteArray FirstSection(const QByteArray& text, const char* name)
{
    qsizetype start = -1;
    for (qsizetype pos = 0; pos < text.size();) {
        qsizetype end = pos;
        while (end < text.size() && text[end] != '\n' && text[end] != '\r') ++end;
        if (const std::optional<QByteArray> heading = HeadingName(QByteArrayView(text).sliced(pos, end - pos))) {
            if (start >= 0) return text.mid(start, pos - start);
            if (heading->compare(name, Qt::CaseInsensitive) == 0) start = pos;
        }
        pos = end + 1;
    }
    return start >= 0 ? text.mid(start) : QByteArray();
}

struct TCoordinate {
    char name;  // 'X' or 'Y'
    std::vector<double>& values;
    std::vector<bool>& seen;  // whose first key has been read
};

// The point index of a coordinate key ("XValue12" is point 12 of coordinate 'X'), as the lookup
// of key "XValue" i would find it: without case, the index in decimal without leading zeros.
std::optional<long> PointIndex(const char* key, char coordinate)
{
    const QByteArray k(key);
    if (k.size() < 7 || k.size() > 14 || std::toupper(static_cast<unsigned char>(k[0])) != coordinate ||
        k.mid(1, 5).compare("Value", Qt::CaseInsensitive) != 0) {
        return std::nullopt;
    }
    const QByteArray digits = k.mid(6);
    if (!std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; }) ||
        (digits.size() > 1 && digits[0] == '0')) {
        return std::nullopt;
    }
    return digits.toLong();
}

// A coordinate; unreadable text is 0. The largest double written with 15 significant digits
// (1.79769313486232E308) rounds up beyond the double range: it reads back as the largest double
// rather than as unreadable.
double Coordinate(const QString& text)
{
    if (const std::optional<double> v = analysis::ReadFloatP(text)) return *v;
    QString t = text.trimmed();
    if (!t.contains('.')) t.replace(',', '.');
    const QByteArray latin = t.toLatin1();
    char* end = nullptr;
    const long double wide = std::strtold(latin.constData(), &end);
    constexpr long double largestWritten = 1.79769313486232e308L;
    constexpr double largest = std::numeric_limits<double>::max();
    if (latin.isEmpty() || *end != '\0' || !(std::fabs(wide) <= largestWritten)) return 0.0;
    return std::copysign(largest, static_cast<double>(wide));
}

QByteArray SectionText(const TCurveStore& store, const TSection& section, QChar separator)
{
    const int n = store.CurveValuesCount(section.handle);
    QString text = QStringLiteral("[%1]\r\nValues=%2\r\n").arg(section.name).arg(n);
    for (int i = 0; i < n; ++i) {
        const analysis::TPoint p = store.GetValue(section.handle, i);
        text += QStringLiteral("XValue%1=%2\r\n").arg(i).arg(FloatText(p.x, separator));
        text += QStringLiteral("YValue%1=%2\r\n").arg(i).arg(FloatText(p.y, separator));
    }
    return text.toLatin1();
}
}  // namespace

TEnvelopeFileMissing::TEnvelopeFileMissing(const QString& fileName)
    : TDravikException(_("Scope-Plugin: Fehler beim Laden der Hüllkurvendatei !") + "\n" + fileName +
                       _(" existiert im agegebenen Pfad nicht !"))
{
}

QChar LocaleDecimalSeparator()
{
    const QString point = QLocale::system().decimalPoint();
    return point.isEmpty() ? QChar('.') : point.at(0);
}

void SaveHK(const TCurveStore& store, const QString& fileName, QChar decimalSeparator)
{
    if (QFile::exists(fileName) && !QFile::remove(fileName)) {
        throw TDravikException(
            Format(_("Die alte Datei %s kann nicht gelöscht werden"), {fileName}));
    }
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) throw TDravikException(file.errorString());
    for (std::size_t k = 0; k < std::size(kSections); ++k) {
        // Sections are separated by a blank line, as the platform's INI writer does.
        QByteArray text = k > 0 ? QByteArray("\r\n") : QByteArray();
        text += SectionText(store, kSections[k], decimalSeparator);
        if (file.write(text) != text.size()) throw TDravikException(file.errorString());
    }
    if (!file.flush()) throw TDravikException(file.errorString());
}

void LoadHK(TCurveStore& store, const QString& fileName)
{
    if (!QFileInfo::exists(fileName)) throw TEnvelopeFileMissing(fileName);
    // Read here rather than by the INI reader, which takes a folder or a device for a file of
    // unbounded size.
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly)) {
        throw TDravikException(Format(_("Die Datei %s kann nicht gelesen werden"), {fileName}));
    }
    const QByteArray data = AnsiBytes(file.readAll());
    for (const TSection& section : kSections) {
        store.Clear(section.handle);
        if (!QFileInfo::exists(fileName)) throw TFileNotFoundException(fileName);
        const QByteArray text = FirstSection(data, section.name);
        CSimpleIniA ini;  // keys and sections compare without case, as on the platform
        ini.SetMultiKey(true);
        if (ini.LoadData(text.constData(), static_cast<size_t>(text.size())) < 0) {
            throw TDravikException(Format(_("Die Datei %s kann nicht gelesen werden"), {fileName}));
        }
        // The runtime's integer reading: "$3" and "0x3" are hexadecimal, anything else that is no
        // 32-bit integer reads as the default.
        const long n = StrToIntDef(ProfileText(ini.GetValue(section.name, "Values", "")), -1);
        if (n > kMaxEnvelopePoints) {
            throw TDravikException(Format(_("Ungültige Punktzahl %s im Abschnitt %s"),
                                          {QString::number(n), QString::fromLatin1(section.name)}));
        }
        if (n <= 0) continue;
        // Points 0 .. n - 1, each coordinate from the first key of its name, 0 where the file has
        // none. One walk over the keys instead of two look-ups per point: a count far above the
        // keys (each missing point reads as 0) costs no more than the points themselves.
        std::vector<double> xs(static_cast<std::size_t>(n), 0.0), ys(xs);
        std::vector<bool> xSeen(xs.size()), ySeen(xs.size());
        if (const CSimpleIniA::TKeyVal* keys = ini.GetSection(section.name)) {
            // Keys of one name (without case) follow each other in file order.
            for (const auto& [key, value] : *keys) {
                for (const TCoordinate& c : {TCoordinate{'X', xs, xSeen}, TCoordinate{'Y', ys, ySeen}}) {
                    const std::optional<long> i = PointIndex(key.pItem, c.name);
                    if (!i || *i >= n || c.seen[static_cast<std::size_t>(*i)]) continue;
                    c.seen[static_cast<std::size_t>(*i)] = true;
                    c.values[static_cast<std::size_t>(*i)] = Coordinate(ProfileText(value));
                }
            }
        }
        store.Assign(section.handle, std::move(xs), std::move(ys));
    }
}

int GetHKToDelete(const TCurveStore& store, int envelope, double x)
{
    const auto xs = store.X(envelope);
    const int count = static_cast<int>(xs.size());
    int i = 0;
    while (i < count && x >= xs[static_cast<std::size_t>(i)]) ++i;
    if (i > 0 && i < count) {
        const double d1 = std::abs(xs[static_cast<std::size_t>(i)] - x);
        const double d0 = std::abs(xs[static_cast<std::size_t>(i - 1)] - x);
        if (d1 > d0) i = i - 1;
    }
    if (i == count) i = count - 1;  // beyond the last point, or no points at all
    return i;
}

QString EnvelopeSaveFaultText(const QString& fileName, const QString& fault)
{
    return _("Scope-Plugin: Fehler beim speichern der Hüllkurvendatei") + fileName + " !\n" + fault;
}

QString EnvelopeLoadFaultText(const QString& fileName, const QString& fault)
{
    return _("Scope-Plugin: Fehler beim Laden der Hüllkurvendatei") + fileName + " !\n" + fault;
}

}  // namespace dv::scope
