#pragma once
// The "Labor" window: the run's text output document, written by the text output command in its
// fonts, sizes, colours and styles; printable and exportable as PDF.
#include <QMainWindow>

class QTextEdit;

namespace dv::workbench {

class TLaborWindow final : public QMainWindow {
    Q_OBJECT
public:
    explicit TLaborWindow(QWidget* parent = nullptr);
    // style bits: 1 bold, 2 italic, 4 underline, 8 strike-out; colour as 0x00BBGGRR.
    void Write(const QString& text, const QString& fontName, int size, int style, int color);
    void Clear();
    QTextEdit& Document() { return *view_; }
    bool ExportPdf(const QString& path);

private:
    void Print();
    QTextEdit* view_;
};

}  // namespace dv::workbench
