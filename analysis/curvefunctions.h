#pragma once
// The measurements the scope offers on a recorded curve. Each reads curve c (handle c) of the
// scope's curve store, measures only the curve's zoomed range (GetCurveZoomParams) and marks what
// it found with crosses. One analysis at a time: the functions share the unit's range pair.
#include "analysis/curvefunctions_filters.h"
#include "analysis/curvefunctions_spectrum.h"
#include "analysis/curvestore.h"
#include "analysis/curvetypes.h"

#include <QString>

namespace dv::analysis {

double Zeitdifferenz(int Curve, double StartLevel, double StopLevel, bool StartRising,
                     bool StopRising, bool StartNeedsEdge, int Count, TImpulsMode Mode);
// Modes 0 and 1 measure the zoomed range; above 1 the range is narrowed to whole periods.
double KurvenEffektivwert(int Curve, double Offset, unsigned char Mode);
double KurvenOffset(int Curve);
double KurvenMittelwert(int Curve);
// Phase of CurveB against CurveA in degrees; 0 when no period or no edge is found.
double Phasenverschiebung(unsigned char CurveA, unsigned char CurveB, int Periods);
// Extremum false: the smallest/largest non-zero value or their difference. Extremum true: the
// time of the first local extremum (Tolerance: window in X, Epsilon: value tolerance), -2.0 when
// there is none.
double Peak(unsigned char Curve, TPeakMode Mode, bool Extremum, double Tolerance, double Epsilon);
// YGiven: the time at which the curve reaches Value; otherwise the value at time Value. NaN when
// no sample pair matches.
double Query_XY(unsigned char Curve, bool YGiven, double Value);
TMemArray Differenzkurve(unsigned char Curve, double Factor);
bool KurvenKorrektur(unsigned char Curve, const QString& FileName);
// Loads the envelope file into handles 5 and 6 and tests the curve against it; true = inside.
bool Huellkurvenvergleich(unsigned char Curve, const QString& FileName);

}  // namespace dv::analysis
