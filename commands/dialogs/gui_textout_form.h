#pragma once
// The editor dialog of TextOut: the text, its font (name, style, size, colour) and the form-feed box.
#include "commands/dialogs/gui_textout.h"
#include "framework/forms/commandform.h"

class QCheckBox;
class QLineEdit;
class QToolButton;

namespace dv {

class TFRM_TextOut : public TCommandForm<TDVCmdTextOut> {
public:
    explicit TFRM_TextOut(TDVCmdTextOut& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    void SetColour(const QString& colourText);
    void ChooseColour();
    void ChooseFont();

    QLineEdit* font_;
    QLineEdit* style_;
    QLineEdit* size_;
    QToolButton* swatch_;
    // The colour as it was given (a number 0x00BBGGRR, a system colour, any text) until one is
    // chosen: the swatch shows only the RGB bytes, and OK must not narrow the value to them.
    QString colourText_;
    QLineEdit* text_;
    QCheckBox* formFeed_;
};

}  // namespace dv
