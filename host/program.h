#pragma once
// A parsed script: its globals, its procedures and its main block, ready to run.
#include "host/statements.h"

#include <QHash>
#include <QStringList>

#include <deque>

namespace dv::host {

struct TParseError {
    int line;
    int column;
    QString message;
};

// The variable every script has: the project folder.
inline constexpr const char* kProjectPathVariable = "PROJEKTPFAD";

struct TProgram {
    TProgram() { projectPathSlot = globals.Declare({QString::fromLatin1(kProjectPathVariable), g_StringType}); }
    TProgram(const TProgram&) = delete;
    TProgram& operator=(const TProgram&) = delete;

    TScope globals;
    std::deque<TProcedure> procedures;
    QHash<QString, TProcedure*> procedureIndex;  // lower-case name
    TBlock main;
    std::vector<TParseError> errors;
    QStringList calledCommands;  // library procedures the script calls, as the catalogue spells them
    int projectPathSlot = 0;
};

}  // namespace dv::host
