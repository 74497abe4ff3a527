// Picture files as ImageLoad reads them (any format Qt's image readers know, BMP above all): a
// picture loads as 24-bit RGB or raises the command's failure, and no picture takes more than the
// reader allows for the file's size.
#include "framework/exceptions.h"
#include "image/bitmapfile.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 256 * 1024) return -1;
    static const QString path = QStringLiteral("/tmp/dv-fuzz-bitmap-%1.bmp").arg(QCoreApplication::applicationPid());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) std::abort();
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    QImage image;
    try {
        image = dv::image::ReadBitmap(path);
    } catch (const dv::TDravikException&) {
        return 0;
    }
    if (image.format() != QImage::Format_RGB888 || image.isNull()) std::abort();
    const qint64 pixels = qint64{image.width()} * image.height();
    if (pixels * 4 > std::max<qint64>(100 * static_cast<qint64>(size), qint64{64} << 20)) std::abort();
    return 0;
}
