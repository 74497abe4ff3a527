#include <QString>

namespace dv::analysis {

// Reads a user-typed number: "," is the decimal separator unless the text holds a "."; an
// unreadable text gives 0, never an error.
double StrToFloatP(const QString& s)
{
    QString t = s.trimmed();
    if (!t.contains('.')) t.replace(',', '.');
    bool ok = false;
    const double v = t.toDouble(&ok);
    return ok ? v : 0.0;
}

}  // namespace dv::analysis
