#include "workbench/palette.h"

#include "framework/catalogue.h"
#include "framework/registry.h"

#include <QKeyEvent>

#include <array>

namespace dv::workbench {

namespace {

struct TGroup {
    char chapter;       // first digit of the row's reference chapter
    const char* title;  // the subsystem
};

// clang-format off
constexpr std::array kGroups{
    TGroup{'2', "Text"}, TGroup{'3', "Struktur"}, TGroup{'4', "System"},
    TGroup{'5', "Dialoge"}, TGroup{'6', "Scope"}, TGroup{'8', "Bild"},
};
// clang-format on

// Rows without a chapter of their own are placed by what they work on.
char ChapterOf(const TCatalogueRow& row)
{
    const QString procedure = QString::fromLatin1(row.procedure);
    if (procedure.startsWith(QLatin1String("Image"))) return '8';
    if (*row.section && row.section[0] != '1') return row.section[0];
    return '5';  // the HTML forms and the laboratory view are dialogs to the user
}

}  // namespace

TCommandPalette::TCommandPalette(QWidget* parent) : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("CommandPalette"));
    setHeaderHidden(true);
    for (const TGroup& g : kGroups) {
        auto* group = new QTreeWidgetItem(this, {QString::fromLatin1(g.title)});
        group->setFlags(Qt::ItemIsEnabled);
        for (const TCatalogueRow& row : Catalogue()) {
            if (ChapterOf(row) != g.chapter) continue;
            auto* item = new QTreeWidgetItem(group, {QString::fromLatin1(row.procedure)});
            item->setData(0, kCommandClassRole, QString::fromLatin1(row.commandClass));
            item->setToolTip(0, *row.signature ? QString::fromLatin1(row.signature) : QString::fromLatin1(row.dialogClass));
            if (!IsAvailable(row)) {
                item->setFlags(Qt::NoItemFlags);
                item->setToolTip(0, item->toolTip(0) + QStringLiteral("\n(nicht verfügbar)"));
            }
        }
    }
    expandAll();
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) { Request(item); });
}

QTreeWidgetItem* TCommandPalette::ItemOf(const QString& procedure) const
{
    // A group may carry a row's name ("Scope"): only rows that name a command count.
    for (QTreeWidgetItem* item : findItems(procedure, Qt::MatchExactly | Qt::MatchRecursive)) {
        if (!item->data(0, kCommandClassRole).toString().isEmpty()) return item;
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
