#include "framework/dvtools.h"

#include "framework/exceptions.h"
#include "framework/systemlog.h"
#include "framework/translate.h"

#include <QFileInfo>

#include <charconv>
#include <cmath>

namespace dv {

QString GetStrPart(const QString& startText, const QString& stopText, const QString& source, int index)
{
    qsizetype from = -1;
    for (int i = 0; i <= index; ++i) {
        from = source.indexOf(startText, from + 1);
        if (from < 0) return {};
    }
    const qsizetype begin = from + startText.size();
    const qsizetype end = source.indexOf(stopText, begin);
    if (end < 0) return {};
    return source.mid(begin, end - begin);
}

QString Segment(const QString& text, const QString& separator, int n)
{
    if (n < 1 || separator.isEmpty()) return n == 1 ? text : QString();
    const QStringList pieces = text.split(separator);
    return n <= pieces.size() ? pieces[n - 1] : QString();
}

int RPos(const QString& sub, const QString& text)
{
    if (sub.isEmpty()) return 0;
    return static_cast<int>(text.lastIndexOf(sub)) + 1;
}

QString StripQuotes(const QString& text)
{
    if (text.size() >= 2) {
        const QChar first = text.front();
        if ((first == '"' || first == '\'') && text.back() == first) return text.mid(1, text.size() - 2);
    }
    return text;
}

QString StripChar(const QString& text, QChar c)
{
    QString out = text;
    out.remove(c);
    return out;
}

int CountOfChar(const QString& what, const QString& text)
{
    if (what.isEmpty()) return 0;
    int count = 0;
    for (qsizetype at = text.indexOf(what); at >= 0; at = text.indexOf(what, at + what.size())) ++count;
    return count;
}

QString GetDefStr(const QString& text, const QString& def) { return text.trimmed().isEmpty() ? def : text; }

bool StrToBoolEx(const QString& text, bool def)
{
    const QString t = text.trimmed().toLower();
    static const QStringList yes{"true", "ja", "yes", "on", "wahr"};
    static const QStringList no{"false", "nein", "no", "off", "falsch"};
    if (yes.contains(t)) return true;
    if (no.contains(t)) return false;
    bool ok = false;
    const double n = t.toDouble(&ok);
    return ok ? n != 0.0 : def;
}

QString DVFloatToStr(long double x)
{
    if (std::isnan(x)) return QStringLiteral("NAN");
    if (std::isinf(x)) return x > 0 ? QStringLiteral("INF") : QStringLiteral("-INF");
    // to_chars never looks at the locale, unlike printf.
    char buf[64];
    const auto end = std::to_chars(buf, buf + sizeof buf, x, std::chars_format::general, 15).ptr;
    QString s = QString::fromLatin1(buf, end - buf);
    const qsizetype e = s.indexOf('e');
    if (e < 0) return s;
    // Exponent written as the runtime does: "1E20", "1.5E-5".
    return s.left(e) + 'E' + QString::number(s.mid(e + 1).toInt());
}

long double DVStrToFloat(const QString& text)
{
    const QByteArray bytes = text.trimmed().toLatin1();
    const char* first = bytes.constData();
    const char* last = first + bytes.size();
    if (first != last && *first == '+') ++first;  // from_chars takes no plus sign
    long double value = 0;
    if (first != last && !text.contains(',')) {
        const auto [ptr, ec] = std::from_chars(first, last, value);
        if (ec == std::errc() && ptr == last) return value;
    }
    throw TDVRuntimeException(Format(_("\"%s\" ist kein gültiger Gleitkommawert"), {text}));
}

QString KzP(const QString& text)
{
    QString out = text;
    out.replace(',', '.');
    return out;
}

QString IntToBin(std::uint64_t value, int digits)
{
    QString bits = QString::number(value, 2);
    if (bits.size() < digits) bits = QString(digits - bits.size(), '0') + bits;
    return bits;
}

std::int64_t BinToInt(const QString& text)
{
    const QString t = text.trimmed();
    if (t.isEmpty() || t.size() > 64) throw TDVRuntimeException(Format(_("\"%s\" ist keine Binärzahl"), {text}));
    std::uint64_t value = 0;
    for (QChar c : t) {
        if (c != '0' && c != '1') throw TDVRuntimeException(Format(_("\"%s\" ist keine Binärzahl"), {text}));
        value = (value << 1) | (c == '1' ? 1u : 0u);
    }
    return static_cast<std::int64_t>(value);
}

int InInterval(int low, int high, int value) { return value < low ? low : (value > high ? high : value); }

void DbgLog(const QString& format, const QStringList& args) { SystemLog.Debug(Format(format, args)); }

std::int64_t FileGetSize(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && info.isFile() ? info.size() : -1;
}

}  // namespace dv
