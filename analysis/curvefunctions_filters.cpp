#include "analysis/curvefunctions_filters.h"

#include "analysis/curvestore.h"

namespace dv::analysis {

std::vector<double> FilterCurve(int curve, TFilterResponse response, double frequency1, double frequency2,
                                double sampleRate, int order)
{
    if (sampleRate > 1000000.0) {
        sampleRate /= 1000.0;
        frequency1 /= 1000.0;
        frequency2 /= 1000.0;
    }
    const TSosCascade cascade = DesignButterworth(response, order, frequency1, frequency2, sampleRate);

    const TCurveStore& store = ScopeStore();
    int from = 0;
    int to = 0;
    store.GetCurveZoomParams(curve, from, to);
    const std::span<const double> y = store.Y(curve);
    if (to < from || from < 0 || static_cast<std::size_t>(to) >= y.size()) return {};
    const auto range = y.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from + 1));
    std::vector<double> result(range.size());
    RunCascade(cascade, range, result);
    return result;
}

std::vector<double> FuncLowPass(int curve, double frequency, double sampleRate, int order)
{
    return FilterCurve(curve, TFilterResponse::LowPass, frequency, 0, sampleRate, order);
}

std::vector<double> FuncHighPass(int curve, double frequency, double sampleRate, int order)
{
    return FilterCurve(curve, TFilterResponse::HighPass, frequency, 0, sampleRate, order);
}

std::vector<double> FuncBandPass(int curve, double frequency1, double frequency2, double sampleRate, int order)
{
    return FilterCurve(curve, TFilterResponse::BandPass, frequency1, frequency2, sampleRate, order);
}

}  // namespace dv::analysis
