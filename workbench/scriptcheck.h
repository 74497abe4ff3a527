#pragma once
// What the editor learns from reading the script without running it: the syntax errors with their
// lines and the declared globals (offered as completions in the dialogs, and known to the parser
// that checks the conditions typed into the structure dialogs).
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

struct TScriptCheck {
    std::vector<TScriptIssue> errors;
    QStringList globals;  // as declared, PROJEKTPFAD first
    host::TScope globalScope;
};

TScriptCheck CheckScript(const QString& text, host::TCommandPool& commands);

}  // namespace dv::workbench
