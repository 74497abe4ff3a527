#include "image/gui_imagecapture.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/parser.h"
#include "framework/translate.h"
#include "image/bitmapfile.h"
#include "image/camera.h"
#include "image/currentimage.h"
#include "image/testpattern.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace dv {

namespace {
const QString kDevice = QStringLiteral("Device");
const QString kExposure = QStringLiteral("Exposure");
const QString kWhiteBalance = QStringLiteral("WhiteBalance");
const QString kFilePrefix = QStringLiteral("file:");
const QString kPatternPrefix = QStringLiteral("pattern:");

// A shift's digits (none: no shift), as far as the pattern can be moved: longer numbers are simply far.
int ShiftOf(const QString& digits)
{
    if (digits.isEmpty()) return 0;
    bool ok = false;
    const qlonglong v = digits.toLongLong(&ok);
    if (!ok) return digits.startsWith('-') ? -image::kMaxPatternShift : image::kMaxPatternShift;
    return static_cast<int>(std::clamp<qlonglong>(v, -image::kMaxPatternShift, image::kMaxPatternShift));
}

QImage PatternFrame(const QString& pattern)
{
    static const QRegularExpression form(QStringLiteral("^([A-Za-z]+)(?:@(-?\\d+),(-?\\d+))?$"));
    const QRegularExpressionMatch m = form.match(pattern.trimmed());
    std::optional<QImage> image;
    if (m.hasMatch()) image = image::TestPattern(m.captured(1), QPoint(ShiftOf(m.captured(2)), ShiftOf(m.captured(3))));
    if (!image) {
        throw TDravikException(Format(_("ImageCapture: Unbekanntes Testbild \"%s\" (bekannt: %s, verschoben: NAME@DX,DY)"),
                                      {pattern, image::TestPatternNames().join(QStringLiteral(", "))}));
    }
    return *image;
}

double NumberOf(const QString& text) { return static_cast<double>(DVStrToFloat(GetDefStr(text, QStringLiteral("0")))); }
}  // namespace

QImage CaptureFrame(const QString& device, double exposureMs, int kelvin)
{
    if (device.startsWith(kFilePrefix, Qt::CaseInsensitive)) {
        return image::ReadBitmap(ResolveProjectPath(device.mid(kFilePrefix.size())));
    }
    if (device.startsWith(kPatternPrefix, Qt::CaseInsensitive)) return PatternFrame(device.mid(kPatternPrefix.size()));
    return image::GrabCameraFrame(device, exposureMs, kelvin);
}

TDVCmdImageCapture::TDVCmdImageCapture(TDVParser* parser) : TDVFuncRunEdit("TDVCmdImageCapture", parser) {}

void TDVCmdImageCapture::Run(TParamList& params)
{
    SetParams(params);
    const double exposure = NumberOf(BoundField(kExposure));
    const double kelvin = NumberOf(BoundField(kWhiteBalance));
    if (exposure < 0 || kelvin < 0 || kelvin > 100000) {
        throw TDravikException(Format(_("ImageCapture: Belichtungszeit %s ms oder Farbtemperatur %s K ist ungültig"),
                                      {BoundField(kExposure), BoundField(kWhiteBalance)}));
    }
    CurrentImage::replace(CaptureFrame(BoundField(kDevice), exposure, static_cast<int>(std::lround(kelvin))));
}

QString TDVCmdImageCapture::GetDescription(const QString&, const TParamList& params)
{
    const QString device = params.GetString(kDevice);
    return Format(_("Nimm ein Bild auf von %s"), {device.isEmpty() ? _("der Standardkamera") : device});
}

}  // namespace dv
