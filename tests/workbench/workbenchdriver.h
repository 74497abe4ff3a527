#pragma once
// Driving the workbench's main window in tests: waiting on its event loop, and stopping a run
// while one of its commands waits.
#include "workbench/mainwindow.h"
#include "workbench/scripteditor.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QSignalSpy>

#include <functional>

namespace dv::workbench::test {

// Lets the event loop run until pred holds or ms have passed; pred's last answer.
inline bool WaitFor(const std::function<bool()>& pred, int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (!pred() && timer.elapsed() < ms) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return pred();
}

struct TStopped {
    qint64 ms = -1;  // from the stop request to the verdict; -1 when no verdict came
    QString verdict;
};

// Runs the window's script until line is the running line, lets the command there settle into
// its wait, and then stops the run through stop (F5 and Shift+F5, or Stop()).
inline TStopped StopWhileWaiting(TMainWindow& window, int line, const std::function<void()>& start,
                                 const std::function<void()>& stop)
{
    QSignalSpy finished(&window, &TMainWindow::RunFinished);
    start();
    if (!WaitFor([&] { return window.Editor().RunningLine() == line; }, 5000)) return {};
    WaitFor([] { return false; }, 300);
    if (!finished.isEmpty()) return {};  // it did not wait
    TStopped stopped;
    QElapsedTimer stopping;
    QMetaObject::Connection done =
        QObject::connect(&window, &TMainWindow::RunFinished, [&] { stopped.ms = stopping.elapsed(); });
    stopping.start();
    stop();
    WaitFor([&] { return !finished.isEmpty(); }, 10000);
    QObject::disconnect(done);
    stopped.verdict = window.Verdict().text();
    return stopped;
}

}  // namespace dv::workbench::test
