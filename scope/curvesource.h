#pragma once
// Curve sources: the text inside a curve slot tag ("1:[" ... "]") parsed into its form and
// modifiers, and drawn into a handle of the curve store. docs/scope.md describes each form.
#include "analysis/curvestore.h"

#include <QString>

namespace dv::scope {

enum class TSourceKind { Empty, File, Array, Point, Recording, Image };

struct TCurveSource {
    TSourceKind kind = TSourceKind::Empty;
    QString main;    // file path, array variable, x variable, or image row/column number
    QString second;  // separator code, sample rate, y variable, or image sample rate
    QChar channel;   // image: 'R', 'G' or 'B'
    bool row = true;  // image: a row ("-L:"), else a column ("-C:")
    QString offsetX, offsetY, factorX, factorY, name;
    bool operator==(const TCurveSource&) const = default;
};

TCurveSource ParseCurveSource(const QString& text);

// Fills handle (1..4) from the source text; the curve's name goes to name. A file, array or
// image source replaces the curve, a point source appends to it. Raises TDravikException with
// the message for the user. spectrumNext: the curve's spectrum is taken next, so its size is made
// ready while the curve loads.
void DrawCurve(analysis::TCurveStore& store, int handle, const QString& text, QString& name, bool spectrumNext = false);

}  // namespace dv::scope
