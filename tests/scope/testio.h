#pragma once
// For the scope and image tests: files written byte for byte, texts as Windows editors save them,
// sampled curves, the system log of a run, and dvrun started as a user starts it.
#include "framework/systemlog.h"
#include "scope/curvefile.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

namespace dv::testio {

// Writes bytes to path over what was there; false when that fails.
inline bool WriteFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

inline QString ReadText(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

// text as UTF-16 code units, little or big endian, without a byte order mark.
inline QByteArray Utf16(const QString& text, bool little)
{
    QByteArray bytes;
    for (QChar c : text) {
        const char hi = static_cast<char>(c.unicode() >> 8), lo = static_cast<char>(c.unicode() & 0xFF);
        bytes.append(little ? lo : hi).append(little ? hi : lo);
    }
    return bytes;
}

// n samples of f at the times i / rate, written to path as "x;y" rows; returns path.
inline QString WriteSignal(const QString& path, int n, double rate, const std::function<double(double)>& f)
{
    scope::TCurvePoints p;
    for (int i = 0; i < n; ++i) {
        p.x.push_back(i / rate);
        p.y.push_back(f(i / rate));
    }
    scope::WriteCurveFile(path, p, ';');
    return path;
}

// A test that keeps what is written to the system log, where the scope reports its faults.
class TLoggedTest : public testing::Test {
protected:
    void SetUp() override { SystemLog.SetSink([this](const QString&, const QString& text) { warnings << text; }); }
    void TearDown() override { SystemLog.SetSink({}); }
    QString Logged() const { return warnings.join('\n'); }
    QStringList warnings;
    QTemporaryDir dir;
};

struct TDvrun {
    int exitCode = -1;
    QString out;  // stdout, with stderr unless kept apart
    QString err;
};

// dvrun with args where there is no display: without DISPLAY, WAYLAND_DISPLAY and QT_QPA_PLATFORM.
inline TDvrun Dvrun(const QStringList& args, bool keepStderrApart = false)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) env.remove(name);
    p.setProcessEnvironment(env);
    if (!keepStderrApart) p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(DV_BINARY_DIR "/host/dvrun", args);
    if (!p.waitForFinished(60000)) {
        p.kill();
        p.waitForFinished();
        return {-1, "dvrun did not end within 60 s", {}};
    }
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

}  // namespace dv::testio
