#include "image/gui_imageload_form.h"

#include "framework/exceptions.h"
#include "framework/translate.h"
#include "image/bitmapfile.h"
#include "image/currentimage.h"

#include <QMessageBox>

namespace dv {

TFormImageLoad::TFormImageLoad(TDVCmdImageLoad& command)
    : TImageFileForm(command, QStringLiteral("TFormImageLoad"), _("Bild Laden"), 109, QStringLiteral("ButtonLoad"),
                     _("Ö&ffnen"), TBitmapChoice::Open)
{
}

void TFormImageLoad::Chosen(const QString& path)
{
    try {
        CurrentImage::replace(image::ReadBitmap(path));
    } catch (const TDravikException& e) {
        QMessageBox::warning(this, windowTitle(), e.Message());
    }
    Preview()->ShowImage(CurrentImage::snapshot());
}

}  // namespace dv
