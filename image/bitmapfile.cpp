#include "image/bitmapfile.h"

#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/translate.h"

#include <QDir>
#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>

namespace dv::image {

QImage ReadBitmap(const QString& path)
{
    QImageReader reader(path);
    QImage image = reader.read();
    if (image.isNull()) {
        throw TDravikException(Format(_("Die Bilddatei \"%s\" kann nicht gelesen werden: %s"), {path, reader.errorString()}));
    }
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
    const QString folder = QDir::cleanPath(projectFolder);
    if (!projectFolder.isEmpty() && (text == folder || text.startsWith(folder + '/'))) {
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
