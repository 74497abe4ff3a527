#pragma once
// The base of every editor dialog: OK (modal result 1, default), Abbrechen (modal result 2, cancel),
// a help button, Escape closes, Enter confirms. Subclasses lay out their controls and move texts
// between controls and the command's fields in LoadFields / StoreFields.
#include "framework/editorform.h"

#include <QDialog>
#include <QPushButton>

class QBoxLayout;
class QVBoxLayout;

namespace dv {

// The host's help button: carries the dialog's help context. Most dialogs call it DVHelpButton;
// a dialog whose layout names it otherwise gives its name.
class TDVHelpButton : public QPushButton {
    Q_OBJECT
public:
    static inline const QString kDefaultName = QStringLiteral("DVHelpButton");
    explicit TDVHelpButton(int helpContext, QWidget* parent = nullptr, const QString& objectName = kDefaultName);
    int HelpContext() const { return helpContext_; }

private:
    int helpContext_;
};

class TDVForm : public QDialog, public TDVEditorForm {
    Q_OBJECT
public:
    static constexpr int mrOk = 1;
    static constexpr int mrCancel = 2;

    TDVForm(const QString& formClass, const QString& caption, int helpContext, QWidget* parent = nullptr,
            const QString& helpButtonName = TDVHelpButton::kDefaultName);

    bool ShowModal() override;
    // A modal message box named "MessageDlg" with the dialog's caption.
    void ShowMessage(const QString& text) override;

    // The area above the button row where a dialog puts its controls.
    QVBoxLayout* Body() const { return body_; }
    QBoxLayout* ButtonRow() const { return buttons_; }
    QPushButton* OkButton() const { return ok_; }
    QPushButton* CancelButton() const { return cancel_; }

protected:
    // Fields -> controls, before the dialog shows.
    virtual void LoadFields() = 0;
    // Controls -> fields, when OK closed the dialog.
    virtual void StoreFields() = 0;
    // Called when the dialog is closed by Abbrechen or Escape.
    virtual void Cancelled() {}
    // The OK button's handler; a dialog that checks its input first may stay open.
    virtual void OkClicked() { done(mrOk); }
    // Offers the script's variables in every line edit of the dialog (host's variable picker).
    void AttachVariableEditors();

private:
    QVBoxLayout* body_;
    QBoxLayout* buttons_;
    QPushButton* ok_;
    QPushButton* cancel_;
};

}  // namespace dv
