#include "image/bitmapfile.h"

#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/translate.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace dv::image {

namespace {
// Bytes a BMP file must hold after what its header says: the pixel offset plus every row, padded
// to four bytes, or for run-length coded pixels the size the header gives them; 0 when it is no
// BMP. Qt reads a file that ends early without complaint and leaves the missing pixels as they
// happened to be in memory.
qint64 BitmapFileSize(QFile& file)
{
    const QByteArray head = file.read(38);
    if (!head.startsWith("BM")) return 0;
    if (head.size() < 18) return 18;  // up to the size of the header that follows
    const auto* h = reinterpret_cast<const uchar*>(head.constData());
    const qint64 offset = qFromLittleEndian<quint32>(h + 10);
    const quint32 headerSize = qFromLittleEndian<quint32>(h + 14);
    // Qt reads a header cut short as if the missing bytes were there.
    const qint64 headerEnd = 14 + qint64{std::max<quint32>(headerSize, 12)};
    if (head.size() < std::min<qint64>(headerEnd, 38)) return headerEnd;
    qint64 width = 0, height = 0, bits = 0, compression = 0, codedSize = 0;
    if (headerSize == 12) {  // the old OS/2 header
        width = qFromLittleEndian<quint16>(h + 18);
        height = qFromLittleEndian<quint16>(h + 20);
        bits = qFromLittleEndian<quint16>(h + 24);
    } else if (headerSize >= 40 && head.size() >= 38) {
        width = qFromLittleEndian<qint32>(h + 18);
        height = std::abs(qint64{qFromLittleEndian<qint32>(h + 22)});  // negative: rows top down
        bits = qFromLittleEndian<quint16>(h + 28);
        compression = qFromLittleEndian<quint32>(h + 30);
        codedSize = qFromLittleEndian<quint32>(h + 34);
    }
    constexpr qint64 kRgb = 0, kRle8 = 1, kRle4 = 2, kBitFields = 3, kAlphaBitFields = 6;
    if (compression == kRle8 || compression == kRle4) return offset + codedSize;
    if (width <= 0 || bits <= 0 || (compression != kRgb && compression != kBitFields && compression != kAlphaBitFields)) return 0;
    // A header may claim rows no file could hold: such a size saturates, and the file is short.
    const qint64 rowBytes = (width * bits + 31) / 32 * 4;
    qint64 pixelBytes = 0;
    if (__builtin_mul_overflow(rowBytes, height, &pixelBytes) || pixelBytes > std::numeric_limits<qint64>::max() - offset) {
        return std::numeric_limits<qint64>::max();
    }
    return offset + pixelBytes;
}

// A run-length coded or compressed file may stand for a picture far larger than itself: a picture
// is decoded only while it takes at most 100 times the file's size, or 64 MiB (4096 x 4096
// pixels) for small files.
bool FitsTheFile(QSize size, qint64 fileSize)
{
    // A negative height is a picture stored top down.
    const qint64 bytes = std::abs(qint64{size.width()}) * std::abs(qint64{size.height()}) * 4;
    return bytes <= std::max<qint64>(100 * fileSize, qint64{64} << 20);
}

QString Unreadable(const QString& path, const QString& reason)
{
    return Format(_("Die Bilddatei \"%s\" kann nicht gelesen werden: %s"), {path, reason});
}
}  // namespace

QImage ReadBitmap(const QString& path)
{
    QFile file(path);
    qint64 fileSize = 0;
    if (file.open(QIODevice::ReadOnly)) {
        fileSize = file.size();
        const qint64 needed = BitmapFileSize(file);
        if (fileSize < needed) {
            throw TDravikException(Unreadable(path, Format(_("die Datei ist unvollständig (%s von %s Bytes)"),
                                                           {QString::number(fileSize), QString::number(needed)})));
        }
        file.close();
    }
    QImageReader reader(path);
    const QSize size = reader.size();
    if (!FitsTheFile(size, fileSize)) {
        throw TDravikException(Unreadable(path, Format(_("das Bild ist zu groß für die Datei (%s × %s Bildpunkte)"),
                                                       {QString::number(size.width()), QString::number(size.height())})));
    }
    QImage image = reader.read();
    if (image.isNull()) throw TDravikException(Unreadable(path, reader.errorString()));
    return image.convertToFormat(QImage::Format_RGB888);
}

void WriteBitmap(const QImage& image, const QString& path)
{
    QSaveFile file(path);
    QString reason;
    if (!file.open(QIODevice::WriteOnly)) {
        reason = file.errorString();
    } else {
        QImageWriter writer(&file, "bmp");
        if (!writer.write(image.convertToFormat(QImage::Format_RGB888))) reason = writer.errorString();
        else if (!file.commit()) reason = file.errorString();
    }
    if (!reason.isEmpty()) {
        throw TDravikException(Format(_("Die Bilddatei \"%s\" kann nicht geschrieben werden: %s"), {path, reason}));
    }
}

QString PortableFileText(const QString& path, const QString& projectFolder)
{
    QString text = QDir::cleanPath(path);
    // Matched as the placeholder is replaced when the script runs: regardless of case; a relative
    // folder from the working directory, as the dialogs give absolute paths.
    const QString folder = QDir::cleanPath(QFileInfo(projectFolder).absoluteFilePath());
    const bool inside = text.compare(folder, Qt::CaseInsensitive) == 0 || text.startsWith(folder + '/', Qt::CaseInsensitive);
    if (!projectFolder.isEmpty() && inside) {
        text = QStringLiteral("%PROJEKTPFAD%") + text.mid(folder.size());
    }
    return '"' + text + '"';
}

QString ProjectFolderVariable()
{
    if (!HostServices().varAccess) return {};
    TDVVariable* variable = VarAccess().FindVariable(QStringLiteral("PROJEKTPFAD"));
    return variable ? variable->GetValue().AsText() : QString();
}

}  // namespace dv::image
