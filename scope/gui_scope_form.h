#pragma once
// TFormScope: the scope window as a run shows it. The scope display with its spectrum scope, the
// run panel (result, function name, channel, "Weiter" with its blink timer, prefix button), the
// dialogs of the scope with a display, and the pictures written into the artifacts folder.
#include "scope/scopedialogs.h"

#include <QFont>
#include <QWidget>

class QLabel;
class QPushButton;
class QTimer;

namespace dv::scope {

class TScopeDisplay;
class TEnvelopePanel;
class TScopeEditPanel;

class TFormScope : public QWidget, public IScopeDialogs {
    Q_OBJECT
public:
    // live: a display is there; the window shows itself and its dialogs ask the user. Otherwise
    // the headless dialogs stay in use and the window only draws its pictures.
    explicit TFormScope(bool live, QWidget* parent = nullptr);
    ~TFormScope() override;

    TScopeDisplay& Display() const { return *display_; }
    TEnvelopePanel& Envelope() const { return *envelope_; }
    TScopeEditPanel& EditPanel() const { return *editPanel_; }
    // The editor of a Scope line (scope/scopeeditor_form.cpp): the window modal with its edit
    // panel, filled from command and special when command is not empty; on OK both are replaced
    // by what the editor writes, otherwise neither changes.
    bool Edit(QString& command, QString& special);
    // Model -> window after a run: shows or hides a live window as the model says, and writes the
    // picture when the scope is shown and an artifacts folder is set.
    void AfterRun();
    // The picture path written by the last AfterRun; empty when none.
    const QString& LastPicture() const { return lastPicture_; }

    // The fonts the blink timer flips "Weiter" between.
    static QFont PlainFont();
    static QFont BlinkFont();
    static QColor BlinkColor();

    // IScopeDialogs
    TErrorAnswer ShowExecutionError(const QString& text) override;
    void ShowDecodeError(const QString& text) override;
    void ShowCancelError(const QString& text) override;
    void ShowInformation(const QString& text) override;
    bool BeginWait() override { return true; }
    void EndWait() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void Blink();
    void Weiter();
    void SetWeiterLook(bool blinking);
    void WritePicture();
    void ShowEnvelopeTools(bool down);
    void SwitchPrefix(bool on);

    bool live_;
    TScopeDisplay* display_;
    QLabel* result_;
    QLabel* function_;
    QLabel* channel_;
    QPushButton* weiter_;
    QPushButton* prefix_;
    QPushButton* envelopeButton_;
    TEnvelopePanel* envelope_;
    QWidget* runPanel_;
    TScopeEditPanel* editPanel_;
    QTimer* blink_;
    bool blinkOn_ = false;
    QString lastPicture_;
};

// Creates the library's scope window once a QApplication exists (called by RegisterForms);
// it lives until the application ends.
void InstallScopeWindow();
TFormScope* ScopeWindow();

}  // namespace dv::scope
