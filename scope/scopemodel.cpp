#include "scope/scopemodel.h"

#include "analysis/curvestore.h"
#include "framework/dvtools.h"
#include "framework/intconvert.h"
#include "scope/scopeview.h"

namespace dv::scope {

void TScopeModel::ApplyScaling(const TDecodedSettings& s)
{
    const std::span<const double> xSteps = XDivisionSteps();
    const std::span<const double> ySteps = YDivisionSteps();
    // The steps were read as integers when decoding ("$12" is 18); the pixel positions are rounded
    // as the runtime rounds, halves to even.
    XDivStep = InInterval(0, static_cast<int>(xSteps.size()) - 1, TryStrToInt(s.ScaleFields[0]).value_or(0));
    YDivStep = InInterval(0, static_cast<int>(ySteps.size()) - 1, TryStrToInt(s.ScaleFields[1]).value_or(0));
    const double xOffset = analysis::StrToFloatP(s.ScaleFields[2]);
    const double yOffset = analysis::StrToFloatP(s.ScaleFields[3]);
    ZeroX = static_cast<int>(RoundHalfEven((kPlotWidth - 40) * s.ZeroPosX + 40 -
                                           xOffset * kPixelsPerDivision / xSteps[static_cast<std::size_t>(XDivStep)]));
    ZeroY = static_cast<int>(RoundHalfEven((kPlotHeight - 30) * s.ZeroPosY +
                                           yOffset * kPixelsPerDivision / ySteps[static_cast<std::size_t>(YDivStep)]));
}

TScopeModel& ScopeModel()
{
    static TScopeModel model;
    return model;
}

}  // namespace dv::scope
