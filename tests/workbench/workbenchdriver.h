#pragma once
// Driving the workbench's main window in tests: waiting on its event loop, a window with a scratch
// folder and a script, and stopping a run while one of its commands waits.
#include "commands/system/platform_process.h"
#include "tests/commands/formdriver.h"
#include "tests/support/process.h"
#include "workbench/logmodel.h"
#include "workbench/mainwindow.h"
#include "workbench/palette.h"
#include "workbench/scripteditor.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTreeView>
#include <QTreeWidget>

#include <gtest/gtest.h>

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

using dv::test::ReadFile;
using dv::test::WriteFile;
inline QString ReadText(const QString& path) { return QString::fromUtf8(ReadFile(path)); }

// A shown main window; programs the scripts start write into the scratch folder.
class WorkbenchTest : public ::testing::Test {
protected:
    WorkbenchTest()
    {
        SetProgramOutputFolder(folder.path());
        window.show();
    }

    void SetScript(const QString& text)
    {
        window.Editor().setPlainText(text);
        window.Editor().CheckNow();
    }
    // Opens the palette row's dialog with Enter; fill works the dialog named form and closes it.
    void InsertFromPalette(const char* row, const QString& form, std::function<void(QWidget&)> fill)
    {
        dv::test::OnModal(form, std::move(fill));
        window.Palette().setCurrentItem(window.Palette().ItemOf(row));
        QTest::keyClick(&window.Palette(), Qt::Key_Return);
    }
    void RunToEnd()
    {
        QSignalSpy finished(&window, &TMainWindow::RunFinished);
        window.Run();
        ASSERT_TRUE(WaitFor([&] { return !finished.isEmpty(); }, 20000)) << "the run did not end";
    }
    // The log rows as "line|message|level".
    QStringList LogRows()
    {
        QStringList rows;
        const QAbstractItemModel& log = *window.Log().model();
        for (int i = 0; i < log.rowCount(); ++i) {
            rows << log.index(i, 1).data().toString() + '|' + log.index(i, 2).data().toString() + '|' +
                        log.index(i, 3).data().toString();
        }
        return rows;
    }
    QString VariableValue(const QString& name)
    {
        const auto found = window.Variables().findItems(name, Qt::MatchExactly, 0);
        return found.isEmpty() ? QStringLiteral("<fehlt>") : found.first()->text(1) + ' ' + found.first()->text(2);
    }

    QTemporaryDir folder;
    TMainWindow window;
};

// ms: from the stop request to the verdict; -1 when no verdict came.
struct TStopped { qint64 ms = -1; QString verdict; };

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
