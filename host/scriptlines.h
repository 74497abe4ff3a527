#pragma once
// Script text line by line, as the importer and the structure recoding read it: a line's marker
// and indentation, its statement and trailing comment, where "(*" comments and brackets carry on
// to the next line, and the names a script declares.
#include "framework/values.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace dv::host {

// A line's editor marker and indentation ("  93:").
qsizetype PrefixLength(const QString& line);

// A line taken apart: indentation and editor marker, the statement, a trailing "//" comment with
// the blanks before it, and the carriage return of a CRLF file.
struct TLineParts {
    QString prefix;
    QString statement;
    QString comment;
    QString cr;
    QString Joined(const QString& statement) const { return prefix + statement + comment + cr; }
};
// Older texts may hold "//" themselves (paths, addresses): a comment starts at a "//" outside
// strings where the statement before it is complete (it ends with ";" or ")"), or where it stands
// after a blank outside every bracket; a "(*" comment only after a complete statement.
TLineParts SplitLine(const QString& line);

// What a line leaves open for the next: a "(*" comment, and brackets of a statement that goes on.
struct TLineState {
    bool inComment = false;
    int depth = 0;  // "(" and "[" not yet closed
};
TLineState ScanLine(const QString& line, TLineState state);

// The variables a script declares ("var" lines, procedure parameters, PROJEKTPFAD) with their kinds,
// by lower-case name, and its own procedures' names in lower case.
struct TScriptNames {
    QHash<QString, TValueKind> variables;
    QSet<QString> procedures;
};
TScriptNames ScriptNames(const QStringList& lines);

}  // namespace dv::host
