#pragma once
// The one current image of the library: the image commands load, capture and change it, the
// scope reads rows and columns of it. 24-bit RGB; a reader gets a copy that no later replace can
// change under it.
#include <QImage>

namespace dv {

class CurrentImage {
public:
    // A copy of the current image (a null image when none was set yet).
    static QImage snapshot();
    // Makes image the current one, converted to QImage::Format_RGB888.
    static void replace(QImage image);
};

}  // namespace dv
