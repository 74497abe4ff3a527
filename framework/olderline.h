#pragma once
// What a command's IsOlderLine looks at to tell a line of its older script form from a current
// call of the same procedure: the procedure name the line begins with, and markers that stand
// in the line itself rather than inside one of its string literals.
#include <QString>
#include <QStringList>

#include <initializer_list>

namespace dv {

// Whether the line begins (after blanks) with one of the names, in any case, and then "(".
bool BeginsWithCall(const QString& line, const QStringList& names);
// Whether the line is name(...) with the closing parenthesis on the line and no named argument:
// the shape the older ArrayToStr and StrToArray lines share with positional current calls.
bool IsPlainCall(const QString& line, const QString& name);
// The line with the characters inside its string literals replaced by blanks (the quotes stay),
// so that a marker found in it is written in the line, not in a text it passes on.
QString OutsideStrings(const QString& line);
// Whether the text holds one of the markers.
bool ContainsAny(const QString& text, std::initializer_list<const char*> markers,
                 Qt::CaseSensitivity cs = Qt::CaseSensitive);

}  // namespace dv
