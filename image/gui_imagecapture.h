#pragma once
// ImageCapture: one frame from a camera, a picture file ("file:PATH") or a generated test
// picture ("pattern:NAME") becomes the current image. Parameters bound to the dialog by name.
#include "framework/runedit.h"

#include <QImage>

namespace dv {

class TDVCmdImageCapture : public TDVFuncRunEdit {
public:
    explicit TDVCmdImageCapture(TDVParser* parser);
    void Run(TParamList& params) override;
    QString GetDescription(const QString& name, const TParamList& params) override;
};

// The frame a Device text gives: "file:PATH", "pattern:NAME" or "pattern:NAME@DX,DY" (moved by
// DX, DY pixels), else a camera's description or id ("" the default camera).
QImage CaptureFrame(const QString& device, double exposureMs, int kelvin);

}  // namespace dv
