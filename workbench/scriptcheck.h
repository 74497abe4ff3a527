#pragma once
// What the editor learns from reading the script without running it: the syntax errors with their
// lines, the declared globals (offered as completions in the dialogs) and the names in reach at
// each line (known to the parser that checks the conditions typed into the structure dialogs).
#include "host/variables.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace dv::host {
class TCommandPool;
}

namespace dv::workbench {

struct TScriptIssue {
    int line;  // 1-based
    int column;
    QString message;
};

// A procedure's lines, from its heading to its "end procedure", and its own names: parameters
// first, then its locals.
struct TProcedureNames {
    int first = 0;
    int last = 0;
    host::TScope names;
};

struct TScriptCheck {
    std::vector<TScriptIssue> errors;
    QStringList globals;  // as declared, PROJEKTPFAD first
    host::TScope globalScope;
    std::vector<TProcedureNames> procedures;

    // The names a text written at the line may use: the globals and, inside a procedure, its
    // parameters and locals. One flat scope, for parsing only.
    host::TScope ScopeAt(int line) const;
};

TScriptCheck CheckScript(const QString& text, host::TCommandPool& commands);
// The names of a scope, in slot order.
QStringList Names(const host::TScope& scope);

}  // namespace dv::workbench
