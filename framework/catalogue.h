#pragma once
// The catalogue of every command of the library: script procedure, signature literal, classes,
// host base class, help context. The registry (registry.h) says which rows are built.
#include <QString>

#include <span>

namespace dv {

inline constexpr const char* kPackageDescription = "Dravik Befehlsbibliothek";

enum class TBaseKind {
    Func,    // TDVFuncRunEdit: Run on the interpreter's thread
    Thread,  // TDVThreadRunEdit: RunThreaded on a worker thread
    Edit,    // TDVRunEdit: editor-only structure command
};

struct TCatalogueRow {
    const char* procedure;   // script procedure; "(loop)" and the like for structure commands
    const char* signature;   // the literal exactly as editor and parser see it; "" when none
    const char* commandClass;
    TBaseKind base;
    const char* dialogClass;  // "" when the command has no dialog
    int helpContext;          // 0 when the host chooses
    const char* section;      // chapter of the command reference; "" for commands without one
};

std::span<const TCatalogueRow> Catalogue();
// The row of a procedure (compared without regard to case) or of a command class; nullptr if none.
const TCatalogueRow* FindProcedure(const QString& procedure);
const TCatalogueRow* FindCommandClass(const QString& commandClass);

}  // namespace dv
