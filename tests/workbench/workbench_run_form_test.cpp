// Runs in the workbench: verdicts, the log and its batches, the variables view, the labor window,
// and stopping a run while a command waits.
#include "commands/system/localpipe.h"
#include "tests/commands/formdriver.h"
#include "tests/workbench/workbenchdriver.h"
#include "workbench/laborwindow.h"
#include "workbench/runlog.h"
#include "workbench/scripteditor.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTextBlock>
#include <QTextEdit>
#include <QTimer>

#include <gtest/gtest.h>

namespace dv::workbench {
namespace {

using test::StopWhileWaiting;
using test::ReadText;
using test::WaitFor;
using test::WorkbenchTest;

// A passing run, one whose script does not read (it does not run), and one with a failed check, which
// does not end the run: the verdict names the check, and its log line leads to its line.
TEST_F(WorkbenchTest, RunsShowTheirVerdictAndLogAndAFailedCheckLeadsToItsLine)
{
    const struct { const char* script; const char* verdict; int exitCode; const char* logged; bool isLogged; } rows[] = {
        {"var U : Number = 4.98\nLog(\"Spannung \" + U)\nCheck(U > 4.9, \"zu klein\")", "Bestanden", 0, "2|Spannung 4.98|Info", true},
        {"Log(1)\nLog(\n", "Fehlgeschlagen", 2, "1|1|Info", false},
        {"var U : Number = 4.5\nLog(U)\nCheck(U > 4.9, \"zu klein\")\nLog(\"weiter\")", "Fehlgeschlagen", 1, "4|weiter|Info", true},
    };
    for (const auto& r : rows) {
        SetScript(r.script);
        RunToEnd();
        EXPECT_TRUE(window.Verdict().isVisible());
        EXPECT_TRUE(window.Verdict().text().startsWith(r.verdict)) << window.Verdict().text().toStdString();
        EXPECT_EQ(LogRows().contains(r.logged), r.isLogged) << LogRows().join('\n').toStdString();
        ASSERT_TRUE(window.LastReport());
        EXPECT_EQ(window.LastReport()->exitCode, r.exitCode);
    }
    EXPECT_TRUE(window.Verdict().text().contains("unbenannt.dvs:3: Prüfung fehlgeschlagen: zu klein"))
        << window.Verdict().text().toStdString();
    const QAbstractItemModel& log = *window.Log().model();
    QModelIndex failure;
    for (int i = 0; i < log.rowCount() && !failure.isValid(); ++i) {
        if (log.index(i, 3).data().toString() == "Fehler") failure = log.index(i, 2);
    }
    ASSERT_TRUE(failure.isValid()) << LogRows().join('\n').toStdString();
    EXPECT_EQ(failure.siblingAtColumn(1).data().toString(), "3");
    EXPECT_EQ(failure.data(Qt::ForegroundRole).value<QBrush>().color(), QColor(Qt::darkRed));
    window.Editor().GoToLine(1);
    const QRect row = window.Log().visualRect(failure);
    QTest::mouseClick(window.Log().viewport(), Qt::LeftButton, {}, row.center());
    EXPECT_EQ(window.Editor().CurrentLine(), 3);

    QTemporaryDir dir;
    const QString junit = dir.filePath("bericht.xml");
    ASSERT_TRUE(window.ExportJUnit(junit));
    const QString xml = ReadText(junit);
    EXPECT_TRUE(xml.contains("<failure")) << xml.toStdString();
    EXPECT_TRUE(xml.contains("zu klein"));
}

// Each command that waits on something outside the script ends its wait when the run is stopped
// (F5, then Shift+F5); meanwhile the editor is read-only and marks the running line.
TEST_F(WorkbenchTest, StopEndsEveryCommandsWaitWithin100Ms)
{
    QTcpServer silentTcp;  // takes the connection and never answers
    ASSERT_TRUE(silentTcp.listen(QHostAddress::LocalHost));
    const QString pipeName = QString("dvwb-stumm-%1").arg(QCoreApplication::applicationPid());
    const TSocketFd silentPipe = localpipe::ListenEndpoint(pipeName);  // listens, never accepts
    const QString form = folder.filePath("formular.html");
    dv::test::WriteFile(form, "<html><body><form><input name=a><input type=submit></form></body></html>");
    // The form window stands open without anyone filling it in: a browser that only waits.
    ASSERT_TRUE(QDir(folder.path()).mkpath("bin"));
    dv::test::WriteProgram(folder.filePath("bin/dvformbrowser"), "exec sleep 60");
    const dv::test::TScopedEnvironment path("PATH", QFile::encodeName(folder.filePath("bin")) + ':' + qgetenv("PATH"));
    const struct { const char* name; QString script; int line; } rows[] = {
        {"TCP", QString("var R : String\nTCP(Host := \"127.0.0.1\", Port := %1, Send := \"x\", Result := R);\nLog(R)")
                    .arg(silentTcp.serverPort()), 2},
        {"CallNamedPipe", QString("var R : String\nCallNamedPipe(Name := \"\\\\.\\pipe\\%1\", Call := \"x\", Result := R);\nLog(R)")
                              .arg(pipeName), 2},
        {"FormResult", QString("var R : String\nFormShow(File := \"%1\");\nFormResult(Timeout := -1, Result := R);\nLog(R)").arg(form), 3},
        {"Exec", "Log(\"vor\")\nExec(ExePath := \"sleep\", Params := \"30\", TimeOut := -1)\nLog(\"nach\")", 2},
    };
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    for (const auto& r : rows) {
        SetScript(r.script);
        bool readOnly = false;
        const test::TStopped stopped = StopWhileWaiting(
            window, r.line, [&] { QTest::keyClick(&window.Editor(), Qt::Key_F5); },
            [&] {
                readOnly = window.Editor().isReadOnly();
                QTest::keyClick(&window.Editor(), Qt::Key_F5, Qt::ShiftModifier);
            });
        RecordProperty(std::string("stop_ms_") + r.name, static_cast<int>(stopped.ms));
        ASSERT_GE(stopped.ms, 0) << r.name << ": did not wait, or gave no verdict\n" << LogRows().join('\n').toStdString();
        EXPECT_LT(stopped.ms, 100) << r.name;
        EXPECT_TRUE(readOnly) << r.name;
        EXPECT_TRUE(stopped.verdict.contains("Test abgebrochen")) << r.name << ": " << stopped.verdict.toStdString();
        EXPECT_EQ(LogRows().filter("|Info").filter(QRegularExpression("^\\d+\\|(nach)?\\|")).size(), 0) << r.name;
        EXPECT_EQ(window.Editor().RunningLine(), 0) << r.name;
        EXPECT_FALSE(window.Editor().isReadOnly()) << r.name;
    }
}

// Whether the editor marks the line (whole width) other than as the cursor's line.
bool MarkedAsRunning(TScriptEditor& editor, int line)
{
    if (editor.CurrentLine() == line) return false;
    for (const QTextEdit::ExtraSelection& mark : editor.extraSelections()) {
        if (mark.format.boolProperty(QTextFormat::FullWidthSelection) && mark.cursor.blockNumber() == line - 1) return true;
    }
    return false;
}

TEST_F(WorkbenchTest, VariablesViewFollowsARunningLoopAtMostTenTimesASecond)
{
    SetScript("var I : Number\nvar A : Array of Number\nA[200000] := 1\nwhile True do\n  I := I + 1\nend while");
    window.Editor().GoToLine(1);
    QSignalSpy finished(&window, &TMainWindow::RunFinished);
    window.Run();
    auto shown = [&](const char* name) {
        const auto found = window.Variables().findItems(name, Qt::MatchExactly, 0);
        return found.isEmpty() ? QString() : found.first()->text(2);
    };
    EXPECT_TRUE(WaitFor([&] { return shown("I").toDouble() > 0; }, 5000)) << "no live value while the loop runs";
    EXPECT_TRUE(window.IsRunning());
    EXPECT_EQ(window.Editor().RunningLine(), 5);
    EXPECT_TRUE(MarkedAsRunning(window.Editor(), 5));
    // A big array shows its size and its first elements only.
    EXPECT_EQ(shown("A"), QString("{0}").repeated(20) + "… (200000 Elemente)");

    // Every value the view shows stands for one refresh: sampled far more often than it may
    // change, a second shows at most eleven of them.
    QStringList seen{shown("I")};
    QElapsedTimer second;
    second.start();
    while (second.elapsed() < 1000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
        if (shown("I") != seen.last()) seen << shown("I");
    }
    EXPECT_LE(seen.size(), 12) << seen.join(' ').toStdString();
    EXPECT_GE(seen.size(), 3) << "the view stood still";
    window.Stop();
    ASSERT_TRUE(WaitFor([&] { return !finished.isEmpty(); }, 10000));
    EXPECT_TRUE(window.Verdict().text().contains("Test abgebrochen"));
    EXPECT_FALSE(MarkedAsRunning(window.Editor(), 5));
}

TEST_F(WorkbenchTest, ALongLogIsShownInFullSoonAfterTheRunEnds)
{
    SetScript("var I : Number\nfor I := 1 to 20000 do\n  Log(\"Zeile \" + I)\nend for");
    QElapsedTimer run;
    run.start();
    RunToEnd();
    RecordProperty("run_with_log_ms", static_cast<int>(run.elapsed()));
    EXPECT_LT(run.elapsed(), 3000) << "a log of 20000 lines took " << run.elapsed() << " ms to show";
    const QStringList rows = LogRows();
    ASSERT_EQ(rows.size(), 20001) << rows.mid(rows.size() - 3).join('\n').toStdString();
    EXPECT_EQ(rows.first(), "3|Zeile 1|Info");
    EXPECT_EQ(rows[19999], "3|Zeile 20000|Info");
    EXPECT_TRUE(rows.last().contains("ERGEBNIS bestanden")) << rows.last().toStdString();
    EXPECT_EQ(window.LogModel().Dropped(), 0);
}

TEST_F(WorkbenchTest, AnEndlessLoggingLoopLeavesTheWindowResponsiveAndStopsAtOnce)
{
    window.LogModel().SetCapacity(1000);
    SetScript("var I : Number\nwhile True do\n  I := I + 1\n  Log(I)\nend while");
    QSignalSpy finished(&window, &TMainWindow::RunFinished);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window.Editor(), Qt::Key_F5);
    ASSERT_TRUE(window.IsRunning());
    // A timer of the window's event loop keeps ticking while the run floods the log.
    int ticks = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&ticks] { ++ticks; });
    tick.start(20);
    WaitFor([] { return false; }, 1000);
    tick.stop();
    EXPECT_GE(ticks, 10) << "the window did not react for a second";
    EXPECT_GT(window.LogModel().rowCount(), 0) << "nothing logged yet";

    QElapsedTimer stopping;
    stopping.start();
    qint64 verdictMs = -1;
    QObject::connect(&window, &TMainWindow::RunFinished, [&] { verdictMs = stopping.elapsed(); });
    QTest::keyClick(&window.Editor(), Qt::Key_F5, Qt::ShiftModifier);
    ASSERT_TRUE(WaitFor([&] { return !finished.isEmpty(); }, 10000)) << "no verdict after Stop";
    RecordProperty("verdict_after_stop_ms", static_cast<int>(verdictMs));
    EXPECT_LT(verdictMs, 1000);
    EXPECT_TRUE(window.Verdict().text().contains("Test abgebrochen")) << window.Verdict().text().toStdString();
    // The newest lines are kept, under a note saying how many went.
    const TLogModel& log = window.LogModel();
    ASSERT_EQ(log.rowCount(), 1001);
    EXPECT_GT(log.Dropped(), 0);
    EXPECT_EQ(log.Entry(0).level, TLogLevel::Warning);
    EXPECT_EQ(log.Entry(0).message,
              QString("%1 ältere Einträge nicht mehr angezeigt (es bleiben die letzten 1000)").arg(log.Dropped()));
    // The run's own last lines say that it was stopped and failed.
    EXPECT_TRUE(log.Entry(999).message.endsWith("Test abgebrochen")) << log.Entry(999).message.toStdString();
    EXPECT_TRUE(log.Entry(1000).message.contains("fehlgeschlagen")) << log.Entry(1000).message.toStdString();
    const long long first = log.Entry(1).message.toLongLong();
    EXPECT_EQ(log.Entry(998).message.toLongLong(), first + 997) << "the kept lines follow one another";
    EXPECT_EQ(first, log.Dropped() + 1) << "every line before them is counted";
}

