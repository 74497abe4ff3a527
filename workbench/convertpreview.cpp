#include "workbench/convertpreview.h"

#include "host/importer.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace dv::workbench {

TConvertPreview::TConvertPreview(const QString& script, host::TCommandPool& commands, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("ConvertPreview"));
    setWindowTitle(QStringLiteral("Ältere Zeilen umsetzen"));
    QStringList warnings;
    converted_ = host::ConvertScript(script, commands, &warnings);
    auto* changes = new QTreeWidget;
    changes->setObjectName(QStringLiteral("Changes"));
    changes->setRootIsDecorated(false);
    changes->setHeaderLabels({QStringLiteral("Zeile"), QStringLiteral("Bisher"), QStringLiteral("Neu")});
    // Lines are compared by position: the converter rewrites a line in place or keeps it.
    const QStringList before = script.split('\n');
    const QStringList after = converted_.split('\n');
    for (qsizetype i = 0; i < qMin(before.size(), after.size()); ++i) {
        if (before[i] == after[i]) continue;
        new QTreeWidgetItem(changes, {QString::number(i + 1), before[i], after[i]});
        ++changed_;
    }
    auto* summary = new QLabel(QStringLiteral("%1 Zeilen werden umgesetzt.").arg(changed_));
    summary->setObjectName(QStringLiteral("Summary"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("BT_OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Abbrechen"));
    buttons->button(QDialogButtonBox::Ok)->setEnabled(changed_ > 0);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary);
    layout->addWidget(changes);
    if (!warnings.isEmpty()) {
        auto* warned = new QLabel(warnings.join('\n'));
        warned->setObjectName(QStringLiteral("Warnings"));
        layout->addWidget(warned);
    }
    layout->addWidget(buttons);
    resize(900, 400);
}

}  // namespace dv::workbench
