#pragma once
#include "framework/forms/boundform.h"
#include "image/gui_imagesave.h"

namespace dv {

class TImagePreview;

class TFormImageSave : public TBoundForm {
    Q_OBJECT
public:
    explicit TFormImageSave(TDVCmdImageSave& command);

protected:
    void LoadFields() override;

private:
    void Choose();
    void Test();
    TDVCmdImageSave& command_;
    TImagePreview* preview_;
};

}  // namespace dv
