#include "analysis/curvestore.h"

#include <QString>

#include <cmath>

namespace dv::analysis {

std::optional<double> ReadFloatP(const QString& s)
{
    QString t = s.trimmed();
    if (!t.contains('.')) t.replace(',', '.');
    bool ok = false;
    const double v = t.toDouble(&ok);
    if (!ok || !std::isfinite(v)) return std::nullopt;
    return v;
}

double StrToFloatP(const QString& s) { return ReadFloatP(s).value_or(0.0); }

}  // namespace dv::analysis
