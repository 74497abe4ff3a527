#pragma once
// The host's system log; this library only warns through it.
#include <QString>

#include <functional>
#include <mutex>
#include <vector>

namespace dv {

class TLogFile {
public:
    using Sink = std::function<void(const QString& level, const QString& text)>;

    void Warn(const QString& text);
    void Debug(const QString& text);
    // The host decides where log lines go; without a sink they go to stderr.
    void SetSink(Sink sink);

private:
    void Write(const QString& level, const QString& text);
    std::mutex mutex_;
    Sink sink_;
};

extern TLogFile SystemLog;

}  // namespace dv
