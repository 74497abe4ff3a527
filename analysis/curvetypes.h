#pragma once
// Types that hand curves and measurement modes between the scope and the curve functions.
#include "analysis/memarray.h"

namespace dv::analysis {

enum TPeakMode { PeakMin, PeakMax, PeakDiff };

enum TImpulsMode { imTime, imFreq, imPhase, imCount, imDutyCycle };

}  // namespace dv::analysis
