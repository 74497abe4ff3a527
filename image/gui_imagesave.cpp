#include "image/gui_imagesave.h"

#include "framework/exceptions.h"
#include "framework/parser.h"
#include "framework/translate.h"
#include "image/bitmapfile.h"
#include "image/currentimage.h"

namespace dv {

namespace {
const QString kFile = QStringLiteral("File");
}  // namespace

TDVCmdImageSave::TDVCmdImageSave(TDVParser* parser) : TDVFuncRunEdit("TDVCmdImageSave", parser) {}

void TDVCmdImageSave::Run(TParamList& params)
{
    SetParams(params);
    const QImage image = CurrentImage::snapshot();
    if (image.isNull()) throw TDravikException(_("ImageSave: Es gibt noch kein aktuelles Bild"));
    image::WriteBitmap(image, ResolveProjectPath(BoundField(kFile)));
}

QString TDVCmdImageSave::GetDescription(const QString&, const TParamList& params)
{
    return Format(_("Speichere das Bild in %s"), {params.GetString(kFile)});
}

}  // namespace dv
