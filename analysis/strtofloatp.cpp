#include "analysis/curvestore.h"

#include <QString>

#include <cmath>

namespace dv::analysis {

double StrToFloatP(const QString& s)
{
    QString t = s.trimmed();
    if (!t.contains('.')) t.replace(',', '.');
    bool ok = false;
    const double v = t.toDouble(&ok);
    // "inf" and "nan" are words, not numbers a user types for a level or a time.
    return ok && std::isfinite(v) ? v : 0.0;
}

}  // namespace dv::analysis
