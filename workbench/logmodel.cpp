#include "workbench/logmodel.h"

#include <QBrush>

#include <algorithm>

namespace dv::workbench {

TLogModel::TLogModel(QObject* parent) : QAbstractTableModel(parent) {}

void TLogModel::Append(std::deque<TLogLine> lines, qsizetype dropped)
{
    // Of a batch larger than the model holds, only its newest lines are inserted at all.
    if (static_cast<qsizetype>(lines.size()) > capacity_) {
        const qsizetype surplus = static_cast<qsizetype>(lines.size()) - capacity_;
        lines.erase(lines.begin(), lines.begin() + surplus);
        dropped += surplus;
    }
    const qsizetype overflow = std::max<qsizetype>(0, static_cast<qsizetype>(lines_.size() + lines.size()) - capacity_);
    if (overflow > 0 || dropped > 0) {
        const bool noteAppears = dropped_ == 0;
        if (overflow > 0) {
            beginRemoveRows({}, NoteRows(), NoteRows() + static_cast<int>(overflow) - 1);
            lines_.erase(lines_.begin(), lines_.begin() + overflow);
            endRemoveRows();
        }
        if (noteAppears) beginInsertRows({}, 0, 0);
        dropped_ += overflow + dropped;
        if (noteAppears) endInsertRows();
        else emit dataChanged(index(0, 0), index(0, ColumnCount - 1));
    }
    if (lines.empty()) return;
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(lines.size()) - 1);
    lines_.insert(lines_.end(), std::make_move_iterator(lines.begin()), std::make_move_iterator(lines.end()));
    endInsertRows();
}

void TLogModel::Clear()
{
    beginResetModel();
    lines_.clear();
    dropped_ = 0;
    endResetModel();
}

void TLogModel::SetCapacity(qsizetype rows)
{
    capacity_ = std::max<qsizetype>(1, rows);
    Append({});
}

TLogEntry TLogModel::Entry(int row) const
{
    if (row < NoteRows()) {
        const QString note = QStringLiteral("%1 ältere Einträge nicht mehr angezeigt (es bleiben die letzten %2)");
        return {QTime(), 0, note.arg(dropped_).arg(capacity_), TLogLevel::Warning};
    }
    const TLogLine& line = lines_[static_cast<std::size_t>(row - NoteRows())];
    TLogEntry entry = MakeLogEntry(line.text, line.runningLine);
    entry.time = line.time;
    return entry;
}

int TLogModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(lines_.size()) + NoteRows();
}

int TLogModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant TLogModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) return {};
    if (role != Qt::DisplayRole && role != Qt::ForegroundRole && role != kLineRole) return {};
    const TLogEntry entry = Entry(index.row());
    if (role == kLineRole) return entry.line;
    if (role == Qt::ForegroundRole) return entry.level == TLogLevel::Error ? QVariant(QBrush(Qt::darkRed)) : QVariant();
    switch (index.column()) {
    case Time: return entry.time.isValid() ? entry.time.toString(QStringLiteral("HH:mm:ss.zzz")) : QString();
    case Line: return entry.line > 0 ? QString::number(entry.line) : QString();
    case Message: return entry.message;
    case Level: return LevelName(entry.level);
    default: return {};
    }
}

QVariant TLogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    switch (section) {
    case Time: return QStringLiteral("Zeit");
    case Line: return QStringLiteral("Zeile");
    case Message: return QStringLiteral("Meldung");
    case Level: return QStringLiteral("Stufe");
    default: return {};
    }
}

}  // namespace dv::workbench
