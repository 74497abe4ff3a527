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

// The part of the library a command belongs to; the workbench's palette groups by it.
enum class TSubsystem {
    Text,       // string, number and array conversion
    Structure,  // editor-only commands writing loops, case, if-then-else and comments
    System,     // programs, files, INI files, named pipes, TCP
    Dialogs,    // message boxes, text and status output, file dialogs, HTML forms
    Scope,      // the oscilloscope window
    Image,      // the current image: capture, change, evaluation, load and save
    Host,       // the host's own windows (the laboratory view)
};

struct TCatalogueRow {
    const char* procedure;   // script procedure; "(loop)" and the like for structure commands
    const char* signature;   // the literal exactly as editor and parser see it; "" when none
    const char* commandClass;
    TBaseKind base;
    const char* dialogClass;  // "" when the command has no dialog
    int helpContext;          // 0 when the host chooses
    TSubsystem group;
};

std::span<const TCatalogueRow> Catalogue();
// The row of a procedure (compared without regard to case) or of a command class; nullptr if none.
const TCatalogueRow* FindProcedure(const QString& procedure);
const TCatalogueRow* FindCommandClass(const QString& commandClass);

}  // namespace dv
