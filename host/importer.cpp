#include "host/importer.h"

#include "framework/exceptions.h"
#include "framework/scanner.h"
#include "framework/translate.h"
#include "host/commandpool.h"
#include "host/scriptparser.h"
#include "host/structurerecode.h"

#include <QRegularExpression>

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

QString ConvertScript(const QString& text, TCommandPool& commands, QStringList* warnings, const QString& source)
{
    TDVScriptImporter importer(commands, source);
    const QString converted = importer.Convert(text);
    if (warnings) *warnings = importer.Warnings();
    return converted;
}

}  // namespace dv::host

namespace dv {

QString TDVScriptImporter::Convert(const QString& text)
{
    warnings_.clear();
    // Loops, case, if and comments in an older form are recoded by their structure commands first.
    QStringList lines = host::RecodeStructureLines(text, commands_).split('\n');
    names_ = host::ScriptNames(lines);
    bool inComment = false;
    for (qsizetype i = 0; i < lines.size();) {
        const host::TLineState own = host::ScanLine(lines[i], {inComment, 0});
        if (inComment) {
            inComment = own.inComment;
            ++i;
            continue;
        }
        // A statement goes on while its brackets are open; lines that do not read as one statement
        // together (an older text with a "(" of its own) are taken one by one.
        qsizetype count = 1;
        host::TLineState end = own;
        while (end.depth > 0 && i + count < lines.size()) end = host::ScanLine(lines[i + count++], end);
        if (count > 1 && !Reads(lines.mid(i, count).join('\n'), false)) count = 1;
        if (TDVThreadRunEdit* command = CommandFor(host::SplitLine(lines[i]).statement)) count = Examine(lines, i, count, *command);
        // A converted line holds the older text in a string: a "(*" there opens no comment.
        if (count == 1) end = host::ScanLine(lines[i], {});
        inComment = end.inComment;
        i += count;
    }
    return lines.join('\n');
}

std::optional<TValueKind> TDVScriptImporter::DeclaredKind(const QString& name) const
{
    const auto it = names_.variables.find(name.trimmed().toLower());
    if (it == names_.variables.end()) return std::nullopt;
    return *it;
}

// The command a statement calls: its first word, followed by "(" or nothing, names a command or
// an older procedure name of one, and no procedure of the script itself. An assignment to a
// variable named like an older keyword (High := 5) calls nothing.
TDVThreadRunEdit* TDVScriptImporter::CommandFor(const QString& statement) const
{
    static const QRegularExpression call(QStringLiteral("^(\\w+)\\s*(\\(|;|$)"));
    const QString word = call.match(statement).captured(1);
    if (word.isEmpty() || names_.procedures.contains(word.toLower())) return nullptr;
    return host::CommandForLine(word, commands_);
}

// Current lines are never decoded. A call is older only when the current grammar cannot read it
// with the names the script declares, it stands on one line in the command's older form, and it
// does not read even when every word in it is taken as a variable, unless the command knows it for
// certain as older (IsOlderForm); or when it reads but gives an array variable to a var parameter
// of another kind, as the older ArrayToStr(Array, String) does.
// A call that reads only with words the script does not declare may be an older line or a
// current one with a misspelt name: it is kept, with a warning.
qsizetype TDVScriptImporter::Examine(QStringList& lines, qsizetype first, qsizetype count, TDVThreadRunEdit& command)
{
    const QString statement = lines.mid(first, count).join('\n');
    const QString line = host::SplitLine(lines[first]).statement;
    const bool older = count == 1 && command.IsOlderLine(line);
    const std::optional<QStringList> declared = VariableWords(statement, true);
    const std::optional<QString> error = ParseError(statement, declared.value_or(QStringList()), first);
    if (!error) {
        if (older && VarKindsClash(line, command)) Rewrite(lines, first, command);
        return count;
    }
    if (older && (!Reads(line, false) || command.IsOlderForm(line))) {
        Rewrite(lines, first, command);
        return 1;
    }
    Keep(lines, first, *error);
    return count;
}

void TDVScriptImporter::Rewrite(QStringList& lines, qsizetype index, TDVThreadRunEdit& command)
{
    const host::TLineParts parts = host::SplitLine(lines[index]);
    const TConverted converted = ConvertStatement(parts.statement, command);
    if (converted.statement) {
        lines[index] = parts.Joined(*converted.statement);
    } else {
        Keep(lines, index, converted.reason);
    }
}

void TDVScriptImporter::Keep(QStringList& lines, qsizetype index, const QString& reason)
{
    const QString note = QStringLiteral("nicht umgesetzt: ") + reason;
    const QString lineNumber = QString::number(index + 1);
    warnings_ << (source_.isEmpty() ? Format(_("Zeile %d: %s"), {lineNumber, note})
                                    : QStringLiteral("%1:%2: %3").arg(source_, lineNumber, note));
    const bool cr = lines[index].endsWith('\r');
    lines[index] = lines[index].chopped(cr ? 1 : 0) + QStringLiteral(" // ") + note + (cr ? QStringLiteral("\r") : QString());
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

std::optional<QStringList> TDVScriptImporter::VariableWords(const QString& statement, bool declaredOnly) const
{
    QStringList names;
    try {
        TScanner scan(statement, false);
        for (TToken t = scan.GetNextToken(); t.type != TTokenType::EndOfText; t = scan.GetNextToken()) {
            if (t.type != TTokenType::Identifier || names.contains(t.text, Qt::CaseInsensitive)) continue;
            if (scan.LookAhead().type == TTokenType::LParen || commands_.ForProcedure(t.text)) continue;
            if (!declaredOnly || DeclaredKind(t.text)) names << t.text;
        }
    } catch (const TDravikException&) {
        return std::nullopt;
    }
    return names;
}

bool TDVScriptImporter::Reads(const QString& statement, bool declaredOnly)
{
    const std::optional<QStringList> names = VariableWords(statement, declaredOnly);
    return names && !ParseError(statement, *names);
}

std::optional<QString> TDVScriptImporter::ParseError(const QString& statement, const QStringList& names, qsizetype line)
{
    QStringList declarations;
    for (const QString& n : names) {
        if (n.compare(QLatin1String(host::kProjectPathVariable), Qt::CaseInsensitive) != 0) declarations << n;
    }
    // The declarations end with ";" on the statement's first line, so that the statement's lines
    // count from 1; a marker is read only at the start of a line, so it gives way to them.
    const QString head = declarations.isEmpty() ? QString() : QStringLiteral("var ") + declarations.join(',') + QStringLiteral(" : Misc;");
    const qsizetype marker = host::PrefixLength(statement);
    host::TProgram program;
    host::TScriptParser(program, commands_).ParseProgram(head + QString(marker, ' ') + statement.mid(marker));
    if (program.errors.empty()) return std::nullopt;
    // A message that names a line of the statement ("für \"(\" in Zeile 1") names the script's.
    static const QRegularExpression lineNumber(QStringLiteral("(Zeile )(\\d+)"));
    QString message = program.errors.front().message;
    if (const QRegularExpressionMatch m = lineNumber.match(message); m.hasMatch() && line > 0) {
        message.replace(m.capturedStart(2), m.capturedLength(2), QString::number(m.captured(2).toLongLong() + line));
    }
    return message;
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
        const std::optional<QString> argument = CurrentArgument(*decl, decoded.GetString(name), command.EvaluatesText(decoded, name));
        if (!argument) {
            return {std::nullopt, Format(_("%s erwartet eine Variable, nicht \"%s\""), {name, decoded.GetString(name)})};
        }
        current.AddString(name, *argument);
    }
    const QString line = host::WriteCommandLine(command.Signature(), current);
    if (const std::optional<QString> error = ParseError(line, VariableWords(line, true).value_or(QStringList()))) {
        return {std::nullopt, *error};
    }
    return {line, {}};
}

// An older line's argument is literal text that reached the command unchanged; the current line
// writes it so that the command gets the same characters: a declared variable stays a reference,
// a whole string literal, a printed number and True/False stay as written, anything else becomes
// a string literal. A text the command evaluates keeps its meaning as an expression when it reads
// as one ("[1,2,3]" for the array operations).
std::optional<QString> TDVScriptImporter::CurrentArgument(const TDVParamDecl& decl, const QString& text, bool evaluated)
{
    if (text.isEmpty()) return QString();  // left out, as the older line left it empty
    const QString name = text.trimmed();
    if (decl.isVar) return host::IsIdentifier(name) ? std::optional<QString>(name) : std::nullopt;
    if (host::IsIdentifier(name) && DeclaredKind(name)) return name;
    // Read inside a call, so that the text must be one expression (a ";" would end the call early).
    if (evaluated && !name.contains(';') && Reads(QStringLiteral("Log(%1)").arg(name), true)) return name;
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
