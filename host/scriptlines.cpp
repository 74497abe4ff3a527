#include "host/scriptlines.h"

#include "framework/exceptions.h"
#include "framework/scanner.h"
#include "framework/signature.h"
#include "host/program.h"

#include <QRegularExpression>

namespace dv::host {

qsizetype PrefixLength(const QString& line)
{
    static const QRegularExpression prefix(QStringLiteral("^\\s*(\\d+:(?!=))?\\s*"));
    return prefix.match(line).capturedLength();
}

TLineParts SplitLine(const QString& line)
{
    TLineParts parts;
    QString body = line;
    if (body.endsWith('\r')) {
        parts.cr = QStringLiteral("\r");
        body.chop(1);
    }
    const qsizetype prefix = PrefixLength(body);
    parts.prefix = body.left(prefix);
    body = body.mid(prefix);
    qsizetype end = body.size();
    bool quoted = false;
    int depth = 0;
    for (qsizetype i = 0; i + 1 < body.size(); ++i) {
        const QChar c = body[i];
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        const bool block = c == '(' && body[i + 1] == '*';
        if (!block && (c == '(' || c == '[' || c == '{')) ++depth;
        if (c == ')' || c == ']' || c == '}') --depth;
        if (!block && (c != '/' || body[i + 1] != '/')) continue;
        qsizetype last = i;
        while (last > 0 && body[last - 1].isSpace()) --last;
        const bool complete = last > 0 && (body[last - 1] == ';' || body[last - 1] == ')');
        if (complete || (!block && depth <= 0 && last < i)) {
            end = i;
            break;
        }
    }
    while (end > 0 && body[end - 1].isSpace()) --end;
    parts.comment = body.mid(end);
    body.truncate(end);
    parts.statement = body;
    return parts;
}

TLineState ScanLine(const QString& line, TLineState state)
{
    bool quoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        const QChar next = i + 1 < line.size() ? line[i + 1] : QChar();
        if (state.inComment) {
            if (c == '*' && next == ')') {
                state.inComment = false;
                ++i;
            }
            continue;
        }
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == '/' && next == '/') break;
        if (c == '(' && next == '*') {
            state.inComment = true;
            ++i;
        } else if (c == '{') {
            // A printed array element "{..}" is one token that ends on its line.
            while (i + 1 < line.size() && line[i + 1] != '}') ++i;
        } else if (c == '(' || c == '[') {
            ++state.depth;
        } else if ((c == ')' || c == ']') && state.depth > 0) {
            --state.depth;
        }
    }
    return state;
}

namespace {

TValueKind KindOfType(const QString& typeText)
{
    try {
        TScanner type(typeText);
        return ParseTypeName(type).kind;
    } catch (const TDravikException&) {
        return TValueKind::Misc;  // an unknown type: the name is still declared
    }
}

}  // namespace

TScriptNames ScriptNames(const QStringList& lines)
{
    static const QRegularExpression var(QStringLiteral("^\\s*(?:\\d+:)?\\s*var\\s+([\\w\\s,]+):([^=;/]*)"),
                                        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression procedure(QStringLiteral("^\\s*(?:\\d+:)?\\s*(procedure\\b.*)$"),
                                              QRegularExpression::CaseInsensitiveOption);
    TScriptNames names;
    names.variables.insert(QString::fromLatin1(kProjectPathVariable).toLower(), TValueKind::String);
    for (const QString& line : lines) {
        if (const QRegularExpressionMatch m = var.match(line); m.hasMatch()) {
            const TValueKind kind = KindOfType(m.captured(2));
            for (const QString& n : m.captured(1).split(',')) names.variables.insert(n.trimmed().toLower(), kind);
        } else if (const QRegularExpressionMatch p = procedure.match(line); p.hasMatch()) {
            try {
                TScanner heading(p.captured(1));
                const TDVSignature sig = ParseProcedureHeading(heading);
                names.procedures.insert(sig.name.toLower());
                for (const TDVParamDecl& param : sig.params) names.variables.insert(param.name.toLower(), param.type.kind);
            } catch (const TDravikException&) {
                // A heading the parser will report itself.
            }
        }
    }
    return names;
}

}  // namespace dv::host
