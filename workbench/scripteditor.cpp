#include "workbench/scripteditor.h"

#include "workbench/highlighter.h"

#include <QFontDatabase>
#include <QHelpEvent>
#include <QPainter>
#include <QTextBlock>
#include <QToolTip>

namespace dv::workbench {

namespace {

class TGutter final : public QWidget {
public:
    explicit TGutter(TScriptEditor* editor) : QWidget(editor), editor_(editor) {}
    QSize sizeHint() const override { return {editor_->GutterWidth(), 0}; }

protected:
    void paintEvent(QPaintEvent* event) override { editor_->PaintGutter(event); }

private:
    TScriptEditor* editor_;
};

const QColor kCurrentLine(0xf2, 0xf6, 0xff);
const QColor kRunningLine(0xff, 0xf0, 0xa0);

}  // namespace

TScriptEditor::TScriptEditor(QWidget* parent)
    : QPlainTextEdit(parent), gutter_(new TGutter(this)), highlighter_(new TScriptHighlighter(document()))
{
    setObjectName(QStringLiteral("ScriptEditor"));
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setLineWrapMode(NoWrap);
    setViewportMargins(GutterWidth(), 0, 0, 0);
    checkTimer_.setSingleShot(true);
    checkTimer_.setInterval(kCheckDelayMs);
    connect(&checkTimer_, &QTimer::timeout, this, &TScriptEditor::CheckNow);
    connect(document(), &QTextDocument::contentsChanged, &checkTimer_, qOverload<>(&QTimer::start));
    connect(this, &QPlainTextEdit::blockCountChanged, this, [this] { setViewportMargins(GutterWidth(), 0, 0, 0); });
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        if (dy) gutter_->scroll(0, dy);
        else gutter_->update(0, rect.y(), gutter_->width(), rect.height());
    });
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &TScriptEditor::UpdateMarks);
    UpdateMarks();
}

void TScriptEditor::CheckNow()
{
    checkTimer_.stop();
    if (!checker_) return;
    check_ = checker_(toPlainText());
    UpdateMarks();
    emit Checked();
}

void TScriptEditor::SetRunningLine(int line)
{
    if (line == runningLine_) return;
    runningLine_ = line;
    UpdateMarks();
    if (line > 0) {
        const QTextBlock block = document()->findBlockByNumber(line - 1);
        if (block.isValid() && !blockBoundingGeometry(block).translated(contentOffset()).intersects(viewport()->rect())) {
            GoToLine(line);
        }
    }
}

QString TScriptEditor::LineText(int line) const
{
    const QTextBlock block = document()->findBlockByNumber(line - 1);
    return block.isValid() ? block.text() : QString();
}

void TScriptEditor::ReplaceLine(int line, const QString& text)
{
    const QTextBlock block = document()->findBlockByNumber(line - 1);
    if (!block.isValid()) return;
    QTextCursor cursor(block);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    cursor.insertText(text);
    GoToLine(line);
}

void TScriptEditor::GoToLine(int line)
{
    const QTextBlock block = document()->findBlockByNumber(qBound(0, line - 1, blockCount() - 1));
    QTextCursor cursor(block);
    setTextCursor(cursor);
    centerCursor();
}

int TScriptEditor::GutterWidth() const
{
    const int digits = static_cast<int>(QString::number(qMax(1, blockCount())).size());
    return 8 + fontMetrics().horizontalAdvance(QLatin1Char('9')) * qMax(3, digits);
}

void TScriptEditor::PaintGutter(QPaintEvent* event)
{
    QPainter painter(gutter_);
    painter.fillRect(event->rect(), QColor(0xee, 0xee, 0xee));
    QTextBlock block = firstVisibleBlock();
    int top = qRound(blockBoundingGeometry(block).translated(contentOffset()).top());
    while (block.isValid() && top <= event->rect().bottom()) {
        const int height = qRound(blockBoundingRect(block).height());
        const int line = block.blockNumber() + 1;
        if (block.isVisible()) {
            painter.setPen(ErrorAt(line).isEmpty() ? QColor(0x80, 0x80, 0x80) : QColor(Qt::red));
            painter.drawText(0, top, gutter_->width() - 4, height, Qt::AlignRight | Qt::AlignVCenter, QString::number(line));
        }
        block = block.next();
        top += height;
    }
}

void TScriptEditor::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    const QRect r = contentsRect();
    gutter_->setGeometry(r.left(), r.top(), GutterWidth(), r.height());
}

bool TScriptEditor::event(QEvent* e)
{
    if (e->type() != QEvent::ToolTip) return QPlainTextEdit::event(e);
    auto* help = static_cast<QHelpEvent*>(e);
    const int line = cursorForPosition(viewport()->mapFromGlobal(help->globalPos())).blockNumber() + 1;
    QString tip = ErrorAt(line);
    if (tip.isEmpty() && lineTip_) tip = lineTip_(LineText(line));
    if (tip.isEmpty()) QToolTip::hideText();
    else QToolTip::showText(help->globalPos(), tip, this);
    return true;
}

QString TScriptEditor::ErrorAt(int line) const
{
    QStringList messages;
    for (const TScriptIssue& issue : check_.errors) {
        if (issue.line == line) messages << issue.message;
    }
    return messages.join('\n');
}

void TScriptEditor::UpdateMarks()
{
    QList<QTextEdit::ExtraSelection> marks;
    auto lineMark = [&](int blockNumber, const QColor& colour) {
        QTextEdit::ExtraSelection mark;
        mark.format.setBackground(colour);
        mark.format.setProperty(QTextFormat::FullWidthSelection, true);
        mark.cursor = QTextCursor(document()->findBlockByNumber(blockNumber));
        marks << mark;
    };
    lineMark(textCursor().blockNumber(), kCurrentLine);
    if (runningLine_ > 0) lineMark(runningLine_ - 1, kRunningLine);
    for (const TScriptIssue& issue : check_.errors) {
        const QTextBlock block = document()->findBlockByNumber(issue.line - 1);
        if (!block.isValid()) continue;
        QTextEdit::ExtraSelection mark;
        mark.format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        mark.format.setUnderlineColor(Qt::red);
        mark.format.setToolTip(issue.message);
        mark.cursor = QTextCursor(block);
        mark.cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        if (!mark.cursor.hasSelection()) mark.cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
        marks << mark;
    }
    setExtraSelections(marks);
    gutter_->update();
}

}  // namespace dv::workbench
