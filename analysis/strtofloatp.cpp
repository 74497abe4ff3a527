#include "analysis/curvestore.h"

#include <QString>

namespace dv::analysis {



double StrToFloatP(const QString& s)
{
    QString t = s.trimmed();
    if (!t.contains('.')) t.replace(',', '.');
    bool ok = false;
    const double v = t.toDouble(&ok);
    return ok ? v : 0.0;
}

}  // namespace dv::analysis
