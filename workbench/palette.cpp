#include "workbench/palette.h"

#include "framework/registry.h"

#include <QKeyEvent>

#include <array>

namespace dv::workbench {

namespace {

// The groups in the order the palette lists them.
constexpr std::array kGroups{
    TSubsystem::Text,  TSubsystem::Structure, TSubsystem::System, TSubsystem::Dialogs,
    TSubsystem::Scope, TSubsystem::Image,     TSubsystem::Host,
};

}  // namespace

TCommandPalette::TCommandPalette(QWidget* parent) : TCommandPalette(Catalogue(), &IsAvailable, parent) {}

TCommandPalette::TCommandPalette(std::span<const TCatalogueRow> rows, TAvailable available, QWidget* parent)
    : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("CommandPalette"));
    setHeaderHidden(true);
    for (const TSubsystem g : kGroups) {
        QTreeWidgetItem* group = nullptr;
        for (const TCatalogueRow& row : rows) {
            if (row.group != g) continue;
            if (!group) {
                group = new QTreeWidgetItem(this, {GroupTitle(g)});
                group->setFlags(Qt::ItemIsEnabled);
            }
            auto* item = new QTreeWidgetItem(group, {QString::fromLatin1(row.procedure)});
            item->setData(0, kCommandClassRole, QString::fromLatin1(row.commandClass));
            item->setToolTip(0, *row.signature ? QString::fromLatin1(row.signature) : QString::fromLatin1(row.dialogClass));
            if (!available(row)) {
                item->setFlags(Qt::NoItemFlags);
                item->setToolTip(0, item->toolTip(0) + QStringLiteral("\n(nicht verfügbar)"));
            }
        }
    }
    expandAll();
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) { Request(item); });
}

QString TCommandPalette::GroupTitle(TSubsystem group)
{
    switch (group) {
    case TSubsystem::Text: return QStringLiteral("Text");
    case TSubsystem::Structure: return QStringLiteral("Struktur");
    case TSubsystem::System: return QStringLiteral("System");
    case TSubsystem::Dialogs: return QStringLiteral("Dialoge");
    case TSubsystem::Scope: return QStringLiteral("Scope");
    case TSubsystem::Image: return QStringLiteral("Bild");
    case TSubsystem::Host: return QStringLiteral("Labor");
    }
    return {};
}

QTreeWidgetItem* TCommandPalette::ItemOf(const QString& procedure) const
{
    // A group may carry a command's name ("Scope"): only command rows count.
    for (QTreeWidgetItem* item : findItems(procedure, Qt::MatchExactly | Qt::MatchRecursive)) {
        if (item->parent()) return item;
    }
    return nullptr;
}

void TCommandPalette::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        Request(currentItem());
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

void TCommandPalette::Request(QTreeWidgetItem* item)
{
    if (!item || !(item->flags() & Qt::ItemIsEnabled)) return;
    const QString commandClass = item->data(0, kCommandClassRole).toString();
    if (!commandClass.isEmpty()) emit InsertRequested(commandClass);
}

}  // namespace dv::workbench
