#pragma once
// How ImageChange sets an area's brightness: in linear light, so that "half as bright" means
// half the light, not half the byte value.
#include <QImage>
#include <QRect>

#include <cstdint>

namespace dv::image {

// Linear-light luminance of a pixel (Rec. 709 weights), 0..1.
double Luminance(const std::uint8_t* rgb);
// Mean luminance of the area (clipped), 0..1; 0 for an empty area.
double MeanLuminance(const QImage& image, const QRect& area);
// Turns the area (clipped) grey: each pixel its luminance in all three channels.
void MakeGrey(QImage& image, const QRect& area);
// Scales the area's pixels in linear light, clipped at white, so that their mean luminance
// becomes target (0..1). Each channel's rounding to a byte is carried on to the next pixel, so
// the mean is met also where the area has few levels. Black (a channel at 0) stays black.
void SetMeanLuminance(QImage& image, const QRect& area, double target);

}  // namespace dv::image
