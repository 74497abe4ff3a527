#include "workbench/calledit.h"

#include "framework/catalogue.h"
#include "framework/registry.h"
#include "framework/scanner.h"
#include "host/commandpool.h"
#include "host/importer.h"

#include <QRegularExpression>

#include <array>

namespace dv::workbench {

namespace {

struct TStructureWord {
    const char* word;  // first word of the line, lower case
    const char* commandClass;
    TTokenType headEnd;  // the token that ends the head; EndOfText: the head is the whole line
};

// clang-format off
constexpr std::array kStructureWords{
    TStructureWord{"if", "TDVCmdIfThenElse", TTokenType::kwThen},
    TStructureWord{"for", "TDVCmdLoop", TTokenType::kwDo},
    TStructureWord{"while", "TDVCmdLoop", TTokenType::kwDo},
    TStructureWord{"repeat", "TDVCmdLoop", TTokenType::EndOfText},
    TStructureWord{"until", "TDVCmdLoop", TTokenType::Semicolon},
    TStructureWord{"case", "TDVCmdCase", TTokenType::kwOf},
    TStructureWord{"select", "TDVCmdCase", TTokenType::Colon},
    TStructureWord{"//", "TDVCmdComment", TTokenType::EndOfText},
    TStructureWord{"(*", "TDVCmdComment", TTokenType::EndOfText},
};
// clang-format on

// The indentation and editor marker a line begins with ("  93:").
qsizetype PrefixLength(const QString& line)
{
    static const QRegularExpression prefix(QStringLiteral("^\\s*(\\d+:(?!=))?\\s*"));
    return prefix.match(line).capturedLength();
}

QString FirstWord(const QString& statement)
{
    static const QRegularExpression word(QStringLiteral("^(//|\\(\\*|\\w+)"));
    return word.match(statement).captured(1);
}

// The closing line of a for or while loop: the loop command answers it with its refusal.
bool IsLoopEnd(const QString& statement)
{
    static const QRegularExpression end(QStringLiteral("^end\\s+(for|while)\\b"), QRegularExpression::CaseInsensitiveOption);
    return end.match(statement).hasMatch();
}

const TStructureWord* StructureWord(const QString& statement)
{
    const QString word = FirstWord(statement);
    for (const TStructureWord& s : kStructureWords) {
        if (word.compare(QLatin1String(s.word), Qt::CaseInsensitive) == 0) return &s;
    }
    return nullptr;
}

// Where a call statement ends: after its argument list (parentheses matched outside quotes, as
// the line reader matches them) and one ";" behind it. The whole text when the list is open.
qsizetype CallEnd(const QString& statement)
{
    qsizetype i = FirstWord(statement).size();
    auto skipBlanks = [&] {
        while (i < statement.size() && statement[i].isSpace()) ++i;
    };
    skipBlanks();
    if (i < statement.size() && statement[i] == '(') {
        int depth = 0;
        bool quoted = false;
        for (++i;; ++i) {
            if (i >= statement.size()) return statement.size();
            const QChar c = statement[i];
            if (c == '"') quoted = !quoted;
            if (quoted) continue;
            if (c == '(' || c == '[' || c == '{') ++depth;
            if (c == ']' || c == '}') --depth;
            if (c == ')' && depth-- == 0) break;
        }
        ++i;
    }
    const qsizetype afterCall = i;
    skipBlanks();
    return i < statement.size() && statement[i] == ';' ? i + 1 : afterCall;
}

// Where a block head ends: after the first token of the kind that closes it, read by the
// script's tokenizer (so a "do" inside a string does not count). The whole text when it is
// missing or the text does not read.
qsizetype HeadEnd(const QString& statement, TTokenType headEnd)
{
    if (headEnd == TTokenType::EndOfText) return statement.size();
    try {
        TScanner scanner(statement, false);
        for (TToken t = scanner.GetNextToken(); t.type != TTokenType::EndOfText; t = scanner.GetNextToken()) {
            if (t.type == headEnd) return t.offset + t.length;
        }
    } catch (const TDVSyntaxError&) {
    }
    return statement.size();
}

// What follows the statement on the line; nothing when that is only blanks.
QString Tail(const QString& statement, qsizetype end)
{
    const QString tail = statement.mid(end);
    return tail.trimmed().isEmpty() ? QString() : tail;
}

}  // namespace

QString Indentation(const QString& line)
{
    qsizetype n = 0;
    while (n < line.size() && (line[n] == ' ' || line[n] == '\t')) ++n;
    return line.left(n);
}

QString IndentBlock(const QString& block, const QString& indentation)
{
    static const QRegularExpression lineBreak(QStringLiteral("\r?\n"));
    QStringList lines = block.split(lineBreak);
    for (QString& line : lines) line.prepend(indentation);
    return lines.join('\n');
}

TLineCommand CommandOfLine(const QString& line, host::TCommandPool& commands)
{
    const QString statement = line.mid(PrefixLength(line));
    const QString word = FirstWord(statement);
    if (word.isEmpty()) return {};
    if (TDVThreadRunEdit* call = commands.ForProcedure(word)) return {call, nullptr};
    const TStructureWord* s = StructureWord(statement);
    const char* commandClass = s ? s->commandClass : IsLoopEnd(statement) ? "TDVCmdLoop" : nullptr;
    if (!commandClass) return {};
    const TCatalogueRow* row = FindCommandClass(QString::fromLatin1(commandClass));
    if (!row || !IsAvailable(*row)) return {};
    return {nullptr, commands.ForClass(QString::fromLatin1(commandClass))};
}

std::optional<QString> InsertCall(TDVThreadRunEdit& command)
{
    command.SetDefaults();
    TParamList params;
    command.AddDefaults(params);  // the dialog opens on the signature's defaults
    if (!command.Edit(params)) return std::nullopt;
    command.PostEdit();
    return host::WriteCommandLine(command.Signature(), params);
}

std::optional<QString> EditCall(TDVThreadRunEdit& command, const QString& line)
{
    const qsizetype prefix = PrefixLength(line);
    const QString statement = line.mid(prefix);
    const qsizetype end = CallEnd(statement);
    TParamList params;
    if (!host::ReadCommandLine(statement.left(end), command.Signature(), params)) return std::nullopt;
    if (!command.Edit(params)) return std::nullopt;
    command.PostEdit();
    return line.left(prefix) + host::WriteCommandLine(command.Signature(), params) + Tail(statement, end);
}

std::optional<QString> EditStructure(TDVRunEdit& command, int lineNumber, const QString& line)
{
    const qsizetype prefix = PrefixLength(line);
    QString head = line.mid(prefix);
    QString tail;
    if (const TStructureWord* s = StructureWord(head)) {
        const qsizetype end = HeadEnd(head, s->headEnd);
        tail = Tail(head, end);
        head.truncate(end);
    }
    if (head.isEmpty()) command.SetDefaults();
    QString text = head;
    QString script = head;
    if (!command.EditCommand(0, lineNumber, text, script)) return std::nullopt;
    command.PostEdit();
    // The first line takes the edited line's place; the lines a new block adds only its indentation.
    QString block = IndentBlock(script, Indentation(line));
    block.replace(0, Indentation(line).size(), line.left(prefix));
    const qsizetype firstBreak = block.indexOf('\n');
    block.insert(firstBreak < 0 ? block.size() : firstBreak, tail);
    return block;
}

QString DescribeLine(const QString& line, host::TCommandPool& commands)
{
    const QString statement = line.mid(PrefixLength(line));
    TDVThreadRunEdit* command = commands.ForProcedure(FirstWord(statement));
    TParamList params;
    if (!command || !host::ReadCommandLine(statement.left(CallEnd(statement)), command->Signature(), params)) return {};
    return command->GetDescription(command->Signature().name, params);
}

}  // namespace dv::workbench
