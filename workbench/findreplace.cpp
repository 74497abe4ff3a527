#include "workbench/findreplace.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QToolButton>

namespace dv::workbench {

TFindReplaceBar::TFindReplaceBar(QPlainTextEdit& editor, QWidget* parent)
    : QWidget(parent), editor_(editor), find_(new QLineEdit), replace_(new QLineEdit),
      caseSensitive_(new QCheckBox(QStringLiteral("Groß-/Kleinschreibung")))
{
    setObjectName(QStringLiteral("FindReplace"));
    find_->setObjectName(QStringLiteral("Edit_Find"));
    replace_->setObjectName(QStringLiteral("Edit_Replace"));
    caseSensitive_->setObjectName(QStringLiteral("CB_CaseSensitive"));
    find_->setPlaceholderText(QStringLiteral("Suchen"));
    replace_->setPlaceholderText(QStringLiteral("Ersetzen durch"));
    auto* next = new QPushButton(QStringLiteral("Weitersuchen"));
    auto* one = new QPushButton(QStringLiteral("Ersetzen"));
    auto* all = new QPushButton(QStringLiteral("Alle ersetzen"));
    auto* close = new QToolButton;
    close->setText(QStringLiteral("×"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    for (QWidget* w : std::initializer_list<QWidget*>{find_, next, replace_, one, all, caseSensitive_, close}) layout->addWidget(w);
    connect(find_, &QLineEdit::returnPressed, this, &TFindReplaceBar::FindNext);
    connect(next, &QPushButton::clicked, this, &TFindReplaceBar::FindNext);
    connect(one, &QPushButton::clicked, this, &TFindReplaceBar::ReplaceOne);
    connect(all, &QPushButton::clicked, this, &TFindReplaceBar::ReplaceAll);
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    hide();
}

void TFindReplaceBar::Open()
{
    if (editor_.textCursor().hasSelection()) find_->setText(editor_.textCursor().selectedText());
    show();
    find_->setFocus();
    find_->selectAll();
}

QTextDocument::FindFlags TFindReplaceBar::Flags() const
{
    return caseSensitive_->isChecked() ? QTextDocument::FindCaseSensitively : QTextDocument::FindFlags();
}

bool TFindReplaceBar::FindNext()
{
    if (find_->text().isEmpty()) return false;
    if (editor_.find(find_->text(), Flags())) return true;
    const QTextCursor keep = editor_.textCursor();
    editor_.moveCursor(QTextCursor::Start);
    if (editor_.find(find_->text(), Flags())) return true;
    editor_.setTextCursor(keep);
    return false;
}

bool TFindReplaceBar::ReplaceOne()
{
    QTextCursor cursor = editor_.textCursor();
    const Qt::CaseSensitivity cs = caseSensitive_->isChecked() ? Qt::CaseSensitive : Qt::CaseInsensitive;
    if (cursor.hasSelection() && cursor.selectedText().compare(find_->text(), cs) == 0) cursor.insertText(replace_->text());
    return FindNext();
}

int TFindReplaceBar::ReplaceAll()
{
    if (find_->text().isEmpty()) return 0;
    int count = 0;
    QTextCursor edit(editor_.document());
    edit.beginEditBlock();
    QTextCursor match = editor_.document()->find(find_->text(), 0, Flags());
    while (!match.isNull()) {
        match.insertText(replace_->text());
        ++count;
        match = editor_.document()->find(find_->text(), match, Flags());
    }
    edit.endEditBlock();
    return count;
}

}  // namespace dv::workbench
