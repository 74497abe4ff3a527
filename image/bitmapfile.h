#pragma once
// The current image's way to and from files, and the file names the image dialogs write.
#include <QImage>
#include <QString>

namespace dv::image {

// The picture in a file, as 24-bit RGB; raises TDravikException naming the file and the reason,
// also for a BMP file shorter than its header says.
QImage ReadBitmap(const QString& path);
// Writes image as a bitmap (BMP) file; the file is replaced only once it is complete. Raises
// TDravikException naming the file and the reason.
void WriteBitmap(const QImage& image, const QString& path);

// A chosen file as the dialogs write it into a script: quoted, the project folder given as the
// %PROJEKTPFAD% placeholder so that the script works wherever the project lies.
QString PortableFileText(const QString& path, const QString& projectFolder);
// The project folder a dialog starts in: the PROJEKTPFAD variable's text; empty without one.
QString ProjectFolderVariable();

}  // namespace dv::image
