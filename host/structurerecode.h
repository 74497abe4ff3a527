#pragma once
// The importer's pass over the lines of the script structure: a line in an older form goes through
// its structure command's RecodeScript, so that older branch lines of a case ("3:") come out in the
// current form ("select 3:") and an if line's decimal commas become points; every other line, and
// every line inside a "(*" comment, stays byte for byte.
#include <QString>

namespace dv::host {

class TCommandPool;

QString RecodeStructureLines(const QString& text, TCommandPool& commands);

}  // namespace dv::host
