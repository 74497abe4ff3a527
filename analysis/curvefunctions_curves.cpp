// Measurements that produce or change whole curves: difference curve, correction by a table,
// envelope comparison.
#include "analysis/curvefunctions.h"

#include "analysis/kernels.h"
#include "framework/exceptions.h"
#include "framework/translate.h"
#include "scope/envelopefile.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <optional>

namespace dv::analysis {

namespace {
std::size_t U(int i) { return static_cast<std::size_t>(i); }

// The value in steps of 1/10000, rounded half to even (the rounding mode is never changed here).
// Kept in a double: exact for every value a curve can usefully hold, and no integer overflow.
double TenThousandths(double v) { return std::nearbyint(v * 10000); }
}  // namespace

TMemArray Differenzkurve(unsigned char Curve, double Factor)
{
    if (Factor == 0) Factor = 1;
    TCurveStore& store = ScopeStore();
    int from = 0, to = 0;
    store.GetCurveZoomParams(Curve, from, to);
    const auto y = store.Y(Curve);
    TMemArray result;
    // Element i sits at the curve's own index, so the array must reach index To - 1.
    result.a.assign(U(std::max(to - from + 3, to)), 0.0);
    for (int i = from; i <= to - 1; ++i) {
        const double d = TenThousandths(y[U(i + 1)]) - TenThousandths(y[U(i)]);
        result.a[U(i)] = d * Factor / 10000;
    }
    return result;
}

namespace {
struct TCorrectionRow {
    double x;
    double y;
};

// Rows "x;y" of a correction table; lines that do not hold two numbers are skipped.
std::vector<TCorrectionRow> ReadCorrectionTable(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        throw TDravikException(Format(_("Die Datei %s kann nicht gelesen werden"), {fileName}));
    }
    std::vector<TCorrectionRow> rows;
    QTextStream in(&file);
    in.setEncoding(QStringConverter::Latin1);
    while (!in.atEnd()) {
        const QString line = in.readLine();
        const qsizetype semicolon = line.indexOf(';');
        const QString before = semicolon < 0 ? line : line.left(semicolon);
        const QString after = semicolon < 0 ? QString() : line.mid(semicolon + 1);
        // Every "," counts as a decimal point here, so "1,000.5" holds no number.
        const std::optional<double> x = ReadFloatP(QString(before).replace(',', '.'));
        const std::optional<double> y = ReadFloatP(QString(after).replace(',', '.'));
        if (x && y) rows.push_back({*x, *y});
    }
    return rows;
}
}  // namespace

bool KurvenKorrektur(unsigned char Curve, const QString& FileName)
{
    if (!QFileInfo::exists(FileName)) return true;
    const std::vector<TCorrectionRow> rows = ReadCorrectionTable(FileName);
    TCurveStore& store = ScopeStore();
    int from = 0, to = 0;
    store.GetCurveZoomParams(Curve, from, to);
    store.ClearCrosses();
    const auto y = store.MutableY(Curve);
    for (int i = from; i <= to; ++i) {
        const double v = y[U(i)];
        for (std::size_t r = 0; r + 1 < rows.size(); ++r) {
            const TCorrectionRow& lo = rows[r];
            const TCorrectionRow& hi = rows[r + 1];
            if (lo.x <= v && v <= hi.x) {
                // Both differences are scaled by 1/100; the tables in use are made for this form.
                const double c = (v - lo.x) * (hi.x - lo.x) / 100 * (hi.y - lo.y) / 100 + lo.y;
                y[U(i)] = v - c;
                break;
            }
        }
    }
    return true;
}

bool Huellkurvenvergleich(unsigned char Curve, const QString& FileName)
{
    TCurveStore& store = ScopeStore();
    try {
        scope::LoadHK(store, FileName);
    } catch (const TDravikException&) {
        return false;
    }
    store.ClearCrosses();
    int from = 0, to = 0;
    store.GetCurveZoomParams(Curve, from, to);
    const auto x = store.X(Curve);
    const auto y = store.Y(Curve);
    for (const int envelope : {kUpperEnvelope, kLowerEnvelope}) {
        const int i = kernels::FirstEnvelopeViolation(x, y, from, to, store.X(envelope),
                                                      store.Y(envelope), envelope == kUpperEnvelope);
        if (i >= 0) {
            store.SetCross(y[U(i)], x[U(i)]);
            return false;
        }
    }
    return true;
}

}  // namespace dv::analysis
