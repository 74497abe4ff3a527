#pragma once
// The editor of ImageLoad: the file, its choose button and a preview of the current image.
#include "image/gui_imageload.h"
#include "image/imagefileform_form.h"

namespace dv {

class TFormImageLoad : public TImageFileForm {
    Q_OBJECT
public:
    explicit TFormImageLoad(TDVCmdImageLoad& command);

protected:
    // Kept: the chosen file becomes the current image at once, even if the dialog is cancelled.
    void Chosen(const QString& path) override;
};

}  // namespace dv
