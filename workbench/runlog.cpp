#include "workbench/runlog.h"

#include <QRegularExpression>

#include <array>

namespace dv::workbench {

namespace {

struct TPrefix {
    const char* text;  // the host's prefix, followed by a blank
    TLogLevel level;
    bool keep;  // the prefix stays in the message (it says what happened)
};

// clang-format off
constexpr std::array kPrefixes{
    TPrefix{"LOG", TLogLevel::Info, false},
    TPrefix{"AUSGABE", TLogLevel::Output, false},
    TPrefix{"STATUS", TLogLevel::Info, true},
    TPrefix{"WARN", TLogLevel::Warning, false},
    TPrefix{"WARNING", TLogLevel::Warning, false},
    TPrefix{"FEHLER", TLogLevel::Error, false},
    TPrefix{"PRÜFUNG", TLogLevel::Error, true},
    TPrefix{"STOP", TLogLevel::Warning, true},
};
// clang-format on

// The line a message names itself: "name.dvs:12: ..." or "... Zeile 12: ...".
int NamedLine(const QString& message)
{
    static const QRegularExpression named(QStringLiteral("^[^:]*:(\\d+):|Zeile (\\d+):"));
    const QRegularExpressionMatch m = named.match(message);
    if (!m.hasMatch()) return 0;
    return (m.captured(1).isEmpty() ? m.captured(2) : m.captured(1)).toInt();
}

}  // namespace

TLogEntry MakeLogEntry(const QString& hostLine, int runningLine)
{
    TLogEntry entry{QTime::currentTime(), runningLine, hostLine, TLogLevel::Info};
    const QString word = hostLine.section(' ', 0, 0);
    for (const TPrefix& p : kPrefixes) {
        if (word != QString::fromUtf8(p.text)) continue;
        entry.level = p.level;
        if (!p.keep) entry.message = hostLine.section(' ', 1);
        break;
    }
    if (const int line = NamedLine(entry.message)) entry.line = line;
    return entry;
}

QString LevelName(TLogLevel level)
{
    switch (level) {
    case TLogLevel::Info: return QStringLiteral("Info");
    case TLogLevel::Output: return QStringLiteral("Ausgabe");
    case TLogLevel::Warning: return QStringLiteral("Warnung");
    case TLogLevel::Error: return QStringLiteral("Fehler");
    }
    return {};
}

}  // namespace dv::workbench