TEST_F(WorkbenchTest, VariablesViewShowsTheValuesTheRunLeft)
{
    window.SetProjectFolder(folder.path());
    SetScript("var N : Number\nvar T : String\nvar A : Array of Number\nN := 6 * 7\nT := \"x\" + \"y\"\nA[2] := 5");
    RunToEnd();
    EXPECT_EQ(VariableValue("N"), "Number 42");
    EXPECT_EQ(VariableValue("T"), "String xy");
    EXPECT_EQ(VariableValue("A"), "Array of Number {0}{5}");
    EXPECT_EQ(VariableValue("PROJEKTPFAD"), "String " + QDir::cleanPath(folder.path()));
}

// The format of the labor document at the first character of text.
QTextCharFormat FormatOf(QTextEdit& document, const QString& text)
{
    QTextCursor at = document.document()->find(text);
    if (at.isNull()) return {};
    at.setPosition(at.selectionStart() + 1);
    return at.charFormat();
}

TEST_F(WorkbenchTest, TextOutputAndTheLaborCommandsReachTheLaborWindow)
{
    // Colours are 0x00BBGGRR numbers: 255 is red, 16711680 blue.
    SetScript("ShowLabor\nTextOut(Text := \"Hallo Labor\")\n"
              "TextOut(Text := \"Rot fett\", Font := \"Courier\", FontSize := 14, FontColor := 255, FontStyle := \"BOLD UNDERLINE\")\n"
              "TextOut(Text := \"Blau schraeg\", FontSize := 8, FontColor := 16711680, FontStyle := \"ITALIC STRIKEOUT\")");
    RunToEnd();
    EXPECT_TRUE(window.Labor().isVisible());
    EXPECT_EQ(window.Labor().Document().toPlainText(), "Hallo Labor\nRot fett\nBlau schraeg");
    const struct { const char* text; int size; QColor colour; bool bold, italic, underline, strikeOut; } formats[] = {
        {"Rot fett", 14, QColor(255, 0, 0), true, false, true, false},
        {"Blau schraeg", 8, QColor(0, 0, 255), false, true, false, true},
    };
    for (const auto& f : formats) {
        const QTextCharFormat format = FormatOf(window.Labor().Document(), f.text);
        EXPECT_EQ(format.fontPointSize(), f.size) << f.text;
        EXPECT_EQ(format.foreground().color(), f.colour) << f.text;
        EXPECT_EQ(format.fontWeight() == QFont::Bold, f.bold) << f.text;
        EXPECT_EQ(format.fontItalic(), f.italic) << f.text;
        EXPECT_EQ(format.fontUnderline(), f.underline) << f.text;
        EXPECT_EQ(format.fontStrikeOut(), f.strikeOut) << f.text;
    }
    EXPECT_TRUE(FormatOf(window.Labor().Document(), "Rot fett").fontFamilies().toStringList().contains("Courier"));
    const QString pdf = folder.filePath("labor.pdf");
    ASSERT_TRUE(window.Labor().ExportPdf(pdf));
    EXPECT_TRUE(ReadText(pdf).startsWith("%PDF"));
    SetScript("HideLabor");
    RunToEnd();
    EXPECT_FALSE(window.Labor().isVisible());
}

