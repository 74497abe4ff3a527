#pragma once
// What the editor-only structure commands share: they cut script lines at keyword positions and
// write blocks whose lines are joined by CR LF.
#include "framework/scanner.h"

#include <QString>

namespace dv {

// The line break between the lines of a block a structure command inserts.
inline const QString kLineBreak = QStringLiteral("\r\n");

// The dialog class the catalogue lists for a command class.
QString DialogOf(const char* commandClass);
// An empty line: the editor asks for a new block there. A line of blanks is not empty: it is
// read as the line it is (a loop refuses it, as it begins with no loop word).
bool IsNewLine(const QString& line);
// line[from, to), both ends clamped to the line; empty when to <= from.
QString Cut(const QString& line, qsizetype from, qsizetype to);
// The text after the first start up to the first stop after it (both found without regard to
// case), without surrounding blanks; empty when either is missing.
QString Between(const QString& line, QLatin1String start, QLatin1String stop);
// The kind of a line's first token, read by the host's scanner (editor markers dropped).
TTokenType FirstToken(const QString& line);

}  // namespace dv
