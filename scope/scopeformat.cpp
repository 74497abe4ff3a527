#include "scope/scopeformat.h"

#include <array>
#include <cmath>

namespace dv::scope {

namespace {
struct TPrefix {
    int exponent;
    const char* text;
};
constexpr std::array<TPrefix, 11> kPrefixes{{{-18, "a"}, {-15, "f"}, {-12, "p"}, {-9, "n"}, {-6, "µ"}, {-3, "m"},
                                             {0, ""}, {3, "k"}, {6, "M"}, {9, "G"}, {12, "T"}}};
}  // namespace

void Einheiten(double& value, QString& unit)
{
    if (value == 0 || !std::isfinite(value)) return;
    const int exponent = static_cast<int>(std::floor(std::log10(std::fabs(value)) / 3)) * 3;
    for (const TPrefix& p : kPrefixes) {
        if (p.exponent != exponent) continue;
        value /= std::pow(10.0, exponent);
        unit = QString::fromUtf8(p.text) + unit;
        return;
    }
}

QString FixedText(double value, int precision, int decimals)
{
    if (!std::isfinite(value)) return QString::number(value);
    const int integerDigits = value == 0 ? 1 : std::max(1, static_cast<int>(std::floor(std::log10(std::fabs(value)))) + 1);
    if (integerDigits > precision) return GeneralText(value, precision, 2);
    return QString::number(value, 'f', std::min(decimals, precision - integerDigits));
}

QString GeneralText(double value, int precision, int digits)
{
    if (!std::isfinite(value)) return QString::number(value);
    if (value == 0) return QStringLiteral("0");
    // The exponent after rounding to precision digits decides the notation.
    const QString scientific = QString::number(value, 'E', precision - 1);
    const qsizetype e = scientific.indexOf('E');
    const int exponent = scientific.mid(e + 1).toInt();
    if (exponent < -5 || exponent >= precision) {
        QString mantissa = scientific.left(e);
        if (mantissa.contains('.')) {
            while (mantissa.endsWith('0')) mantissa.chop(1);
            if (mantissa.endsWith('.')) mantissa.chop(1);
        }
        const QString sign = exponent < 0 ? QStringLiteral("-") : QStringLiteral("+");
        return mantissa + 'E' + sign + QStringLiteral("%1").arg(std::abs(exponent), digits, 10, QChar('0'));
    }
    QString fixed = QString::number(value, 'f', std::max(0, precision - 1 - exponent));
    if (fixed.contains('.')) {
        while (fixed.endsWith('0')) fixed.chop(1);
        if (fixed.endsWith('.')) fixed.chop(1);
    }
    return fixed;
}

QString ResultText(double value, const QString& unit, bool prefixMode)
{
    if (prefixMode && value != 0) {
        double scaled = value;
        QString prefixed = unit;
        Einheiten(scaled, prefixed);
        return FixedText(scaled, 12, 3) + ' ' + prefixed;
    }
    return GeneralText(value, 6, 2) + ' ' + unit;
}

}  // namespace dv::scope
