#pragma once
// One analysis function of the scope, run on the curve store as the "[FX:" tag chose it.
#include "scope/scopesettings.h"

#include <QString>

#include <optional>
#include <vector>

namespace dv::scope {

struct TFxOutcome {
    QString label;         // function label shown in the result area
    QString unit;
    QString channelLabel;  // FxChannel, or "A / B" for the phase shift
    std::optional<double> number;        // a scalar result
    std::optional<std::vector<double>> array;  // an array result (sent as Name{1}..Name{N-1})
    QString arrayText;     // result text of an array result ("im Array:"), empty: cleared
    bool spectrum = false;  // the array is a spectrum for the second scope
    double spectrumSpacing = 0;
};

// Runs settings.FxFunction; fields it resolves are written back into settings. Raises
// TDravikException (or TDVRuntimeException for a field that must be an integer) on a fault.
TFxOutcome RunFunction(TDecodedSettings& settings);

}  // namespace dv::scope
