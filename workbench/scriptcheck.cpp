#include "workbench/scriptcheck.h"

#include "host/program.h"
#include "host/scriptparser.h"

namespace dv::workbench {

TScriptCheck CheckScript(const QString& text, host::TCommandPool& commands)
{
    host::TProgram program;
    host::TScriptParser parser(program, commands);
    parser.ParseProgram(text);
    TScriptCheck check;
    for (const host::TParseError& e : program.errors) check.errors.push_back({e.line, e.column, e.message});
    for (int slot = 0; slot < program.globals.Size(); ++slot) check.globals << program.globals.Symbol(slot).name;
    check.globalScope = program.globals;
    return check;
}

}  // namespace dv::workbench
