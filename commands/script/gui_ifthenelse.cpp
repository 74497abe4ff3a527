#include "commands/script/gui_ifthenelse.h"

#include "commands/script/scriptlines.h"
#include "framework/dvtools.h"
#include "framework/editorform.h"
#include "framework/parser.h"
#include "framework/services.h"
#include "framework/translate.h"

namespace dv {

QString IfCondition(const QString& line)
{
    // Positions as the editor counts them: 0 when the word is missing, 1 for the first character.
    const qsizetype ifPos = line.indexOf(QLatin1String("IF"), 0, Qt::CaseInsensitive) + 1;
    const qsizetype thenPos = line.indexOf(QLatin1String("THEN"), 0, Qt::CaseInsensitive) + 1;
    // Characters ifPos + 2 .. thenPos - 2 (1-based), so the blank before THEN is left out.
    return Cut(line, ifPos + 1, thenPos - 2).trimmed();
}

bool ConditionParses(const QString& condition)
{
    return GetParser().GetParser()->ParseSingleExpression(condition) != nullptr;
}

TDVCmdIfThenElse::TDVCmdIfThenElse() : TDVFieldsCommand(DialogOf("TDVCmdIfThenElse")) {}

bool TDVCmdIfThenElse::EditCommand(int, int, QString&, QString& script)
{
    const bool isNew = IsNewLine(script);
    fields_.condition = IfCondition(script);
    if (!Form().ShowModal()) return false;
    script = Format(QStringLiteral("if %s then"), {fields_.condition});
    if (isNew) script += kLineBreak + QStringLiteral("911:else") + kLineBreak + QStringLiteral("912:end if;");
    return true;
}

QString TDVCmdIfThenElse::RecodeScript(const QString& script, TDVScriptImporter*) { return KzP(script).trimmed(); }

}  // namespace dv
