#include "host/structurerecode.h"

#include "framework/scanner.h"
#include "host/commandpool.h"
#include "host/scriptlines.h"

namespace dv::host {

namespace {

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

// Letters, digits and signs of a text, without its blanks and in one case: a recoded line that
// differs from the line in nothing else is the line in its current form.
QString Essence(const QString& text)
{
    QString out;
    for (const QChar c : text) {
        if (!c.isSpace()) out += c.toLower();
    }
    return out;
}

}  // namespace

QString RecodeStructureLines(const QString& text, TCommandPool& commands)
{
    TDVRunEdit* cases = commands.ForClass(QStringLiteral("TDVCmdCase"));
    TDVRunEdit* ifThenElse = commands.ForClass(QStringLiteral("TDVCmdIfThenElse"));
    if (!cases || !ifThenElse) return text;

    QStringList lines = text.split('\n');
    int openCases = 0;
    bool inComment = false;
    for (QString& line : lines) {
        const bool commentedOut = inComment;
        inComment = ScanLine(line, {inComment, 0}).inComment;
        if (commentedOut) continue;
        const bool cr = line.endsWith('\r');
        const QString body = cr ? line.chopped(1) : line;
        const QString trimmed = body.trimmed();
        const qsizetype prefix = PrefixLength(body);
        const QString statement = body.mid(prefix);
        const auto [first, second] = FirstTwoTokens(statement);
        // Only older branches and if lines with decimal commas have a current form of their own:
        // the loop and comment commands merely trim their lines, and a case head's recoded form
        // differs from it only in blanks. Those lines stay as they are, blanks included.
        TDVRunEdit* recoder = nullptr;
        QString from = statement;
        // An older branch looks like an editor marker ("3:"), so it is looked at before markers are.
        if (openCases > 0 && IsOlderBranch(trimmed, FirstTwoTokens(trimmed).first)) {
            recoder = cases;
            from = trimmed;
        } else if (first == TTokenType::kwIf && OnlyDecimalCommas(statement)) {
            recoder = ifThenElse;
        } else if (first == TTokenType::kwCase) {
            ++openCases;
        } else if (first == TTokenType::kwEnd && second == TTokenType::kwCase) {
            openCases = std::max(0, openCases - 1);
        }
        if (!recoder) continue;
        const QString recoded = recoder->RecodeScript(from, nullptr);
        if (Essence(recoded) == Essence(from)) continue;
        const qsizetype start = body.indexOf(from.trimmed());
        const qsizetype end = start + from.trimmed().size();
        line = body.left(start) + recoded + body.mid(end) + (cr ? QStringLiteral("\r") : QString());
    }
    return lines.join('\n');
}

}  // namespace dv::host
