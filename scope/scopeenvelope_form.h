#pragma once
// The envelope tools of the scope window: the panel that the envelope button shows, with the mode
// button (upper or lower envelope), save, load, delete and typed points, and the mouse edits on the
// main scope. The files are those of scope/envelopefile.h; faults are asked in dialogs, and Cancel
// stops the running test.
#include <QString>
#include <QWidget>

#include <functional>

class QPushButton;

namespace dv::scope {

class TOsci;

class TEnvelopePanel : public QWidget {
    Q_OBJECT
public:
    // osci: the main scope whose clicks edit the envelope while the panel is shown.
    TEnvelopePanel(TOsci& osci, QWidget* parent = nullptr);

    // 5 (upper, mode button down) or 6 (lower).
    int EditEnvelope() const;
    // The file dialogs: save true asks for a file to write. Replaceable, so that a caller can
    // answer without a file dialog; empty: cancelled.
    std::function<QString(bool save)> ChooseFile;

    // Loads both envelopes with the fault dialogs of the window (missing file: Cancel only, then
    // the test stops; other faults: Cancel or Ignore).
    void LoadWithDialogs(const QString& fileName);
    // Adds (x, y) to the envelope being edited, in ascending x; deletes the point nearest x.
    void AddPoint(double x, double y);
    void DeletePointNear(double x);

private:
    void Save();
    void Load();
    void Erase();
    void SetPoint();
    void OnClick(double x, double y, bool add);

    TOsci& osci_;
    QPushButton* mode_;
};

}  // namespace dv::scope
