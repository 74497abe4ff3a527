#pragma once
// Find and replace in the script editor: a bar under the editor (Ctrl+F), searching forward from
// the cursor and wrapping at the end.
#include <QTextDocument>
#include <QWidget>

class QLineEdit;
class QCheckBox;
class QPlainTextEdit;

namespace dv::workbench {

class TFindReplaceBar final : public QWidget {
    Q_OBJECT
public:
    explicit TFindReplaceBar(QPlainTextEdit& editor, QWidget* parent = nullptr);
    void Open();
    // Selects the next match after the cursor (wrapping); false when there is none.
    bool FindNext();
    // Replaces the selected match and finds the next one.
    bool ReplaceOne();
    // Every match, as one undo step; the number replaced.
    int ReplaceAll();

private:
    QTextDocument::FindFlags Flags() const;
    QPlainTextEdit& editor_;
    QLineEdit* find_;
    QLineEdit* replace_;
    QCheckBox* caseSensitive_;
};

}  // namespace dv::workbench
