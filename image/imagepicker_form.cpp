#include "image/imagepicker_form.h"

#include "framework/translate.h"
#include "image/bitmapfile.h"

#include <QFileDialog>
#include <QPixmap>

namespace dv {

namespace {
constexpr QSize kPreviewSize(320, 240);
}  // namespace

TImagePreview::TImagePreview(const QString& objectName, QWidget* parent) : QLabel(parent)
{
    setObjectName(objectName);
    setAlignment(Qt::AlignCenter);
    setMinimumSize(kPreviewSize);
    setFrameShape(QFrame::StyledPanel);
}

void TImagePreview::ShowImage(const QImage& image)
{
    if (image.isNull()) {
        setPixmap({});
        setText(_("Kein Bild"));
        return;
    }
    setPixmap(QPixmap::fromImage(image.scaled(kPreviewSize, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

QString ChooseBitmapFile(QWidget* parent, TBitmapChoice choice)
{
    QFileDialog dialog(parent);
    const bool open = choice == TBitmapChoice::Open;
    dialog.setObjectName(open ? QStringLiteral("OpenDialog") : QStringLiteral("SaveDialog"));
    dialog.setAcceptMode(open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    // Open: the file must exist; save: any name in an existing folder, chosen without a question
    // about overwriting (the file is written only when the command runs). Qt's own dialog, so
    // that it behaves alike on every desktop and offscreen.
    dialog.setFileMode(open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setDefaultSuffix(QStringLiteral("bmp"));
    dialog.setNameFilters({_("Bitmap-Dateien (*.bmp)"), _("Alle Dateien (*)")});
    dialog.setSizeGripEnabled(true);
    const QString folder = image::ProjectFolderVariable();
    if (!folder.isEmpty()) dialog.setDirectory(folder);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().constFirst();
}

}  // namespace dv
