#include "commands/script/scriptlines.h"

#include "framework/catalogue.h"

#include <algorithm>

namespace dv {

QString DialogOf(const char* commandClass)
{
    const TCatalogueRow* row = FindCommandClass(QLatin1String(commandClass));
    return row ? QString::fromLatin1(row->dialogClass) : QString();
}

bool IsNewLine(const QString& line) { return line.isEmpty(); }

QString Cut(const QString& line, qsizetype from, qsizetype to)
{
    from = std::clamp<qsizetype>(from, 0, line.size());
    to = std::clamp<qsizetype>(to, 0, line.size());
    return to > from ? line.mid(from, to - from) : QString();
}

QString Between(const QString& line, QLatin1String start, QLatin1String stop)
{
    const qsizetype at = line.indexOf(start, 0, Qt::CaseInsensitive);
    if (at < 0) return {};
    const qsizetype from = at + start.size();
    const qsizetype to = line.indexOf(stop, from, Qt::CaseInsensitive);
    if (to < 0) return {};
    return Cut(line, from, to).trimmed();
}

TTokenType FirstToken(const QString& line)
{
    TScanner scanner;
    scanner.SetScript(line, 0);
    return scanner.LookAhead().type;
}

}  // namespace dv
