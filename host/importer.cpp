#include "host/importer.h"

#include "framework/exceptions.h"
#include "framework/scanner.h"
#include "framework/translate.h"
#include "host/commandpool.h"
#include "host/scriptparser.h"
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

// A line as the importer takes it apart: indentation and editor marker, the statement, a trailing
// "//" comment with the blanks before it, and the carriage return of a CRLF file.
struct TLineParts {
    QString prefix;
    QString statement;
    QString comment;
    QString cr;
    QString Joined(const QString& statement) const { return prefix + statement + comment + cr; }
};

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
    // Older texts may hold "//" themselves (paths, addresses): a comment starts only where the
    // statement before it is complete. Trailing blanks stay with the comment.
    qsizetype end = body.size();
    bool quoted = false;
    for (qsizetype i = 0; i + 1 < body.size(); ++i) {
        if (body[i] == '"') quoted = !quoted;
        if (quoted || body[i] != '/' || body[i + 1] != '/') continue;
        qsizetype last = i;
        while (last > 0 && body[last - 1].isSpace()) --last;
        if (last > 0 && (body[last - 1] == ';' || body[last - 1] == ')')) {
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

// Whether a "(*" comment is still open at the end of the line, given whether it was at its start;
// lines that begin inside one are text, not statements.
bool CommentOpenAfter(const QString& line, bool open)
{
    bool quoted = false;
    for (qsizetype i = 0; i + 1 < line.size(); ++i) {
        const QStringView pair = QStringView(line).mid(i, 2);
        if (open || !quoted) {
            if (!open && pair == QLatin1String("//")) break;
            const bool toggles = open ? pair == QLatin1String("*)") : pair == QLatin1String("(*");
            if (toggles) {
                open = !open;
                ++i;
                continue;
            }
        }
        if (!open && line[i] == '"') quoted = !quoted;
    }
    return open;
}

// The variables the script's "var" lines declare, and the one every script has, with their kinds.
QHash<QString, TValueKind> DeclaredVariables(const QStringList& lines)
{
    static const QRegularExpression decl(QStringLiteral("^\\s*(?:\\d+:)?\\s*var\\s+([\\w\\s,]+):([^=;/]*)"),
                                         QRegularExpression::CaseInsensitiveOption);
    QHash<QString, TValueKind> kinds{{QString::fromLatin1(kProjectPathVariable).toLower(), TValueKind::String}};
    for (const QString& line : lines) {
        const QRegularExpressionMatch m = decl.match(line);
        if (!m.hasMatch()) continue;
        TValueKind kind = TValueKind::Misc;
        try {
            TScanner type(m.captured(2));
            kind = ParseTypeName(type).kind;
        } catch (const TDravikException&) {
            // An unknown type: the name is still declared.
        }
        for (const QString& n : m.captured(1).split(',')) kinds.insert(n.trimmed().toLower(), kind);
    }
    return kinds;
}

bool IsIdentifier(const QString& text)
{
    static const QRegularExpression identifier(QStringLiteral("^[A-Za-z_]\\w*$"));
    return identifier.match(text).hasMatch();
}

// A text that is one whole string literal ("a.ini", "C:\temp"): the older line already wrote an
// expression, and the current line takes it as it is.
bool IsStringLiteral(const QString& text)
{
    if (text.size() < 2 || !text.startsWith('"') || !text.endsWith('"')) return false;
    try {
        TScanner scan(text, false);
        return scan.GetNextToken().type == TTokenType::String && scan.GetNextToken().type == TTokenType::EndOfText;
    } catch (const TDravikException&) {
        return false;
    }
}

// A number written as the host prints it, so that the command gets the same characters ("2.5",
// "12", "-1"), not "007" or "1e3".
bool IsPrintedNumber(const QString& text)
{
    static const QRegularExpression number(QStringLiteral("^-?\\d+(\\.\\d+)?$"));
    if (!number.match(text).hasMatch()) return false;
    try {
        return TNumberValue(text).AsText() == text;
    } catch (const TDravikException&) {
        return false;
    }
}

QString StringLiteral(const QString& text)
{
    return '"' + QString(text).replace('"', QStringLiteral("\"\"")) + '"';
}

bool IsArrayKind(TValueKind kind) { return kind == TValueKind::Array; }

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

QString ConvertScript(const QString& text, TCommandPool& commands, QStringList* warnings)
{
    TDVScriptImporter importer(commands);
    const QString converted = importer.Convert(text);
    if (warnings) *warnings = importer.Warnings();
    return converted;
}

}  // namespace dv::host

namespace dv {

QString TDVScriptImporter::Convert(const QString& text)
{
    warnings_.clear();
    // Loops, case, if and comments are recoded line by line by their structure commands first.
    QStringList lines = host::RecodeStructureLines(text, commands_).split('\n');
    declared_ = host::DeclaredVariables(lines);
    static const QRegularExpression word(QStringLiteral("^\\w+"));
    bool inComment = false;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const bool commentedOut = inComment;
        inComment = host::CommentOpenAfter(lines[i], inComment);
        if (commentedOut) continue;
        const host::TLineParts parts = host::SplitLine(lines[i]);
        TDVThreadRunEdit* command = CommandFor(word.match(parts.statement).captured(0));
        if (!command || !IsOlderLine(parts.statement, *command)) continue;
        const TConverted converted = ConvertStatement(parts.statement, *command);
        if (converted.statement) {
            lines[i] = parts.Joined(*converted.statement);
            continue;
        }
        const QString note = QStringLiteral("nicht umgesetzt: ") + converted.reason;
        warnings_ << Format(_("Zeile %d: %s"), {QString::number(i + 1), note});
        lines[i] = lines[i].chopped(parts.cr.size()) + QStringLiteral(" // ") + note + parts.cr;
    }
    return lines.join('\n');
}

std::optional<TValueKind> TDVScriptImporter::DeclaredKind(const QString& name) const
{
    const auto it = declared_.find(name.trimmed().toLower());
    if (it == declared_.end()) return std::nullopt;
    return *it;
}

TDVThreadRunEdit* TDVScriptImporter::CommandFor(const QString& word)
{
    return word.isEmpty() ? nullptr : host::CommandForLine(word, commands_);
}

// Current lines are never decoded: a line is older only when the current grammar cannot read it
// (every name in it taken as declared), or when it gives an array variable to a var parameter of
// another kind, as the older ArrayToStr(Array, String) does.
bool TDVScriptImporter::IsOlderLine(const QString& statement, TDVThreadRunEdit& command)
{
    static const QRegularExpression namedArgument(QStringLiteral("[(,]\\s*\\w+\\s*:="));
    if (namedArgument.match(statement).hasMatch()) return false;
    QStringList names;
    try {
        TScanner scan(statement, false);
        for (TToken t = scan.GetNextToken(); t.type != TTokenType::EndOfText; t = scan.GetNextToken()) {
            const bool call = scan.LookAhead().type == TTokenType::LParen || commands_.ForProcedure(t.text);
            if (t.type == TTokenType::Identifier && !call && !names.contains(t.text, Qt::CaseInsensitive)) names << t.text;
        }
    } catch (const TDravikException&) {
        return true;
    }
    return ParseError(statement, names).has_value() || VarKindsClash(statement, command);
}

bool TDVScriptImporter::VarKindsClash(const QString& statement, TDVThreadRunEdit& command) const
{
    TParamList args;
    if (!host::ReadCommandLine(statement, command.Signature(), args)) return false;
    for (const TDVParamDecl& p : command.Signature().params) {
        const std::optional<TValueKind> kind = p.isVar ? DeclaredKind(args.GetString(p.name)) : std::nullopt;
        if (!kind || *kind == TValueKind::Misc || p.type.kind == TValueKind::Misc) continue;
        if (host::IsArrayKind(*kind) != host::IsArrayKind(p.type.kind)) return true;
    }
    return false;
}

std::optional<QString> TDVScriptImporter::ParseError(const QString& statement, const QStringList& names)
{
    QStringList declarations;
    for (const QString& n : names) {
        if (n.compare(QLatin1String(host::kProjectPathVariable), Qt::CaseInsensitive) != 0) declarations << n;
    }
    const QString head = declarations.isEmpty() ? QStringLiteral("\n") : QStringLiteral("var ") + declarations.join(',') + QStringLiteral(" : Misc\n");
    host::TProgram program;
    host::TScriptParser(program, commands_).ParseProgram(head + statement);
    if (program.errors.empty()) return std::nullopt;
    return program.errors.front().message;
}

TDVScriptImporter::TConverted TDVScriptImporter::ConvertStatement(const QString& statement, TDVThreadRunEdit& command)
{
    TParamList decoded;
    if (!command.DecodeScript(statement, decoded, this)) {
        return {std::nullopt, Format(_("keine ältere Zeile von %s"), {command.GetID()})};
    }
    TParamList current;
    for (const QString& name : decoded.Names()) {
        const TDVParamDecl* decl = command.Signature().Find(name);
        if (!decl) continue;
        const std::optional<QString> argument = CurrentArgument(*decl, decoded.GetString(name));
        if (!argument) {
            return {std::nullopt, Format(_("%s erwartet eine Variable, nicht \"%s\""), {name, decoded.GetString(name)})};
        }
        current.AddString(name, *argument);
    }
    const QString line = host::WriteCommandLine(command.Signature(), current);
    QStringList names;
    for (auto it = declared_.cbegin(); it != declared_.cend(); ++it) names << it.key();
    if (const std::optional<QString> error = ParseError(line, names)) return {std::nullopt, *error};
    return {line, {}};
}

// An older line's argument is literal text that reached the command unchanged; the current line
// writes it so that the command gets the same characters: a declared variable stays a reference,
// a whole string literal, a printed number and True/False stay as written, anything else becomes
// a string literal.
std::optional<QString> TDVScriptImporter::CurrentArgument(const TDVParamDecl& decl, const QString& text) const
{
    if (text.isEmpty()) return QString();  // left out, as the older line left it empty
    const QString name = text.trimmed();
    if (decl.isVar) return host::IsIdentifier(name) ? std::optional<QString>(name) : std::nullopt;
    if (host::IsIdentifier(name) && DeclaredKind(name)) return name;
    // Switches the signature declares otherwise (Convert : Number) still read True and False.
    const bool boolean = text == QLatin1String("True") || text == QLatin1String("False") ||
                         (decl.type.kind == TValueKind::Boolean && (text.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0 ||
                                                                    text.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0));
    if (boolean || host::IsStringLiteral(text) || host::IsPrintedNumber(text)) {
        return text;
    }
    return host::StringLiteral(text);
}

}  // namespace dv
