#include "image/brightness.h"

#include "image/evaluation.h"
#include "image/linearlight.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace dv::image {

namespace {
constexpr std::array<double, 3> kWeights{0.2126, 0.7152, 0.0722};

// Calls f(pixel) for every pixel of the clipped area.
template <class F>
void ForEachPixel(QImage& image, const QRect& area, F f)
{
    const QRect r = ClipTo(area, image.size());
    for (int y = r.y(); y < r.y() + r.height(); ++y) {
        std::uint8_t* p = image.scanLine(y) + 3 * r.x();
        for (int x = 0; x < r.width(); ++x, p += 3) f(p);
    }
}

// The mean luminance the area gets when every linear channel value is multiplied by k and
// clipped at 1; histogram holds how many pixels have each colour.
struct TColourCount {
    std::array<double, 3> linear;
    double count;
};
double ScaledMean(const std::vector<TColourCount>& colours, double pixels, double k)
{
    double sum = 0;
    for (const TColourCount& c : colours) {
        double y = 0;
        for (int i = 0; i < 3; ++i) y += kWeights[i] * std::min(1.0, k * c.linear[i]);
        sum += y * c.count;
    }
    return sum / pixels;
}
}  // namespace

double Luminance(const std::uint8_t* rgb)
{
    return kWeights[0] * Linear(rgb[0]) + kWeights[1] * Linear(rgb[1]) + kWeights[2] * Linear(rgb[2]);
}

double MeanLuminance(const QImage& image, const QRect& area)
{
    const QRect r = ClipTo(area, image.size());
    if (r.isEmpty()) return 0;
    double sum = 0;
    for (int y = r.y(); y < r.y() + r.height(); ++y) {
        const std::uint8_t* p = image.constScanLine(y) + 3 * r.x();
        for (int x = 0; x < r.width(); ++x, p += 3) sum += Luminance(p);
    }
    return sum / (static_cast<double>(r.width()) * r.height());
}

void MakeGrey(QImage& image, const QRect& area)
{
    ForEachPixel(image, area, [](std::uint8_t* p) { p[0] = p[1] = p[2] = EncodeLinear(Luminance(p)); });
}

void SetMeanLuminance(QImage& image, const QRect& area, double target)
{
    const double mean = MeanLuminance(image, area);
    if (mean <= 0) return;
    // Pictures hold few distinct colours compared with pixels; the clipped mean is computed
    // over the distinct colours while the factor is sought.
    QHash<QRgb, double> counts;
    double pixels = 0;
    ForEachPixel(image, area, [&](std::uint8_t* p) {
        counts[qRgb(p[0], p[1], p[2])] += 1;
        pixels += 1;
    });
    std::vector<TColourCount> colours;
    colours.reserve(counts.size());
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        const QRgb c = it.key();
        colours.push_back({{Linear(qRed(c)), Linear(qGreen(c)), Linear(qBlue(c))}, it.value()});
    }
    // Clipping at white only lowers the mean: target / mean is the least factor that can reach the
    // target; a larger one, found by doubling, is bisected down to the one that just reaches it.
    double low = target / mean;
    double k = low;
    if (ScaledMean(colours, pixels, low) < target) {
        double high = 2 * low;
        for (int i = 0; i < 64 && ScaledMean(colours, pixels, high) < target; ++i) high *= 2;
        for (int i = 0; i < 60 && high - low > 1e-12 * high; ++i) {
            const double middle = 0.5 * (low + high);
            (ScaledMean(colours, pixels, middle) < target ? low : high) = middle;
        }
        k = high;
    }
    // A byte holds the wanted light only to the nearest of 256 steps, and an area of one grey
    // would be off by the same step everywhere (near middle grey about 1.7 %). So each channel's
    // rounding error, in linear light, is carried on to the same channel of the next pixel of the
    // area, row by row (error diffusion): the area's mean keeps the light the factor gives, its
    // pixels spread over the two bytes next to the wanted light. A channel without light has
    // nothing to scale; it stays dark and hands the error on.
    std::array<double, 3> carry{};
    ForEachPixel(image, area, [k, &carry](std::uint8_t* p) {
        for (int i = 0; i < 3; ++i) {
            if (p[i] == 0) continue;
            const double wanted = std::min(1.0, k * Linear(p[i])) + carry[i];
            p[i] = EncodeLinear(wanted);
            carry[i] = wanted - Linear(p[i]);
        }
    });
}

}  // namespace dv::image
