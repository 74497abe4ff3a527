#include "workbench/scriptcheck.h"

#include "framework/scanner.h"
#include "host/program.h"
#include "host/scriptparser.h"

#include <utility>

namespace dv::workbench {

namespace {

// The lines of each procedure: a heading is "procedure" not preceded by "end", its last line
// the "end procedure" that follows. Procedures do not nest; an open one ends with the text.
std::vector<std::pair<int, int>> ProcedureLines(const QString& text)
{
    std::vector<std::pair<int, int>> ranges;
    TScanner scanner(text);
    TTokenType previous = TTokenType::EndOfText;
    int open = 0;
    qsizetype failures = 0;
    for (;;) {
        TToken t;
        try {
            t = scanner.GetNextToken();
        } catch (const TDVSyntaxError&) {
            // The scanner has moved past the malformed token; the bound only guards against one
            // that would not.
            if (++failures > text.size()) break;
            continue;
        }
        if (t.type == TTokenType::EndOfText) break;
        if (t.type == TTokenType::kwProcedure && previous == TTokenType::kwEnd && open) {
            ranges.emplace_back(open, t.line);
            open = 0;
        } else if (t.type == TTokenType::kwProcedure && previous != TTokenType::kwEnd) {
            open = t.line;
        }
        previous = t.type;
    }
    if (open) ranges.emplace_back(open, static_cast<int>(text.count('\n')) + 1);
    return ranges;
}

void DeclareAll(host::TScope& into, const host::TScope& from)
{
    for (int slot = 0; slot < from.Size(); ++slot) into.Declare(from.Symbol(slot));
}

}  // namespace

QStringList Names(const host::TScope& scope)
{
    QStringList names;
    for (int slot = 0; slot < scope.Size(); ++slot) names << scope.Symbol(slot).name;
    return names;
}

host::TScope TScriptCheck::ScopeAt(int line) const
{
    host::TScope scope;
    DeclareAll(scope, globalScope);
    for (const TProcedureNames& p : procedures) {
        // A local of the same name as a global stays one name: for parsing that is all it needs.
        if (line >= p.first && line <= p.last) DeclareAll(scope, p.names);
    }
    return scope;
}

TScriptCheck CheckScript(const QString& text, host::TCommandPool& commands)
{
    host::TProgram program;
    host::TScriptParser parser(program, commands);
    parser.ParseProgram(text);
    TScriptCheck check;
    for (const host::TParseError& e : program.errors) check.errors.push_back({e.line, e.column, e.message});
    check.globals = Names(program.globals);
    DeclareAll(check.globalScope, program.globals);
    for (const auto& [first, last] : ProcedureLines(text)) {
        TProcedureNames names;
        names.first = first;
        names.last = last;
        for (const host::TProcedure& p : program.procedures) {
            if (p.defined && p.line == first) DeclareAll(names.names, p.scope);
        }
        check.procedures.push_back(std::move(names));
    }
    return check;
}

}  // namespace dv::workbench
