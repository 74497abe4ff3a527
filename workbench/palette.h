#pragma once
// The command palette: the catalogue as a tree grouped by subsystem. Rows whose command is not
// built are shown disabled; a double click or Enter on a row asks to insert that command.
#include "framework/catalogue.h"

#include <QTreeWidget>

#include <functional>
#include <span>

namespace dv::workbench {

class TCommandPalette final : public QTreeWidget {
    Q_OBJECT
public:
    using TAvailable = std::function<bool(const TCatalogueRow&)>;

    // The library's catalogue, rows available as the registry says.
    explicit TCommandPalette(QWidget* parent = nullptr);
    TCommandPalette(std::span<const TCatalogueRow> rows, TAvailable available, QWidget* parent = nullptr);
    // The row of a procedure ("TCP", "(loop)"), or nullptr.
    QTreeWidgetItem* ItemOf(const QString& procedure) const;
    // The title a subsystem's group carries ("Struktur").
    static QString GroupTitle(TSubsystem group);
    static constexpr int kCommandClassRole = Qt::UserRole + 1;

signals:
    // commandClass: the catalogue's class of the chosen row.
    void InsertRequested(const QString& commandClass);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Request(QTreeWidgetItem* item);
};

}  // namespace dv::workbench
