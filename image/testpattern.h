#pragma once
// Generated test pictures for stations and CI without a camera: ImageCapture's "pattern:" device.
#include <QImage>
#include <QPoint>
#include <QString>
#include <QStringList>

#include <optional>

namespace dv::image {

// "bars" (colour bars over a grey ramp), "grey" (middle grey in linear light), "checker"
// (a black and white checkerboard), 640 x 480; moved by shift (the picture's content moves right
// and down by x and y pixels, the pattern continuing past its old edge; at most kMaxPatternShift
// each way). Nothing for another name.
inline constexpr int kMaxPatternShift = 1000000;
std::optional<QImage> TestPattern(const QString& name, QPoint shift = {});
QStringList TestPatternNames();

}  // namespace dv::image
