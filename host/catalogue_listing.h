#pragma once
// Text of the catalogue as dvrun --list prints it.
#include <QString>

namespace dv {

// One line per available command: procedure and signature literal; unavailable rows are marked.
QString CatalogueListing(bool includeUnavailable);

}  // namespace dv
