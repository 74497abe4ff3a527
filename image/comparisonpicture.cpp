#include "image/comparisonpicture.h"

#include "image/evaluation.h"
#include "image/linearlight.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace dv::image {

namespace {

// The current image laid over the reference's frame: pixel (x, y) shows current (x + dx, y + dy).
QImage Aligned(const QImage& current, QSize size, QPoint offset)
{
    QImage out(size, QImage::Format_RGB888);
    out.fill(Qt::black);
    QPainter painter(&out);
    painter.drawImage(-offset, current);
    return out;
}

QImage HeatMap(const QImage& reference, const QImage& aligned)
{
    QImage out(reference.size(), QImage::Format_RGB32);
    const auto& t = LinearLight();
    for (int y = 0; y < reference.height(); ++y) {
        const std::uint8_t* a = reference.constScanLine(y);
        const std::uint8_t* b = aligned.constScanLine(y);
        auto* row = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < reference.width(); ++x, a += 3, b += 3) {
            double q = 0;
            for (int c = 0; c < 3; ++c) q += (t[a[c]] - t[b[c]]) * (t[a[c]] - t[b[c]]);
            row[x] = HeatColour(std::sqrt(q / 3));
        }
    }
    return out;
}

}  // namespace

QRgb HeatColour(double difference)
{
    // Three ramps of equal length; small differences get most of the colour range.
    const double v = std::clamp(std::sqrt(std::clamp(difference, 0.0, 1.0)) * 3.0, 0.0, 3.0);
    const int r = static_cast<int>(std::lround(255 * std::min(v, 1.0)));
    const int g = static_cast<int>(std::lround(255 * std::clamp(v - 1.0, 0.0, 1.0)));
    const int b = static_cast<int>(std::lround(255 * std::clamp(v - 2.0, 0.0, 1.0)));
    return qRgb(r, g, b);
}

QImage ComparisonPicture(const QImage& reference, const QImage& current, const QRect& area, QPoint offset)
{
    const QImage ref = reference.convertToFormat(QImage::Format_RGB888);
    const QImage aligned = Aligned(current.convertToFormat(QImage::Format_RGB888), ref.size(), offset);
    const QImage panels[] = {ref, aligned, HeatMap(ref, aligned)};
    const int gap = 8;
    QImage picture(3 * ref.width() + 2 * gap, ref.height(), QImage::Format_RGB32);
    picture.fill(Qt::darkGray);
    QPainter painter(&picture);
    const QRect frame = ClipTo(area, ref.size());
    for (int i = 0; i < 3; ++i) {
        const QPoint origin(i * (ref.width() + gap), 0);
        painter.drawImage(origin, panels[i]);
        painter.setPen(QPen(Qt::green, 1));
        if (!frame.isEmpty()) painter.drawRect(frame.translated(origin).adjusted(0, 0, -1, -1));
    }
    return picture;
}

}  // namespace dv::image
