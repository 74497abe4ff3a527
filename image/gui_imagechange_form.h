#pragma once
// The editors of ImageChange and ImageCapture: their parameters bound by name, and a preview of
// the current image.
#include "framework/forms/boundform.h"
#include "image/gui_imagecapture.h"
#include "image/gui_imagechange.h"

namespace dv {

class TImagePreview;

class TFormImageChange : public TBoundForm {
    Q_OBJECT
public:
    explicit TFormImageChange(TDVCmdImageChange& command);

protected:
    void LoadFields() override;

private:
    TImagePreview* preview_;
};

class TFormImageCapture : public TBoundForm {
    Q_OBJECT
public:
    explicit TFormImageCapture(TDVCmdImageCapture& command);

protected:
    void LoadFields() override;

private:
    TImagePreview* preview_;
};

}  // namespace dv
