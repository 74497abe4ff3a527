#pragma once
// The rows of the log dock. A run may log far faster than anyone reads: lines arrive in batches
// (the window takes them at most ten times a second), each row is read apart only when the view
// shows it, and only the newest rows are kept, under a first row that says how many went.
#include "workbench/runlog.h"

#include <QAbstractTableModel>

#include <deque>

namespace dv::workbench {

// A line of the host's run log as the run wrote it.
struct TLogLine {
    QTime time;
    int runningLine = 0;  // the line being run when it was written
    QString text;         // "LOG Spannung 5"
};

class TLogModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr qsizetype kDefaultCapacity = 50'000;
    static constexpr int kLineRole = Qt::UserRole;  // the script line of a row, 0 for none
    enum TColumn { Time, Line, Message, Level, ColumnCount };

    explicit TLogModel(QObject* parent = nullptr);

    // Appends a batch; dropped: lines of the run that never reached the model (they count as gone).
    void Append(std::deque<TLogLine> lines, qsizetype dropped = 0);
    void Clear();
    void SetCapacity(qsizetype rows);
    qsizetype Capacity() const { return capacity_; }
    // Lines that are no longer shown (the first row's count); 0 when all are.
    qsizetype Dropped() const { return dropped_; }
    // The entry of a row; the first row is the note when lines were dropped.
    TLogEntry Entry(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    int NoteRows() const { return dropped_ > 0 ? 1 : 0; }

    std::deque<TLogLine> lines_;
    qsizetype dropped_ = 0;
    qsizetype capacity_ = kDefaultCapacity;
};

}  // namespace dv::workbench
