#include "framework/systemlog.h"

#include <cstdio>

namespace dv {

TLogFile SystemLog;

void TLogFile::Warn(const QString& text) { Write(QStringLiteral("WARN"), text); }

void TLogFile::Debug(const QString& text) { Write(QStringLiteral("DEBUG"), text); }

void TLogFile::SetSink(Sink sink)
{
    std::lock_guard lock(mutex_);
    sink_ = std::move(sink);
}

void TLogFile::Write(const QString& level, const QString& text)
{
    std::lock_guard lock(mutex_);
    if (sink_) {
        sink_(level, text);
        return;
    }
    if (level == QStringLiteral("DEBUG")) return;
    std::fprintf(stderr, "%s: %s\n", qPrintable(level), qPrintable(text));
}

}  // namespace dv
