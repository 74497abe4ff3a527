#include "scope/scopesettings.h"

namespace dv::scope {

void TDecodedSettings::ResetForDecode()
{
    TDecodedSettings fresh;
    fresh.FxSinadArg = FxSinadArg;
    fresh.FxSinadWindow = FxSinadWindow;
    fresh.ColorFields = ColorFields;
    fresh.ColorValues = ColorValues;
    fresh.ScaleFields = ScaleFields;
    fresh.ZeroPosX = ZeroPosX;
    fresh.ZeroPosY = ZeroPosY;
    *this = fresh;
}

TDecodedSettings& ScopeSettings()
{
    static TDecodedSettings settings;
    return settings;
}

}  // namespace dv::scope