TEST(RunLog, HostLinesBecomeEntriesWithLevelAndLine)
{
    const struct { const char* hostLine; int runningLine, line; const char* message; TLogLevel level; } cases[] = {
        {"LOG Spannung 5", 7, 7, "Spannung 5", TLogLevel::Info},
        {"FEHLER a.dvs:12: Division durch 0", 3, 12, "a.dvs:12: Division durch 0", TLogLevel::Error},
        {"PRÜFUNG FEHLGESCHLAGEN Zeile 4: zu klein", 9, 4, "PRÜFUNG FEHLGESCHLAGEN Zeile 4: zu klein", TLogLevel::Error},
        {"WARN Datei fehlt", 2, 2, "Datei fehlt", TLogLevel::Warning},
        {"STATUS bereit", 1, 1, "STATUS bereit", TLogLevel::Info},
    };
    for (const auto& c : cases) {
        const TLogEntry e = MakeLogEntry(QString::fromUtf8(c.hostLine), c.runningLine);
        EXPECT_EQ(e.line, c.line) << c.hostLine;
        EXPECT_EQ(e.message, QString::fromUtf8(c.message)) << c.hostLine;
        EXPECT_EQ(e.level, c.level) << c.hostLine;
    }
}

}  // namespace
}  // namespace dv::workbench
