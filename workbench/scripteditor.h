#pragma once
// The script editor: line numbers, the current line and the running line marked, syntax errors
// underlined at their line with the message as tooltip. Checking is debounced: it runs once the
// user has paused typing, through a checker the window supplies.
#include "workbench/scriptcheck.h"

#include <QPlainTextEdit>
#include <QTimer>

#include <functional>

namespace dv::workbench {

class TScriptHighlighter;

class TScriptEditor final : public QPlainTextEdit {
    Q_OBJECT
public:
    using TChecker = std::function<TScriptCheck(const QString& text)>;
    // The tooltip of a line that has no error (the command's description); empty for none.
    using TLineTip = std::function<QString(const QString& lineText)>;

    explicit TScriptEditor(QWidget* parent = nullptr);

    void SetChecker(TChecker checker) { checker_ = std::move(checker); }
    void SetLineTip(TLineTip tip) { lineTip_ = std::move(tip); }
    // Checks now instead of after the pause (tests, loading a file).
    void CheckNow();
    const TScriptCheck& LastCheck() const { return check_; }
    // 0 clears the mark.
    void SetRunningLine(int line);
    int RunningLine() const { return runningLine_; }
    int CurrentLine() const { return textCursor().blockNumber() + 1; }
    QString LineText(int line) const;
    // Replaces one line's text as one undo step; the cursor stays on it.
    void ReplaceLine(int line, const QString& text);
    void GoToLine(int line);
    // The line number gutter's width in pixels.
    int GutterWidth() const;
    void PaintGutter(QPaintEvent* event);
    static constexpr int kCheckDelayMs = 400;

signals:
    void Checked();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* e) override;

private:
    void UpdateMarks();
    QString ErrorAt(int line) const;

    QWidget* gutter_;
    TScriptHighlighter* highlighter_;
    QTimer checkTimer_;
    TChecker checker_;
    TLineTip lineTip_;
    TScriptCheck check_;
    int runningLine_ = 0;
};

}  // namespace dv::workbench
