#include "host/importer.h"

#include "host/commandpool.h"
#include "host/structurerecode.h"

#include <QRegularExpression>
#include <QSet>

namespace dv::host {

namespace {

const TDVParamDecl* Param(const TDVSignature& sig, const QString& name)
{
    for (const TDVParamDecl& p : sig.params) {
        if (p.name == name) return &p;
    }
    return nullptr;
}

// The call's argument text, between its first "(" and the matching ")"; none without parentheses.
std::optional<QString> ArgumentText(const QString& call)
{
    const qsizetype open = call.indexOf('(');
    if (open < 0) return std::nullopt;
    int depth = 0;
    bool quoted = false;
    for (qsizetype i = open + 1; i < call.size(); ++i) {
        const QChar c = call[i];
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == '(' || c == '[' || c == '{') ++depth;
        if (c == ']' || c == '}') --depth;
        if (c == ')' && depth-- == 0) return call.mid(open + 1, i - open - 1);
    }
    return std::nullopt;
}

// A line's editor marker and indentation ("  93:"), which the converted line keeps.
qsizetype PrefixLength(const QString& line)
{
    static const QRegularExpression prefix(QStringLiteral("^\\s*(\\d+:(?!=))?\\s*"));
    return prefix.match(line).capturedLength();
}

TDVThreadRunEdit* CommandForLine(const QString& word, TCommandPool& commands)
{
    for (TDVThreadRunEdit* command : commands.Available()) {
        if (command->GetID().compare(word, Qt::CaseInsensitive) == 0 ||
            command->OlderNames().contains(word, Qt::CaseInsensitive)) {
            return command;
        }
    }
    return nullptr;
}

// Names declared by the script's "var" lines, in lower case.
QSet<QString> DeclaredNames(const QStringList& lines)
{
    static const QRegularExpression decl(QStringLiteral("^\\s*(?:\\d+:)?\\s*var\\s+([\\w\\s,]+):"),
                                         QRegularExpression::CaseInsensitiveOption);
    QSet<QString> names{QStringLiteral("projektpfad"), QStringLiteral("true"), QStringLiteral("false")};
    for (const QString& line : lines) {
        const QRegularExpressionMatch m = decl.match(line);
        if (!m.hasMatch()) continue;
        for (const QString& n : m.captured(1).split(',')) names << n.trimmed().toLower();
    }
    return names;
}

// Older lines wrote plain words for texts ("IN:FF", "ccHexToInt", "[OUT:Hallo Welt]"); in the
// current form words that name no variable of the script become a string literal, so the line runs
// as it was meant.
void QuotePlainWords(const TDVSignature& sig, const QSet<QString>& declared, TParamList& params)
{
    static const QRegularExpression word(QStringLiteral("^[A-Za-z_][\\w ]*$"));
    for (const QString& name : params.Names()) {
        const TDVParamDecl* p = sig.Find(name);
        const QString text = params.GetString(name).trimmed();
        if (!p || p->isVar || !word.match(text).hasMatch() || declared.contains(text.toLower())) continue;
        params.AddString(name, '"' + text + '"');
    }
}

}  // namespace

QStringList SplitArguments(const QString& text)
{
    QStringList pieces;
    QString current;
    int depth = 0;
    bool quoted = false;
    for (const QChar c : text) {
        if (c == '"') quoted = !quoted;
        if (!quoted) {
            if (c == '(' || c == '[' || c == '{') ++depth;
            if (c == ')' || c == ']' || c == '}') --depth;
            if (c == ',' && depth == 0) {
                pieces << current;
                current.clear();
                continue;
            }
        }
        current += c;
    }
    pieces << current;
    return pieces;
}

QString WriteCommandLine(const TDVSignature& sig, const TParamList& params)
{
    QStringList names = params.Names();
    while (!names.isEmpty()) {
        const TDVParamDecl* p = Param(sig, names.back());
        if (!p || !p->hasDefault || params.GetString(names.back()).trimmed() != p->defaultText) break;
        names.removeLast();
    }
    QStringList args;
    for (const QString& n : names) args << n + QStringLiteral(" := ") + params.GetString(n).trimmed();
    return sig.name + '(' + args.join(QStringLiteral(", ")) + QStringLiteral(");");
}

bool ReadCommandLine(const QString& line, const TDVSignature& sig, TParamList& params)
{
    const QString call = line.mid(PrefixLength(line)).trimmed();
    const qsizetype open = call.indexOf('(');
    const QString name = (open < 0 ? call.section(';', 0, 0) : call.left(open)).trimmed();
    if (name.compare(sig.name, Qt::CaseInsensitive) != 0) return false;
    params.Clear();
    static const QRegularExpression named(QStringLiteral("^\\s*(\\w+)\\s*:=(.*)$"), QRegularExpression::DotMatchesEverythingOption);
    if (const std::optional<QString> args = ArgumentText(call); args && !args->trimmed().isEmpty()) {
        int position = 0;
        for (const QString& piece : SplitArguments(*args)) {
            const QRegularExpressionMatch m = named.match(piece);
            const TDVParamDecl* p = m.hasMatch() ? sig.Find(m.captured(1))
                                    : position < static_cast<int>(sig.params.size()) ? &sig.params[static_cast<std::size_t>(position)]
                                                                                     : nullptr;
            if (!p) return false;
            params.AddString(p->name, (m.hasMatch() ? m.captured(2) : piece).trimmed());
            ++position;
        }
    }
    for (const TDVParamDecl& p : sig.params) {
        if (p.hasDefault && !params.Contains(p.name)) params.AddString(p.name, p.defaultText);
    }
    return true;
}

QString ConvertScript(const QString& text, TCommandPool& commands)
{
    static const QRegularExpression word(QStringLiteral("^\\w+"));
    static const QRegularExpression namedArgument(QStringLiteral("[(,]\\s*\\w+\\s*:="));
    QStringList lines = RecodeStructureLines(text, commands).split('\n');
    const QSet<QString> declared = DeclaredNames(lines);
    for (QString& line : lines) {
        const bool cr = line.endsWith('\r');
        const QString body = cr ? line.chopped(1) : line;
        const qsizetype prefix = PrefixLength(body);
        const QString call = body.mid(prefix);
        const QString procedure = word.match(call).captured(0);
        if (procedure.isEmpty() || namedArgument.match(call).hasMatch()) continue;
        TDVThreadRunEdit* command = CommandForLine(procedure, commands);
        if (!command) continue;
        TParamList params;
        if (!command->DecodeScript(call, params, nullptr)) continue;
        QuotePlainWords(command->Signature(), declared, params);
        line = body.left(prefix) + WriteCommandLine(command->Signature(), params) + (cr ? QStringLiteral("\r") : QString());
    }
    return lines.join('\n');
}

}  // namespace dv::host
