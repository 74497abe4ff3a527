#pragma once
// The importer's pass over the lines of the script structure (loops, case, if, comments): each
// goes through its structure command's RecodeScript, so that older branch lines of a case ("3:")
// come out in the current form ("select 3:").
#include <QString>

namespace dv::host {

class TCommandPool;

QString RecodeStructureLines(const QString& text, TCommandPool& commands);

}  // namespace dv::host
