#include "workbench/calledit.h"

#include "framework/catalogue.h"
#include "framework/registry.h"
#include "host/commandpool.h"
#include "host/importer.h"

#include <QRegularExpression>

#include <array>

namespace dv::workbench {

namespace {

struct TStructureWord {
    const char* word;  // first word of the line, lower case
    const char* commandClass;
};

// clang-format off
constexpr std::array kStructureWords{
    TStructureWord{"if", "TDVCmdIfThenElse"},
    TStructureWord{"for", "TDVCmdLoop"},
    TStructureWord{"while", "TDVCmdLoop"},
    TStructureWord{"repeat", "TDVCmdLoop"},
    TStructureWord{"case", "TDVCmdCase"},
    TStructureWord{"select", "TDVCmdCase"},
    TStructureWord{"//", "TDVCmdComment"},
    TStructureWord{"(*", "TDVCmdComment"},
};
// clang-format on

QString FirstWord(const QString& line)
{
    static const QRegularExpression word(QStringLiteral("^\\s*(?:\\d+:(?!=))?\\s*(//|\\(\\*|\\w+)"));
    return word.match(line).captured(1);
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
    const QString word = FirstWord(line);
    if (word.isEmpty()) return {};
    if (TDVThreadRunEdit* call = commands.ForProcedure(word)) return {call, nullptr};
    for (const TStructureWord& s : kStructureWords) {
        if (word.compare(QLatin1String(s.word), Qt::CaseInsensitive) != 0) continue;
        const TCatalogueRow* row = FindCommandClass(QString::fromLatin1(s.commandClass));
        if (row && IsAvailable(*row)) return {nullptr, commands.ForClass(QString::fromLatin1(s.commandClass))};
    }
    return {};
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
    TParamList params;
    if (!host::ReadCommandLine(line, command.Signature(), params)) return std::nullopt;
    if (!command.Edit(params)) return std::nullopt;
    command.PostEdit();
    return Indentation(line) + host::WriteCommandLine(command.Signature(), params);
}

std::optional<QString> EditStructure(TDVRunEdit& command, int lineNumber, const QString& line)
{
    if (line.trimmed().isEmpty()) command.SetDefaults();
    QString text = line;
    QString script = line;
    if (!command.EditCommand(0, lineNumber, text, script)) return std::nullopt;
    command.PostEdit();
    return IndentBlock(script, Indentation(line));
}

QString DescribeLine(const QString& line, host::TCommandPool& commands)
{
    TDVThreadRunEdit* command = commands.ForProcedure(FirstWord(line));
    TParamList params;
    if (!command || !host::ReadCommandLine(line, command->Signature(), params)) return {};
    return command->GetDescription(command->Signature().name, params);
}

}  // namespace dv::workbench
