#include "image/currentimage.h"

#include <mutex>

namespace dv {

namespace {
std::mutex g_mutex;
QImage g_image;
}  // namespace

QImage CurrentImage::snapshot()
{
    std::lock_guard lock(g_mutex);
    return g_image;  // implicitly shared: the copy detaches on the writer's side
}

void CurrentImage::replace(QImage image)
{
    if (!image.isNull() && image.format() != QImage::Format_RGB888) {
        image = image.convertToFormat(QImage::Format_RGB888);
    }
    std::lock_guard lock(g_mutex);
    g_image = std::move(image);
}

}  // namespace dv
