#pragma once
// The editor of ImageSave: the file, its choose button, a preview of the current image and a test
// button that saves at once.
#include "image/gui_imagesave.h"
#include "image/imagefileform_form.h"

namespace dv {

class TFormImageSave : public TImageFileForm {
    Q_OBJECT
public:
    explicit TFormImageSave(TDVCmdImageSave& command);

private:
    void Test();
    TDVCmdImageSave& command_;
};

}  // namespace dv
