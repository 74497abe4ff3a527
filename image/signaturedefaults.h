#pragma once
// A new image command starts with the defaults its signature gives (Brightness 21.4,
// Displacement 0, Rect [] ...), so that its dialog shows them.
#include "framework/runedit.h"

namespace dv::image {

void SetSignatureDefaults(TDVThreadRunEdit& command);

}  // namespace dv::image
