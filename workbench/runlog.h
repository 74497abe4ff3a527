#pragma once
// One entry of the run log as the log dock shows it, made from a line of the host's run log.
#include <QMetaType>
#include <QString>
#include <QTime>

namespace dv::workbench {

enum class TLogLevel { Info, Output, Warning, Error };

struct TLogEntry {
    QTime time;
    int line = 0;  // script line, 0 when none
    QString message;
    TLogLevel level = TLogLevel::Info;
};

// hostLine: a line of the host's run log ("LOG Spannung 5", "FEHLER test.dvs:4: ...");
// runningLine: the line being run when it was written, used when the text names none.
TLogEntry MakeLogEntry(const QString& hostLine, int runningLine);
QString LevelName(TLogLevel level);

}  // namespace dv::workbench

Q_DECLARE_METATYPE(dv::workbench::TLogEntry)
