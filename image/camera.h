#pragma once
// One frame from a camera through Qt Multimedia.
#include <QImage>
#include <QString>
#include <QStringList>

namespace dv::image {

// The cameras there are: "description (id)" each.
QStringList CameraNames();
// A frame of the camera whose description or id is device ("" the default camera), with the
// exposure time (ms) and colour temperature (K) set manually where they are not 0. Raises
// TDravikException when there is no such camera (listing those there are) or it gives no frame.
QImage GrabCameraFrame(const QString& device, double exposureMs, int kelvin);

}  // namespace dv::image
