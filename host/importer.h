#pragma once
// Script lines of library commands: the current line form written from a signature and a parameter
// list and read back, and the importer that turns lines in a command's older form into current ones.
//
// Current form: Procedure(Name := text, Name := text); every parameter of the list in list order,
// by name, each argument text without surrounding blanks; trailing parameters whose text equals
// their signature default are left out, and reading the line back restores them.
#include "framework/runedit.h"

namespace dv::host {

class TCommandPool;

QString WriteCommandLine(const TDVSignature& sig, const TParamList& params);
// The arguments of a current-form line (named or positional) into the list, then the defaults of
// the parameters it leaves out; false when the line is no call of sig's procedure.
bool ReadCommandLine(const QString& line, const TDVSignature& sig, TParamList& params);
// The argument texts between a call's parentheses, split at the commas outside quotes and brackets.
QStringList SplitArguments(const QString& text);
// A script with every line in a command's older form rewritten in the current form; other lines,
// and lines already in the current form, are kept as they are.
QString ConvertScript(const QString& text, TCommandPool& commands);

}  // namespace dv::host
