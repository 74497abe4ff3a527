#pragma once
// TScopeSource: the curve-source dialog of the scope editor. It splits a curve source text into its
// fields when shown and builds the text again on OK. Because the splitting rewrites the text in
// place (upper case, modifiers cut off) and "Abbrechen" builds nothing, a cancelled dialog hands
// back that rewritten text: the caller writes it into the curve field either way.
#include "framework/forms/dvform.h"

class QButtonGroup;
class QComboBox;
class QLineEdit;

namespace dv::scope {

class TScopeSource : public TDVForm {
    Q_OBJECT
public:
    static constexpr int kHelpContext = 185;
    explicit TScopeSource(QWidget* parent = nullptr);

    // The source text, in and out.
    QString Source;

    // Shows the dialog on text and returns the dialog's text, whichever button closed it.
    static QString EditSource(const QString& text, QWidget* parent = nullptr);

protected:
    void LoadFields() override;
    void StoreFields() override;

private:
    // Checks the button of the kind and enables the fields its tag names.
    void Choose(int kind);
    QLineEdit* AddEdit(const char* name, const char* label, QWidget* row);

    QButtonGroup* kinds_;
    QLineEdit* file_;
    QLineEdit* separator_;
    QLineEdit* array_;
    QLineEdit* arrayFreq_;
    QLineEdit* x_;
    QLineEdit* y_;
    QComboBox* rowCol_;
    QComboBox* channel_;
    QLineEdit* imageN_;
    QLineEdit* imageFreq_;
    QLineEdit* offsetX_;
    QLineEdit* offsetY_;
    QLineEdit* mx_;
    QLineEdit* my_;
    QLineEdit* name_;
};

}  // namespace dv::scope
