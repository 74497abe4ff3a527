#include "framework/olderline.h"

#include <QRegularExpression>

namespace dv {

bool BeginsWithCall(const QString& line, const QStringList& names)
{
    static const QRegularExpression call(QStringLiteral("^\\s*(\\w+)\\s*\\("));
    const QRegularExpressionMatch m = call.match(line);
    return m.hasMatch() && names.contains(m.captured(1), Qt::CaseInsensitive);
}

bool IsPlainCall(const QString& line, const QString& name)
{
    static const QRegularExpression closed(QStringLiteral("\\)\\s*;?\\s*$"));
    const QString outside = OutsideStrings(line);
    return BeginsWithCall(line, {name}) && closed.match(outside).hasMatch() && !outside.contains(QLatin1String(":="));
}

QString OutsideStrings(const QString& line)
{
    QString out = line;
    bool quoted = false;
    for (QChar& c : out) {
        if (c == '"') {
            quoted = !quoted;
        } else if (quoted) {
            c = ' ';
        }
    }
    return out;
}

bool ContainsAny(const QString& text, std::initializer_list<const char*> markers, Qt::CaseSensitivity cs)
{
    for (const char* m : markers) {
        if (text.contains(QLatin1String(m), cs)) return true;
    }
    return false;
}

}  // namespace dv
