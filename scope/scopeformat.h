#pragma once
// The result text of the scope: a number with its unit, plain or scaled to an SI prefix.
#include <QString>

namespace dv::scope {

// Scales value into 1 <= |value| < 1000 and puts the SI prefix in front of the unit
// (0.0123 "V" gives 12.3 "mV"); zero and values beyond the prefixes stay as they are.
void Einheiten(double& value, QString& unit);
// Fixed point with the given decimals, at most precision significant digits ("12.300").
QString FixedText(double value, int precision, int decimals);
// The shortest of fixed and scientific notation with precision significant digits; scientific
// ("1.5E-07", at least digits exponent digits) below 1e-5 and from 10^precision on.
QString GeneralText(double value, int precision, int digits);
// The text of a result: with prefixMode and a value other than zero scaled (Einheiten) and fixed
// with 3 decimals, else general with 6 significant digits; then a blank and the unit.
QString ResultText(double value, const QString& unit, bool prefixMode);

}  // namespace dv::scope
