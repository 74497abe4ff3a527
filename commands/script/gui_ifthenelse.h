#pragma once
// The if-then-else command: writes the head of a conditional statement, and for a new one the
// whole block, after the host parser has taken the condition.
#include "framework/runedit.h"

namespace dv {

struct TDVCmdIfThenElseFields {
    QString condition;
    bool operator==(const TDVCmdIfThenElseFields&) const = default;
};

// The condition of an if line: from just after the first "IF" to two characters before the first
// "THEN" (found without regard to case), without surrounding blanks. A line that lacks either gives
// what these positions cut out.
QString IfCondition(const QString& line);
// Whether the host parser reads the text as one expression. Raises TDravikException without a host.
bool ConditionParses(const QString& condition);

class TDVCmdIfThenElse : public TDVFieldsCommand<TDVRunEdit, TDVCmdIfThenElseFields> {
public:
    TDVCmdIfThenElse();

    // script: the edited line in; on OK "if <condition> then", and for an empty line the else and
    // end lines of a new statement after it.
    bool EditCommand(int x, int y, QString& text, QString& script) override;
    // The line with its decimal commas made points, without surrounding blanks.
    QString RecodeScript(const QString& script, TDVScriptImporter* importer) override;
    // The last condition stays in the dialog for the next new statement.
    void SetDefaults() override {}
};

}  // namespace dv
