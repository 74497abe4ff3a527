#pragma once
// The edit panel of the scope window, in which a Scope(...) line is written: four pages for the
// curve slots, the analysis function, the display and the colours and scaling, with OK and
// "Abbrechen". The window shows it instead of the run panel while TFormScope::Edit runs.
#include "framework/editorform.h"
#include "scope/scopeedit.h"
#include "scope/scopefxparams.h"
#include "scope/scopesettings.h"

#include <QWidget>

#include <array>

class QCheckBox;
class QComboBox;
class QEventLoop;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;
class QTabWidget;

namespace dv::scope {

class TScopeDisplay;

class TScopeEditPanel : public QWidget {
    Q_OBJECT
public:
    // display: the scope of the window, whose colours and scaling the colour and scaling boxes
    // take into the line.
    TScopeEditPanel(TScopeDisplay& display, QWidget* parent = nullptr);
    ~TScopeEditPanel() override;

    // The editor fill: the controls from decoded settings; with "[SETCOL:" or "[SETSCALE:" the
    // scope takes those colours or that scaling, so that OK writes them again.
    void Fill(const TDecodedSettings& s);
    // The controls as settings for WriteScript: colours, division steps and zero point as the
    // scope shows them now.
    TDecodedSettings Settings() const;
    // Relabels the function page for function: its labels, its choices, its fields at their
    // defaults; the fields it does not use are hidden.
    void SetInputParams(TScopeFnc function);
    QTabWidget& Pages() const { return *pages_; }
    // Runs until OK (true), "Abbrechen", Escape or the window closing (false).
    bool Exec(QWidget& window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* CurvePage();
    QWidget* FunctionPage();
    QWidget* DisplayPage();
    QWidget* ColorScalePage();
    void EditSource(int slot);
    void ChooseColor(int index);
    void ShowColorsAndScale();
    void Finish(int result);

    TScopeDisplay& display_;
    QTabWidget* pages_;
    std::array<QLineEdit*, kCurveSlots> curves_{};
    std::array<QCheckBox*, kCurveSlots> curveEnabled_{};
    QComboBox* function_;
    QSpinBox* channel_;
    std::array<QLabel*, kFxEditFields> editLabels_{};
    std::array<QLineEdit*, kFxEditFields> edits_{};
    std::array<QLabel*, kFxChoiceFields> choiceLabels_{};
    std::array<QComboBox*, kFxChoiceFields> choices_{};
    QLineEdit* result_;
    QLineEdit* zoomStart_;
    QLineEdit* zoomStop_;
    QRadioButton* hide_;
    QRadioButton* keep_;
    QRadioButton* show_;
    QCheckBox* clear_;
    QCheckBox* autoScale_;
    QCheckBox* prefix_;
    QCheckBox* wait_;
    QLineEdit* waitVar_;
    QLineEdit* unitX_;
    QLineEdit* unitY_;
    QCheckBox* useColors_;
    std::array<QPushButton*, kColorCount> colors_{};
    QCheckBox* useScaling_;
    QLabel* scaleValues_;
    QEventLoop* loop_ = nullptr;
};

// The dialog "TFormScope" of the command: the library's scope window in its edit panel.
class TScopeEditorForm final : public TDVEditorForm, public IScopeEditor {
public:
    // Edits the scope's current Command and Special texts.
    bool ShowModal() override;
    void ShowMessage(const QString& text) override;
    bool Edit(QString& command, QString& special) override;
};

// Registers the dialog "TFormScope" and sends the editor fill of every decoding for the editor to
// the window being edited, or else to the library's window.
void RegisterScopeEditor();

}  // namespace dv::scope
