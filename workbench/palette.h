#pragma once
// The command palette: the catalogue as a tree grouped by subsystem. Rows whose command is not
// built are shown disabled; a double click or Enter on a row asks to insert that command.
#include <QTreeWidget>

namespace dv::workbench {

class TCommandPalette final : public QTreeWidget {
    Q_OBJECT
public:
    explicit TCommandPalette(QWidget* parent = nullptr);
    // The row of a procedure ("TCP", "(loop)"), or nullptr.
    QTreeWidgetItem* ItemOf(const QString& procedure) const;
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
