#pragma once
// Light as the camera saw it: byte values decoded through the sRGB curve, so that comparing and
// scaling pictures works on light, not on the gamma-encoded bytes.
#include <array>
#include <cstdint>

namespace dv::image {

// The 256 linear values of the byte values 0..255, filled once.
const std::array<double, 256>& LinearLight();
inline double Linear(std::uint8_t v) { return LinearLight()[v]; }
// The byte whose linear value is nearest to linear (0..1, clipped), through the inverse curve.
std::uint8_t EncodeLinear(double linear);

}  // namespace dv::image
