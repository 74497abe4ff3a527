#include "image/gui_imageload.h"

#include "framework/parser.h"
#include "framework/translate.h"
#include "image/bitmapfile.h"
#include "image/currentimage.h"

namespace dv {

namespace {
const QString kFile = QStringLiteral("File");
}  // namespace

TDVCmdImageLoad::TDVCmdImageLoad(TDVParser* parser) : TDVFuncRunEdit("TDVCmdImageLoad", parser) {}

void TDVCmdImageLoad::Run(TParamList& params)
{
    SetParams(params);
    CurrentImage::replace(image::ReadBitmap(ResolveProjectPath(BoundField(kFile))));
}

QString TDVCmdImageLoad::GetDescription(const QString&, const TParamList& params)
{
    return Format(_("Lade das Bild %s"), {params.GetString(kFile)});
}

}  // namespace dv
