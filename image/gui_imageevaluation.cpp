#include "image/gui_imageevaluation.h"

#include "framework/artifacts.h"
#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/parser.h"
#include "framework/services.h"
#include "framework/systemlog.h"
#include "framework/translate.h"
#include "image/bitmapfile.h"
#include "image/comparisonpicture.h"
#include "image/currentimage.h"
#include "image/evaluation.h"
#include "image/signaturedefaults.h"

#include <algorithm>
#include <cmath>

namespace dv {

namespace {
const QString kResult = QStringLiteral("Result");
const QString kFile = QStringLiteral("File");
const QString kRect = QStringLiteral("Rect");
const QString kDisplacement = QStringLiteral("Displacement");
const QString kCoverage = QStringLiteral("Coverage");
const QString kCompareMax = QStringLiteral("CompareMax");

// Writes the picture of a comparison when the host asked for artifacts; names it in the log.
void LeavePicture(const QImage& reference, const QImage& current, const QRect& area, QPoint offset)
{
    if (ArtifactsFolder().isEmpty()) return;
    const QString path = NextArtifactPath(QStringLiteral("imageeval"), QStringLiteral("png"));
    if (!image::ComparisonPicture(reference, current, area, offset).save(path, "PNG")) {
        SystemLog.Warn(Format(_("ImageEval: Das Bild %s kann nicht geschrieben werden"), {path}));
        return;
    }
    AddArtifact(path);
    SystemLog.Debug(Format(_("ImageEval: Vergleichsbild %s"), {path}));
}
}  // namespace

TDVCmdImageEvaluation::TDVCmdImageEvaluation(TDVParser* parser) : TDVFuncRunEdit("TDVCmdImageEvaluation", parser) {}

void TDVCmdImageEvaluation::SetDefaults() { image::SetSignatureDefaults(*this); }

void TDVCmdImageEvaluation::SetParams(const TParamList& params)
{
    TDVFuncRunEdit::SetParams(params);
    if (const std::optional<QRect> r = image::RectOfText(params.GetString(kRect))) {
        SetBoundField(kRect, RectText(r->x(), r->y(), r->width(), r->height()));
    }
}

void TDVCmdImageEvaluation::Run(TParamList& params)
{
    SetParams(params);
    const QImage current = CurrentImage::snapshot();
    if (current.isNull()) throw TDravikException(_("ImageEval: Es gibt noch kein aktuelles Bild"));
    const QRect area = image::AreaOfText(BoundField(kRect), current.size());
    double result = 0;
    if (StrToBoolEx(BoundField(kCoverage), false)) {
        result = image::Coverage(current, area);
    } else {
        const QImage reference = image::ReadBitmap(ResolveProjectPath(BoundField(kFile)));
        const long double d = DVStrToFloat(GetDefStr(BoundField(kDisplacement), QStringLiteral("0")));
        const auto kind = StrToBoolEx(BoundField(kCompareMax), false) ? image::TDifferenceKind::WorstPixel
                                                                      : image::TDifferenceKind::Rms;
        const image::TComparison found = image::Compare(reference, current, area, static_cast<int>(std::lround(std::clamp<long double>(d, 0, 1e6))), kind,
                                                        [](const QString& line) { SystemLog.Debug(line); });
        result = found.Result();
        LeavePicture(reference, current, area, found.offset);
    }
    VarAccess().SetVariable(BoundField(kResult), std::make_unique<TNumberValue>(result));
}

QString TDVCmdImageEvaluation::GetDescription(const QString&, const TParamList& params)
{
    if (StrToBoolEx(params.GetString(kCoverage), false)) {
        return Format(_("Bestimme die Abdeckung des Bildes in %s"), {params.GetString(kResult)});
    }
    return Format(_("Vergleiche das Bild mit %s, Ergebnis in %s"), {params.GetString(kFile), params.GetString(kResult)});
}

QString RectText(int left, int top, int width, int height)
{
    return QString::asprintf("[%d, %d, %d, %d]", left, top, width, height);
}

}  // namespace dv
