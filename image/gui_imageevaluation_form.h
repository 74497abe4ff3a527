#pragma once
// The editor of ImageEval: file, area, tolerance, result variable and mode bound by name; the
// current image and the reference on two pages, the area drawn on the reference with the mouse.
#include "framework/forms/boundform.h"
#include "image/gui_imageevaluation.h"

class QLineEdit;

namespace dv {

class TImagePreview;
class TSelectionView;

class TFormImageEvaluation : public TBoundForm {
    Q_OBJECT
public:
    explicit TFormImageEvaluation(TDVCmdImageEvaluation& command);

protected:
    void LoadFields() override;

private:
    void Choose();
    void ShowReference(const QString& fileText);
    void RectEdited(const QString& text);
    void SelectionDrawn(const QRect& area);
    QLineEdit* file_;
    QLineEdit* rect_;
    TImagePreview* current_;
    TSelectionView* reference_;
};

}  // namespace dv
