#include "scope/scopemodel.h"

#include "analysis/curvestore.h"
#include "framework/dvtools.h"
#include "scope/scopeview.h"

#include <cmath>

namespace dv::scope {

void TScopeModel::ApplyScaling(const TDecodedSettings& s)
{
    const std::span<const double> xSteps = XDivisionSteps();
    const std::span<const double> ySteps = YDivisionSteps();
    XDivStep = InInterval(0, static_cast<int>(xSteps.size()) - 1, s.ScaleFields[0].toInt());
    YDivStep = InInterval(0, static_cast<int>(ySteps.size()) - 1, s.ScaleFields[1].toInt());
    const double xOffset = analysis::StrToFloatP(s.ScaleFields[2]);
    const double yOffset = analysis::StrToFloatP(s.ScaleFields[3]);
    ZeroX = static_cast<int>(std::lround((kPlotWidth - 40) * s.ZeroPosX + 40 -
                                         xOffset * kPixelsPerDivision / xSteps[static_cast<std::size_t>(XDivStep)]));
    ZeroY = static_cast<int>(std::lround((kPlotHeight - 30) * s.ZeroPosY +
                                         yOffset * kPixelsPerDivision / ySteps[static_cast<std::size_t>(YDivStep)]));
}

TScopeModel& ScopeModel()
{
    static TScopeModel model;
    return model;
}

}  // namespace dv::scope
