#pragma once
// Hands the crosses a kernel found to the scope's curve store (internal to the curve functions).
#include "analysis/curvestore.h"
#include "analysis/kernels.h"

namespace dv::analysis::detail {

// One buffer reused by every call: the functions run one at a time, and edge searches on long
// curves would otherwise allocate per call.
inline kernels::Marks& EmptyMarks()
{
    static kernels::Marks marks;
    marks.clear();
    return marks;
}

inline void SetCrosses(TCurveStore& store, const kernels::Marks& marks)
{
    for (const TPoint& p : marks) store.SetCross(p.y, p.x);
}

}  // namespace dv::analysis::detail
