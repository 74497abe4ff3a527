#pragma once
// Writing and re-editing script lines through the commands' dialogs. A library call is written
// from its signature and parameter list in the current line form (the writer the converter uses);
// a structure command writes its block itself from the current line.
//
// An edited line keeps what the command does not own: its indentation and editor marker ("93:")
// in front, and behind the call or block head whatever follows on the line (a comment, further
// statements).
#include "framework/runedit.h"

#include <optional>

namespace dv::host {
class TCommandPool;
}

namespace dv::workbench {

// What a script line is to the editor: a call of a built library command, a line a structure
// command edits (if, loops with their until and end lines, case, comments), or neither.
struct TLineCommand {
    TDVThreadRunEdit* call = nullptr;
    TDVRunEdit* structure = nullptr;
    explicit operator bool() const { return call || structure; }
};

TLineCommand CommandOfLine(const QString& line, host::TCommandPool& commands);

// SetDefaults and the dialog; on OK the new call line. nullopt when cancelled.
std::optional<QString> InsertCall(TDVThreadRunEdit& command);
// The line's arguments into a parameter list, the dialog on it; on OK the rewritten line.
// nullopt when cancelled or when the line is no call of command.
std::optional<QString> EditCall(TDVThreadRunEdit& command, const QString& line);
// A structure command's editor on the line (empty for a new block); on OK its lines joined by
// '\n', the first in the line's place, the others indented as the line was.
std::optional<QString> EditStructure(TDVRunEdit& command, int lineNumber, const QString& line);
// The block's lines (broken at CR LF or LF) joined by '\n', each after the indentation.
QString IndentBlock(const QString& block, const QString& indentation);
// The blanks and tabs the line begins with.
QString Indentation(const QString& line);
// The command's one-line description of a call line; empty when the line is no call.
QString DescribeLine(const QString& line, host::TCommandPool& commands);

}  // namespace dv::workbench
