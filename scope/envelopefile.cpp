#include "scope/envelopefile.h"

#include "framework/dvtools.h"
#include "framework/intconvert.h"
#include "framework/translate.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

// Envelope files are plain ASCII: no character set conversion needed.
#define SI_NO_CONVERSION
#define SI_IMPLEMENTATION  // the template bodies; the packaged library is built for another converter
#include <SimpleIni.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

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
// A count beyond any drawn envelope means a damaged file, not millions of points at 0. So does a
// count above the file's size in bytes: a point takes some twenty bytes, and a few missing keys
// (read as 0) never come near it; the bound keeps the points within a small multiple of the file.
constexpr long kMaxPoints = 10'000'000;

QString FloatText(double v, QChar decimalSeparator)
{
    QString s = DVFloatToStr(v);
    s.replace('.', decimalSeparator);
    return s;
}

// A value as the platform's profile reading returns it: the first of duplicate keys (SimpleIni
// in multi-key mode keeps them all, in file order), without the quotes around a quoted value.
QString ProfileValue(const CSimpleIniA& ini, const char* section, const char* key)
{
    QString value = QString::fromLatin1(ini.GetValue(section, key, "")).trimmed();
    const bool quoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
                        value.back() == value.front();
    return quoted ? value.mid(1, value.size() - 2) : value;
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
    const QByteArray data = file.readAll();
    for (const TSection& section : kSections) {
        store.Clear(section.handle);
        if (!QFileInfo::exists(fileName)) throw TFileNotFoundException(fileName);
        CSimpleIniA ini;  // keys and sections compare without case, as on the platform
        ini.SetMultiKey(true);
        if (ini.LoadData(data.constData(), static_cast<size_t>(data.size())) < 0) {
            throw TDravikException(Format(_("Die Datei %s kann nicht gelesen werden"), {fileName}));
        }
        // The runtime's integer reading: "$3" and "0x3" are hexadecimal, anything else that is no
        // 32-bit integer reads as the default.
        const long n = StrToIntDef(ProfileValue(ini, section.name, "Values"), -1);
        if (n > kMaxPoints || n > data.size()) {
            throw TDravikException(Format(_("Ungültige Punktzahl %s im Abschnitt %s"),
                                          {QString::number(n), QString::fromLatin1(section.name)}));
        }
        for (long i = 0; i < n; ++i) {
            const QByteArray xKey = "XValue" + QByteArray::number(static_cast<qlonglong>(i));
            const QByteArray yKey = "YValue" + QByteArray::number(static_cast<qlonglong>(i));
            // A missing or unreadable coordinate reads as 0.
            const double x = Coordinate(ProfileValue(ini, section.name, xKey.constData()));
            const double y = Coordinate(ProfileValue(ini, section.name, yKey.constData()));
            store.Append(section.handle, x, y);
        }
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
