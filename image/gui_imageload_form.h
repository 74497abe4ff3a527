#pragma once
// The editors of ImageLoad and ImageSave: the file edit bound by name, a choose button and a
// preview of the current image.
#include "framework/forms/boundform.h"
#include "image/gui_imageload.h"

namespace dv {

class TImagePreview;

class TFormImageLoad : public TBoundForm {
    Q_OBJECT
public:
    explicit TFormImageLoad(TDVCmdImageLoad& command);

protected:
    void LoadFields() override;

private:
    // Kept: the chosen file becomes the current image at once, even if the dialog is cancelled.
    void Choose();
    TImagePreview* preview_;
};

}  // namespace dv
