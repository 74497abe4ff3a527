#include "host/structurerecode.h"

#include "framework/scanner.h"
#include "host/commandpool.h"

#include <QRegularExpression>

namespace dv::host {

namespace {

// A line's indentation and editor marker ("  93:"), which the recoded line keeps.
qsizetype PrefixLength(const QString& line)
{
    static const QRegularExpression prefix(QStringLiteral("^\\s*(\\d+:(?!=))?\\s*"));
    return prefix.match(line).capturedLength();
}

// The first two tokens of a text; EndOfText for what is missing or unreadable.
std::pair<TTokenType, TTokenType> FirstTwoTokens(const QString& text)
{
    try {
        TScanner scanner(text, false);
        const TTokenType first = scanner.GetNextToken().type;
        return {first, scanner.GetNextToken().type};
    } catch (const TDVSyntaxError&) {
        return {TTokenType::EndOfText, TTokenType::EndOfText};
    }
}

// A branch line of a case in the older form: a value and ":" with nothing after it.
bool IsOlderBranch(const QString& text, TTokenType first)
{
    return text.endsWith(':') && first != TTokenType::kwSelect && first != TTokenType::kwElse && first != TTokenType::kwCase;
}

// The if line's decimal commas become points; a comma inside a string, brackets, parentheses or a
// comment is no decimal comma, and such a line is left as it is.
bool OnlyDecimalCommas(const QString& text)
{
    bool quoted = false;
    int depth = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == '"') quoted = !quoted;
        if (quoted) {
            if (c == ',') return false;
            continue;
        }
        if (c == '/' && i + 1 < text.size() && text[i + 1] == '/') return !text.mid(i).contains(',');
        if (c == '(' || c == '[' || c == '{') ++depth;
        if (c == ')' || c == ']' || c == '}') --depth;
        if (c == ',' && depth != 0) return false;
    }
    return true;
}

}  // namespace

QString RecodeStructureLines(const QString& text, TCommandPool& commands)
{
    TDVRunEdit* loop = commands.ForClass(QStringLiteral("TDVCmdLoop"));
    TDVRunEdit* cases = commands.ForClass(QStringLiteral("TDVCmdCase"));
    TDVRunEdit* ifThenElse = commands.ForClass(QStringLiteral("TDVCmdIfThenElse"));
    TDVRunEdit* comment = commands.ForClass(QStringLiteral("TDVCmdComment"));
    if (!loop || !cases || !ifThenElse || !comment) return text;

    QStringList lines = text.split('\n');
    int openCases = 0;
    for (QString& line : lines) {
        const bool cr = line.endsWith('\r');
        const QString body = cr ? line.chopped(1) : line;
        const QString trimmed = body.trimmed();
        const QString end = cr ? QStringLiteral("\r") : QString();
        // An older branch looks like an editor marker ("3:"), so it is looked at before markers are.
        if (openCases > 0 && IsOlderBranch(trimmed, FirstTwoTokens(trimmed).first)) {
            line = body.left(body.indexOf(trimmed)) + cases->RecodeScript(trimmed, nullptr) + end;
            continue;
        }
        const qsizetype prefix = PrefixLength(body);
        const QString statement = body.mid(prefix);
        const auto [first, second] = FirstTwoTokens(statement);
        TDVRunEdit* recoder = nullptr;
        if (statement.startsWith(QLatin1String("//"))) {
            recoder = comment;
        } else if (first == TTokenType::kwFor || first == TTokenType::kwWhile || first == TTokenType::kwUntil) {
            recoder = loop;
        } else if (first == TTokenType::kwIf && OnlyDecimalCommas(statement)) {
            recoder = ifThenElse;
        } else if (first == TTokenType::kwCase) {
            ++openCases;
            if (!statement.contains(':') && statement.trimmed().endsWith(QLatin1String("of"), Qt::CaseInsensitive)) recoder = cases;
        } else if (first == TTokenType::kwEnd && second == TTokenType::kwCase) {
            openCases = std::max(0, openCases - 1);
        }
        if (recoder) line = body.left(prefix) + recoder->RecodeScript(statement, nullptr) + end;
    }
    return lines.join('\n');
}

}  // namespace dv::host
