#include "image/testpattern.h"

#include "image/linearlight.h"

#include <algorithm>
#include <array>

namespace dv::image {

namespace {
constexpr int kWidth = 640;
constexpr int kHeight = 480;

int FloorDiv(int a, int b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }
int FloorMod(int a, int b) { return a - b * FloorDiv(a, b); }

QRgb Bars(int x, int y)
{
    static constexpr std::array<QRgb, 8> kBars{0xffffff, 0xffff00, 0x00ffff, 0x00ff00,
                                               0xff00ff, 0xff0000, 0x0000ff, 0x000000};
    if (y < kHeight * 2 / 3) return kBars[static_cast<std::size_t>(FloorMod(FloorDiv(x, kWidth / 8), 8))];
    const int v = FloorMod(x, kWidth) * 255 / (kWidth - 1);
    return qRgb(v, v, v);
}

QRgb Grey(int, int)
{
    const int v = EncodeLinear(0.214);
    return qRgb(v, v, v);
}

QRgb Checker(int x, int y) { return (FloorDiv(x, 40) + FloorDiv(y, 40)) % 2 == 0 ? qRgb(255, 255, 255) : qRgb(0, 0, 0); }

struct TPattern {
    const char* name;
    QRgb (*pixel)(int x, int y);
};
constexpr std::array kPatterns{TPattern{"bars", &Bars}, TPattern{"grey", &Grey}, TPattern{"checker", &Checker}};
}  // namespace

std::optional<QImage> TestPattern(const QString& name, QPoint shift)
{
    for (const TPattern& p : kPatterns) {
        if (name.compare(QLatin1String(p.name), Qt::CaseInsensitive) != 0) continue;
        // Far enough to leave every pattern's period; near enough that x - shift stays in int.
        shift = QPoint(std::clamp(shift.x(), -kMaxPatternShift, kMaxPatternShift),
                       std::clamp(shift.y(), -kMaxPatternShift, kMaxPatternShift));
        QImage image(kWidth, kHeight, QImage::Format_RGB888);
        for (int y = 0; y < kHeight; ++y) {
            std::uint8_t* row = image.scanLine(y);
            for (int x = 0; x < kWidth; ++x) {
                const QRgb c = p.pixel(x - shift.x(), y - shift.y());
                row[3 * x] = static_cast<std::uint8_t>(qRed(c));
                row[3 * x + 1] = static_cast<std::uint8_t>(qGreen(c));
                row[3 * x + 2] = static_cast<std::uint8_t>(qBlue(c));
            }
        }
        return image;
    }
    return std::nullopt;
}

QStringList TestPatternNames()
{
    QStringList names;
    for (const TPattern& p : kPatterns) names << QLatin1String(p.name);
    return names;
}

}  // namespace dv::image
