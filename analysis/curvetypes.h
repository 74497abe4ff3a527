#pragma once
// Types that hand curves and measurement modes between the scope and the curve functions.
#include <vector>

namespace dv::analysis {

// A whole curve: its samples and the sample rate that belongs to them.
struct TMemArray {
    std::vector<double> a;
    double rate = 0;
};

enum TPeakMode { PeakMin, PeakMax, PeakDiff };

enum TImpulsMode { imTime, imFreq, imPhase, imCount, imDutyCycle };

}  // namespace dv::analysis
