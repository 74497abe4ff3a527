#pragma once
// A picture of one comparison for a person to look at: the reference, the current image moved
// by the offset found, and a heat map of their difference in linear light, each with the area's
// frame, side by side.
#include <QImage>
#include <QPoint>
#include <QRect>

namespace dv::image {

QImage ComparisonPicture(const QImage& reference, const QImage& current, const QRect& area, QPoint offset);
// The heat colour of a per-pixel difference 0..1: black, red, yellow, white.
QRgb HeatColour(double difference);

}  // namespace dv::image
