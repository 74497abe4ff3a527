#pragma once
// What the ImageLoad and ImageSave dialogs share: the preview of the current image, the file edit
// bound to File, and a choose button whose file dialog writes the chosen file portably.
#include "framework/forms/boundform.h"
#include "image/imagepicker_form.h"

class QLineEdit;

namespace dv {

class TImageFileForm : public TBoundForm {
    Q_OBJECT
public:
    TImageFileForm(TDVThreadRunEdit& command, const QString& formClass, const QString& caption, int helpContext,
                   const QString& chooseName, const QString& chooseCaption, TBitmapChoice choice);

protected:
    void LoadFields() override;
    // After the user chose path (already written into the edit).
    virtual void Chosen(const QString& path) { (void)path; }
    QLineEdit* FileEdit() const { return file_; }
    TImagePreview* Preview() const { return preview_; }

private:
    void Choose();
    TBitmapChoice choice_;
    QLineEdit* file_;
    TImagePreview* preview_;
};

}  // namespace dv
