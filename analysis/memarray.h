#pragma once
// A whole curve as the scope hands it to the filter and spectrum functions: samples and the rate
// that belongs to them.
#include <vector>

namespace dv::analysis {

struct TMemArray {
    std::vector<double> a;  // samples
    double rate = 0;        // sample rate of a (for a spectrum: the spacing of its lines)
};

}  // namespace dv::analysis
