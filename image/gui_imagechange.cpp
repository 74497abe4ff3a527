#include "image/gui_imagechange.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/translate.h"
#include "image/brightness.h"
#include "image/currentimage.h"
#include "image/evaluation.h"
#include "image/signaturedefaults.h"

namespace dv {

namespace {
const QString kBrightness = QStringLiteral("Brightness");
const QString kRect = QStringLiteral("Rect");
const QString kGreyScale = QStringLiteral("GreyScale");
}  // namespace

TDVCmdImageChange::TDVCmdImageChange(TDVParser* parser) : TDVFuncRunEdit("TDVCmdImageChange", parser) {}

void TDVCmdImageChange::SetDefaults() { image::SetSignatureDefaults(*this); }

void TDVCmdImageChange::Run(TParamList& params)
{
    SetParams(params);
    const QString brightnessText = GetDefStr(BoundField(kBrightness), QStringLiteral("21.4"));
    const long double brightness = DVStrToFloat(brightnessText);
    if (brightness < 0 || brightness > 100) {
        throw TDravikException(Format(_("ImageChange: Die Helligkeit %s liegt nicht zwischen 0 und 100"), {brightnessText}));
    }
    QImage image = CurrentImage::snapshot();
    if (image.isNull()) throw TDravikException(_("ImageChange: Es gibt noch kein aktuelles Bild"));
    const QRect area = image::AreaOfText(BoundField(kRect), image.size());
    if (StrToBoolEx(BoundField(kGreyScale), false)) image::MakeGrey(image, area);
    image::SetMeanLuminance(image, area, static_cast<double>(brightness) / 100.0);
    CurrentImage::replace(std::move(image));
}

QString TDVCmdImageChange::GetDescription(const QString&, const TParamList& params)
{
    return Format(_("Setze die Helligkeit des Bildes auf %s Prozent"), {params.GetString(kBrightness)});
}

}  // namespace dv
