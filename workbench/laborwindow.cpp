#include "workbench/laborwindow.h"

#include <QFileDialog>
#include <QMenuBar>
#include <QPrintDialog>
#include <QPrinter>
#include <QTextEdit>

namespace dv::workbench {

TLaborWindow::TLaborWindow(QWidget* parent) : QMainWindow(parent, Qt::Window), view_(new QTextEdit(this))
{
    setObjectName(QStringLiteral("Labor"));
    setWindowTitle(QStringLiteral("Labor"));
    view_->setObjectName(QStringLiteral("LaborOutput"));
    view_->setReadOnly(true);
    setCentralWidget(view_);
    QMenu* file = menuBar()->addMenu(QStringLiteral("&Datei"));
    file->addAction(QStringLiteral("&Drucken..."), this, &TLaborWindow::Print);
    file->addAction(QStringLiteral("Als &PDF exportieren..."), this, [this] {
        const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Als PDF exportieren"), {}, QStringLiteral("PDF (*.pdf)"));
        if (!path.isEmpty()) ExportPdf(path);
    });
    file->addAction(QStringLiteral("&Leeren"), this, &TLaborWindow::Clear);
    resize(640, 480);
}

void TLaborWindow::Write(const QString& text, const QString& fontName, int size, int style, int color)
{
    QTextCharFormat format;
    if (!fontName.isEmpty()) format.setFontFamilies({fontName});
    if (size > 0) format.setFontPointSize(size);
    format.setFontWeight(style & 1 ? QFont::Bold : QFont::Normal);
    format.setFontItalic(style & 2);
    format.setFontUnderline(style & 4);
    format.setFontStrikeOut(style & 8);
    format.setForeground(QColor(color & 0xff, (color >> 8) & 0xff, (color >> 16) & 0xff));
    QTextCursor cursor(view_->document());
    cursor.movePosition(QTextCursor::End);
    if (!view_->document()->isEmpty()) cursor.insertBlock();
    cursor.insertText(text, format);
    view_->setTextCursor(cursor);
}

void TLaborWindow::Clear() { view_->clear(); }

bool TLaborWindow::ExportPdf(const QString& path)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    view_->document()->print(&printer);
    return printer.printerState() != QPrinter::Error;
}

void TLaborWindow::Print()
{
    QPrinter printer;
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() == QDialog::Accepted) view_->document()->print(&printer);
}

}  // namespace dv::workbench
