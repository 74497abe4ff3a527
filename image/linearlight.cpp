#include "image/linearlight.h"

#include <algorithm>
#include <cmath>

namespace dv::image {

namespace {
std::array<double, 256> BuildTable()
{
    std::array<double, 256> table{};
    for (int v = 0; v < 256; ++v) {
        table[v] = v < 11 ? v / 3294.6 : std::pow((v / 255.0 + 0.055) / 1.055, 2.4);
    }
    return table;
}
}  // namespace

const std::array<double, 256>& LinearLight()
{
    static const std::array<double, 256> table = BuildTable();
    return table;
}

std::uint8_t EncodeLinear(double linear)
{
    // The nearest table entry, so that decoding what was encoded gives the value back exactly.
    const auto& table = LinearLight();
    const double x = std::clamp(linear, 0.0, 1.0);
    const auto above = std::lower_bound(table.begin(), table.end(), x);
    if (above == table.begin()) return 0;
    if (above == table.end()) return 255;
    const auto below = above - 1;
    return static_cast<std::uint8_t>((x - *below <= *above - x ? below : above) - table.begin());
}

}  // namespace dv::image
