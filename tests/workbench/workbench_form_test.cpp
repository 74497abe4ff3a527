// The workbench driven through its widgets: calls written and re-edited through the commands'
// dialogs, scripts run and stopped, and what the log, the verdict and the variables show after.
#include "commands/system/localpipe.h"
#include "commands/system/platform_process.h"
#include "framework/catalogue.h"
#include "framework/registry.h"
#include "tests/commands/formdriver.h"
#include "tests/workbench/workbenchdriver.h"
#include "workbench/calledit.h"
#include "workbench/findreplace.h"
#include "workbench/highlighter.h"
#include "workbench/logmodel.h"
#include "workbench/laborwindow.h"
#include "workbench/mainwindow.h"
#include "workbench/palette.h"
#include "workbench/runlog.h"
#include "workbench/scripteditor.h"
#include "workbench/scriptfile.h"

#include <QCompleter>
#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QStringEncoder>
#include <QMessageBox>
#include <QSignalSpy>
#include <QStringListModel>
#include <QScopeGuard>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextEdit>
#include <QToolTip>
#include <QHelpEvent>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace dv::workbench {
namespace {

using dv::test::Click;
using dv::test::OnModal;
using dv::test::Type;
using test::StopWhileWaiting;
using test::WaitFor;

QString ReadText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QByteArray ReadBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool WriteBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

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

TEST_F(WorkbenchTest, PaletteInsertsATcpCallWrittenFromItsDialogWithNamedArguments)
{
    SetScript("var Antwort : String\n\nLog(Antwort)");
    window.Editor().GoToLine(2);
    QStringList offered;
    OnModal("TFormTCP", [&offered](QWidget& d) {
        const QCompleter* completer = dv::test::Find<QLineEdit>(d, "DVEdit_Result").completer();
        if (const auto* names = completer ? qobject_cast<QStringListModel*>(completer->model()) : nullptr) {
            offered = names->stringList();
        }
        Type(d, "DVEdit_Host", "\"127.0.0.1\"");
        Type(d, "DVEdit_Port", "5000");
        Type(d, "DVEdit_Send", "\"PING\"");
        Type(d, "DVEdit_Result", "Antwort");
        Click(d, "BT_OK");
    });
    TCommandPalette& palette = window.Palette();
    palette.setCurrentItem(palette.ItemOf("TCP"));
    QTest::keyClick(&palette, Qt::Key_Return);
    // The untouched sentinel keeps its default; as it is not trailing, it is written out.
    EXPECT_EQ(window.Editor().LineText(2),
              "TCP(Host := \"127.0.0.1\", Port := 5000, Send := \"PING\", Sentinel := [10], Result := Antwort);");
    EXPECT_EQ(window.Editor().LineText(3), "Log(Antwort)");
    EXPECT_EQ(offered, QStringList({"PROJEKTPFAD", "Antwort"})) << "the dialog offers the declared variables";
    window.Editor().CheckNow();
    EXPECT_TRUE(window.Editor().LastCheck().errors.empty()) << "the written line must read back as a call";
}

TEST_F(WorkbenchTest, PaletteListsEveryCatalogueRowUnderItsSubsystem)
{
    QStringList groups;
    for (int i = 0; i < window.Palette().topLevelItemCount(); ++i) groups << window.Palette().topLevelItem(i)->text(0);
    EXPECT_EQ(groups, QStringList({"Text", "Struktur", "System", "Dialoge", "Scope", "Bild", "Labor"}));
    const std::pair<const char*, const char*> placed[] = {
        {"ArrayToStr", "Text"}, {"(loop)", "Struktur"}, {"(comment)", "Struktur"}, {"TCP", "System"},
        {"MeldungsBox", "Dialoge"}, {"FormResult", "Dialoge"}, {"Scope", "Scope"}, {"ImageCapture", "Bild"},
        {"ShowLabor", "Labor"},
    };
    for (const auto& [procedure, group] : placed) {
        const QTreeWidgetItem* item = window.Palette().ItemOf(procedure);
        ASSERT_TRUE(item && item->parent()) << procedure;
        EXPECT_EQ(item->parent()->text(0), group) << procedure;
    }
    int rows = 0;
    for (int i = 0; i < window.Palette().topLevelItemCount(); ++i) rows += window.Palette().topLevelItem(i)->childCount();
    EXPECT_EQ(rows, static_cast<int>(dv::Catalogue().size()));
}

TEST(CommandPalette, RowsNotBuiltAreGreyedAndInsertNothing)
{
    const dv::TCatalogueRow rows[] = {
        {"Gebaut", "procedure Gebaut;", "TDVCmdGebaut", dv::TBaseKind::Func, "", 0, dv::TSubsystem::System},
        {"Fehlt", "procedure Fehlt;", "TDVCmdFehlt", dv::TBaseKind::Func, "", 0, dv::TSubsystem::System},
        {"Kamera", "procedure Kamera;", "TDVCmdKamera", dv::TBaseKind::Func, "", 0, dv::TSubsystem::Image},
    };
    TCommandPalette palette(rows, [](const dv::TCatalogueRow& row) { return QString(row.procedure) != "Fehlt"; });
    palette.show();
    ASSERT_EQ(palette.topLevelItemCount(), 2) << "groups without rows are left out";
    QSignalSpy requested(&palette, &TCommandPalette::InsertRequested);
    for (const char* procedure : {"Fehlt", "Gebaut", "Kamera"}) {
        QTreeWidgetItem* item = palette.ItemOf(procedure);
        ASSERT_TRUE(item) << procedure;
        palette.setCurrentItem(item);
        QTest::keyClick(&palette, Qt::Key_Return);
        emit palette.itemDoubleClicked(item, 0);
    }
    const QTreeWidgetItem* missing = palette.ItemOf("Fehlt");
    EXPECT_FALSE(missing->flags() & Qt::ItemIsEnabled);
    EXPECT_TRUE(missing->toolTip(0).endsWith("(nicht verfügbar)")) << missing->toolTip(0).toStdString();
    EXPECT_TRUE(palette.ItemOf("Gebaut")->flags() & Qt::ItemIsEnabled);
    QStringList classes;
    for (const QList<QVariant>& args : requested) classes << args.at(0).toString();
    EXPECT_EQ(classes, QStringList({"TDVCmdGebaut", "TDVCmdGebaut", "TDVCmdKamera", "TDVCmdKamera"}));
}

TEST_F(WorkbenchTest, EditingALineAndCancellingChangesNothingWhileOkRewritesItInPlace)
{
    const QString line = "    TCP(Host:=\"h\",Port:=1,Send:=\"x\",Result:=Antwort)";
    SetScript("var Antwort : String\n" + line);
    window.Editor().GoToLine(2);
    OnModal("TFormTCP", [](QWidget& d) {
        EXPECT_EQ(dv::test::Find<QLineEdit>(d, "DVEdit_Host").text(), "\"h\"");
        Type(d, "DVEdit_Port", "99");
        static_cast<QDialog&>(d).reject();
    });
    EXPECT_FALSE(window.EditCurrentLine());
    EXPECT_EQ(window.Editor().LineText(2), line);

    OnModal("TFormTCP", [](QWidget& d) {
        Type(d, "DVEdit_Port", "99");
        Click(d, "BT_OK");
    });
    const QRect lineRect = window.Editor().cursorRect(QTextCursor(window.Editor().document()->findBlockByNumber(1)));
    QTest::mouseDClick(window.Editor().viewport(), Qt::LeftButton, {}, lineRect.center() + QPoint(40, 0));
    EXPECT_EQ(window.Editor().LineText(2),
              "    TCP(Host := \"h\", Port := 99, Send := \"x\", Sentinel := [10], Result := Antwort);");
}

// Opens the palette row's dialog with Enter; fill works the dialog named form and closes it.
void InsertFromPalette(TMainWindow& window, const char* row, const char* form, std::function<void(QWidget&)> fill)
{
    OnModal(form, std::move(fill));
    TCommandPalette& palette = window.Palette();
    palette.setCurrentItem(palette.ItemOf(row));
    QTest::keyClick(&palette, Qt::Key_Return);
}

// Types a new line below line as the user would: end of the line, Return, the text.
void TypeBelow(TScriptEditor& editor, int line, const QString& text)
{
    editor.GoToLine(line);
    QTest::keyClick(&editor, Qt::Key_End);
    QTest::keyClick(&editor, Qt::Key_Return);
    QTest::keyClicks(&editor, text);
}

// OK on the if dialog; a condition its parser does not read keeps it open, so it is closed then.
void ConfirmCondition(QWidget& dialog, const QString& condition)
{
    Type(dialog, "Edit_Vergleich1", condition);
    Click(dialog, "BT_OK");
    EXPECT_FALSE(dialog.isVisible()) << "condition refused: " << condition.toStdString();
    if (dialog.isVisible()) static_cast<QDialog&>(dialog).reject();
}

TEST_F(WorkbenchTest, LoopAndIfBlocksInsertedFromTheStructureGroupAreWrittenInPlaceAndRun)
{
    SetScript("var I : Number\nvar Summe : Number\n\nLog(Summe)");
    EXPECT_EQ(window.Palette().ItemOf("(loop)")->parent()->text(0), "Struktur");
    window.Editor().GoToLine(3);
    InsertFromPalette(window, "(loop)", "TDVGUILoop", [](QWidget& d) {
        Click(d, "RadioFor");
        Type(d, "Edit_LoopVarName", "I");
        Type(d, "Edit_StartValue", "1");
        Type(d, "Edit_EndValue", "4");
        Click(d, "BT_OK");
    });
    EXPECT_EQ(window.Editor().toPlainText(), "var I : Number\nvar Summe : Number\nfor I := 1 to 4 do\n93:end for\nLog(Summe)");
    TypeBelow(window.Editor(), 3, "  Summe := Summe + I");
    // Inserted below an indented line, the whole block takes its indentation.
    InsertFromPalette(window, "(if-then-else)", "TIfThenElse", [](QWidget& d) { ConfirmCondition(d, "I = 4"); });
    TypeBelow(window.Editor(), 5, "    Log(\"letzte Runde\")");
    EXPECT_EQ(window.Editor().toPlainText(),
              "var I : Number\nvar Summe : Number\nfor I := 1 to 4 do\n  Summe := Summe + I\n  if I = 4 then\n"
              "    Log(\"letzte Runde\")\n  911:else\n  912:end if;\n93:end for\nLog(Summe)");
    EXPECT_EQ(window.Editor().document()->blockCount(), 10) << "one line per written line, no stray breaks";
    RunToEnd();
    EXPECT_TRUE(window.Verdict().text().startsWith("Bestanden")) << window.Verdict().text().toStdString();
    EXPECT_TRUE(LogRows().contains("6|letzte Runde|Info")) << LogRows().join('\n').toStdString();
    EXPECT_TRUE(LogRows().contains("10|10|Info")) << LogRows().join('\n').toStdString();
}

TEST_F(WorkbenchTest, CaseAndCommentRowsWriteTheirLinesBelowTheCurrentOne)
{
    SetScript("var N : Number = 2\nLog(N)");
    window.Editor().GoToLine(2);
    InsertFromPalette(window, "(comment)", "TBemerkung", [](QWidget& d) {
        Type(d, "Edit_Bemerkung", "Auswahl nach N");
        Click(d, "BT_OK");
    });
    EXPECT_EQ(window.Editor().LineText(3), "// Auswahl nach N");
    InsertFromPalette(window, "(case)", "T_Case", [](QWidget& d) {
        Type(d, "Edit_Selektor", "N");
        Click(d, "BT_OK");
    });
    EXPECT_EQ(window.Editor().toPlainText(), "var N : Number = 2\nLog(N)\n// Auswahl nach N\ncase N of\n631:end case");
}

// F2 on a line, act works the dialog named form; the line as it reads afterwards.
QString EditLineWith(TMainWindow& window, const QString& line, const char* form, std::function<void(QWidget&)> act)
{
    window.Editor().setPlainText("var R : String\nvar N : Number\n" + line);
    window.Editor().GoToLine(3);
    bool shown = false;
    OnModal(form, [&shown, act](QWidget& d) {
        shown = true;
        act(d);
    });
    window.EditCurrentLine();
    EXPECT_TRUE(shown) << "no " << form << " for " << line.toStdString();
    return window.Editor().LineText(3);
}

TEST_F(WorkbenchTest, EditingALineKeepsItsMarkerAndWhatFollowsTheStatement)
{
    const auto port = [](QWidget& d) {
        Type(d, "DVEdit_Port", "2");
        Click(d, "BT_OK");
    };
    const QString tcp = "TCP(Host := \"h\", Port := 2, Send := \"x\", Sentinel := [10], Result := R);";
    const struct {
        QString line;
        const char* form;
        std::function<void(QWidget&)> act;
        QString edited;
    } rows[] = {
        {"TCP(Host := \"h\", Port := 1, Send := \"x\", Result := R); // Messgeraet", "TFormTCP", port, tcp + " // Messgeraet"},
        {"  TCP(Host := \"h\", Port := 1, Send := \"x\", Result := R);  Log(R)", "TFormTCP", port, "  " + tcp + "  Log(R)"},
        {"TCP(Host := \"(\", Port := 1, Send := \")\", Result := R) Log(R)", "TFormTCP", port,
         "TCP(Host := \"(\", Port := 2, Send := \")\", Sentinel := [10], Result := R); Log(R)"},
        {"  93:until N >= 3;", "TDVGUILoop",
         [](QWidget& d) {
             EXPECT_EQ(dv::test::Find<QLineEdit>(d, "Edit_RepeatCondition").text(), "N >= 3");
             Type(d, "Edit_RepeatCondition", "N >= 4");
             Click(d, "BT_OK");
         },
         "  93:until N >= 4;"},
        {"until N > 1; Log(\"do\") // fertig", "TDVGUILoop",
         [](QWidget& d) {
             Type(d, "Edit_RepeatCondition", "N > 2");
             Click(d, "BT_OK");
         },
         "until N > 2; Log(\"do\") // fertig"},
        {"while N < 3 do // warten", "TDVGUILoop",
         [](QWidget& d) {
             Type(d, "Edit_WhileCondition", "N < 4");
             Click(d, "BT_OK");
         },
         "while N < 4 do // warten"},
        {"if N > 1 then Log(\"gross\")", "TIfThenElse", [](QWidget& d) { ConfirmCondition(d, "N > 5"); },
         "if N > 5 then Log(\"gross\")"},
    };
    for (const auto& r : rows) EXPECT_EQ(EditLineWith(window, r.line, r.form, r.act), r.edited) << r.line.toStdString();
}

TEST_F(WorkbenchTest, EndAndRepeatLinesOfLoopsAnswerWithTheLoopsMessage)
{
    const std::pair<const char*, const char*> rows[] = {
        {"93:end for", "Sie können das Ende einer For- oder While-schleife nicht editieren, editieren Sie stattdessen den Schleifenkopf."},
        {"  end while", "Sie können das Ende einer For- oder While-schleife nicht editieren, editieren Sie stattdessen den Schleifenkopf."},
        {"repeat", "Eine Repeat-Anweisung kann nicht editiert werden. Bitte editieren Sie die abschliessende Until-Anweisung."},
    };
    for (const auto& [line, message] : rows) {
        QString shown;
        const QString after = EditLineWith(window, line, "MessageDlg", [&shown](QWidget& box) {
            shown = static_cast<QMessageBox&>(box).text();
            static_cast<QMessageBox&>(box).accept();
        });
        EXPECT_EQ(shown, message) << line;
        EXPECT_EQ(after, line);
    }
    EXPECT_FALSE(CommandOfLine("end if", window.Commands())) << "only loops have a command for their end";
}

TEST_F(WorkbenchTest, IfHeadIsEditedInPlaceThroughItsDialogAndCancelLeavesTheScript)
{
    const QString script = "var A : Number = 3\nif A > 1 then\n  if A > 2 then\n    Log(\"gross\")\n  end if\nend if";
    SetScript(script);
    const QRect head = window.Editor().cursorRect(QTextCursor(window.Editor().document()->findBlockByNumber(2)));
    QString shown;
    OnModal("TIfThenElse", [&shown](QWidget& d) {
        shown = dv::test::Find<QLineEdit>(d, "Edit_Vergleich1").text();
        Type(d, "Edit_Vergleich1", "A > 5");
        Click(d, "BT_Cancel");
    });
    QTest::mouseDClick(window.Editor().viewport(), Qt::LeftButton, {}, head.center() + QPoint(40, 0));
    EXPECT_EQ(shown.trimmed(), "A > 2");
    EXPECT_EQ(window.Editor().toPlainText(), script);
    EXPECT_FALSE(window.Editor().document()->isUndoAvailable()) << "a cancelled edit leaves nothing to undo";

    OnModal("TIfThenElse", [](QWidget& d) { ConfirmCondition(d, "A > 5"); });
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    window.Editor().GoToLine(3);
    QTest::keyClick(&window.Editor(), Qt::Key_F2);
    EXPECT_EQ(window.Editor().toPlainText(),
              "var A : Number = 3\nif A > 1 then\n  if A > 5 then\n    Log(\"gross\")\n  end if\nend if");
}

TEST_F(WorkbenchTest, IfConditionsMayNameWhatIsDeclaredAtTheEditedLine)
{
    const QString script =
        "var Grenze : Number = 1\n"
        "procedure Messe(Kanal : Number; var Antwort : String)\n"
        "  var Wert : Number\n"
        "  if Kanal > 1 then\n"
        "  end if\n"
        "end procedure\n"
        "procedure Leer\n"
        "  if Grenze > 0 then\n"
        "  end if\n"
        "end procedure\n"
        "if Grenze > 0 then\n"
        "end if";
    const struct {
        int line;
        const char* condition;
        bool accepted;
    } rows[] = {
        {4, "Kanal > Grenze and Wert > 2", true}, {4, "Antwort = \"ok\"", true}, {4, "Unbekannt > 1", false},
        {8, "Grenze > 2", true}, {8, "Kanal > 1", false},  // another procedure's parameter
        {11, "Grenze > 3", true}, {11, "Wert > 1", false},  // outside every procedure
    };
    for (const auto& r : rows) {
        SetScript(script);
        window.Editor().GoToLine(r.line);
        bool open = false;
        OnModal("TIfThenElse", [&](QWidget& d) {
            Type(d, "Edit_Vergleich1", r.condition);
            Click(d, "BT_OK");
            open = d.isVisible();
            if (open) static_cast<QDialog&>(d).reject();
        });
        EXPECT_EQ(window.EditCurrentLine(), r.accepted) << r.line << " " << r.condition;
        EXPECT_EQ(open, !r.accepted) << r.line << " " << r.condition;
        if (r.accepted) {
            EXPECT_EQ(window.Editor().LineText(r.line).trimmed(), QString("if %1 then").arg(r.condition));
        }
    }
    // A block inserted inside the procedure knows its names as well.
    SetScript(script);
    window.Editor().GoToLine(3);
    InsertFromPalette(window, "(if-then-else)", "TIfThenElse", [](QWidget& d) { ConfirmCondition(d, "Wert > Kanal"); });
    EXPECT_EQ(window.Editor().LineText(4), "  if Wert > Kanal then");
}

// The tooltip the editor shows when the mouse rests on the line; empty when it shows none.
QString TooltipAt(TScriptEditor& editor, int line)
{
    QToolTip::hideText();  // hides after a moment
    WaitFor([] { return !QToolTip::isVisible(); }, 2000);
    const QRect rect = editor.cursorRect(QTextCursor(editor.document()->findBlockByNumber(line - 1)));
    const QPoint at = rect.center() + QPoint(20, 0);
    QHelpEvent event(QEvent::ToolTip, at, editor.viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(&editor, &event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

TEST_F(WorkbenchTest, CallLineShowsTheCommandsDescriptionAndOtherLinesNone)
{
    SetScript("var S : String\nvar A : Array of Number\n  ArrayToStr(Str := S, Arr := A); // Text\nLog(1)\nA := * 3");
    const QString description = TooltipAt(window.Editor(), 3);
    EXPECT_TRUE(description.contains(">>A<<")) << description.toStdString();
    EXPECT_EQ(description, DescribeLine("ArrayToStr(Str := S, Arr := A);", window.Commands()));
    EXPECT_EQ(TooltipAt(window.Editor(), 4), "");
    ASSERT_EQ(window.Editor().LastCheck().errors.size(), 1u);
    EXPECT_EQ(TooltipAt(window.Editor(), 5), window.Editor().LastCheck().errors[0].message) << "an error line shows its error";
}

TEST_F(WorkbenchTest, PassingRunShowsItsVerdictAndLogLines)
{
    SetScript("var U : Number = 4.98\nLog(\"Spannung \" + U)\nCheck(U > 4.9, \"zu klein\")");
    RunToEnd();
    EXPECT_TRUE(window.Verdict().isVisible());
    EXPECT_TRUE(window.Verdict().text().startsWith("Bestanden")) << window.Verdict().text().toStdString();
    EXPECT_TRUE(LogRows().contains("2|Spannung 4.98|Info")) << LogRows().join('\n').toStdString();
    ASSERT_TRUE(window.LastReport());
    EXPECT_EQ(window.LastReport()->exitCode, 0);
}

TEST_F(WorkbenchTest, FailingRunNamesTheFailedCheckAndTheLogJumpsToItsLine)
{
    SetScript("var U : Number = 4.5\nLog(U)\nCheck(U > 4.9, \"zu klein\")\nLog(\"weiter\")");
    RunToEnd();
    EXPECT_TRUE(window.Verdict().text().startsWith("Fehlgeschlagen"));
    EXPECT_TRUE(window.Verdict().text().contains("unbenannt.dvs:3: Prüfung fehlgeschlagen: zu klein"))
        << window.Verdict().text().toStdString();
    // A failed check does not end the run.
    EXPECT_TRUE(LogRows().contains("4|weiter|Info"));
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
    QFile report(junit);
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    const QString xml = QString::fromUtf8(report.readAll());
    EXPECT_TRUE(xml.contains("<failure")) << xml.toStdString();
    EXPECT_TRUE(xml.contains("zu klein"));
}

TEST_F(WorkbenchTest, StopEndsAScriptBlockedInALongExecAndMarksItsLineMeanwhile)
{
    SetScript("Log(\"vor Exec\")\nExec(ExePath := \"sleep\", Params := \"30\", TimeOut := -1)\nLog(\"nach Exec\")");
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    bool readOnly = false;
    const test::TStopped stopped = StopWhileWaiting(
        window, 2, [&] { QTest::keyClick(&window.Editor(), Qt::Key_F5); },
        [&] {
            readOnly = window.Editor().isReadOnly();
            QTest::keyClick(&window.Editor(), Qt::Key_F5, Qt::ShiftModifier);
        });
    RecordProperty("stop_ms", static_cast<int>(stopped.ms));
    ASSERT_GE(stopped.ms, 0) << "the run did not wait in Exec or gave no verdict";
    EXPECT_LT(stopped.ms, 100);
    EXPECT_TRUE(readOnly);
    EXPECT_TRUE(stopped.verdict.contains("Test abgebrochen")) << stopped.verdict.toStdString();
    EXPECT_FALSE(LogRows().join('\n').contains("nach Exec"));
    EXPECT_EQ(window.Editor().RunningLine(), 0);
    EXPECT_FALSE(window.Editor().isReadOnly());
}

// Each command that waits on something outside the script ends its wait when the run is stopped.
TEST_F(WorkbenchTest, StopEndsEveryCommandsWaitWithin100Ms)
{
    QTcpServer silentTcp;  // takes the connection and never answers
    ASSERT_TRUE(silentTcp.listen(QHostAddress::LocalHost));
    const QString pipeName = QString("dvwb-stumm-%1").arg(QCoreApplication::applicationPid());
    const TSocketFd silentPipe = localpipe::ListenEndpoint(pipeName);  // listens, never accepts
    const QString form = folder.filePath("formular.html");
    ASSERT_TRUE(WriteBytes(form, "<html><body><form><input name=a><input type=submit></form></body></html>"));
    // The form window stands open without anyone filling it in: a browser that only waits.
    ASSERT_TRUE(QDir(folder.path()).mkpath("bin"));
    const QString browser = folder.filePath("bin/dvformbrowser");
    ASSERT_TRUE(WriteBytes(browser, "#!/bin/sh\nexec sleep 60\n"));
    ASSERT_TRUE(QFile::setPermissions(browser, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder.filePath("bin")) + ':' + path);
    const auto restorePath = qScopeGuard([&path] { qputenv("PATH", path); });
    const struct {
        const char* name;
        QString script;
        int line;
    } rows[] = {
        {"TCP", QString("var R : String\nTCP(Host := \"127.0.0.1\", Port := %1, Send := \"x\", Result := R);\nLog(R)")
                    .arg(silentTcp.serverPort()), 2},
        {"CallNamedPipe", QString("var R : String\nCallNamedPipe(Name := \"\\\\.\\pipe\\%1\", Call := \"x\", Result := R);\nLog(R)")
                              .arg(pipeName), 2},
        {"FormResult", QString("var R : String\nFormShow(File := \"%1\");\nFormResult(Timeout := -1, Result := R);\nLog(R)").arg(form), 3},
        {"Exec", "Exec(ExePath := \"sleep\", Params := \"30\", TimeOut := -1)\nLog(\"nach\")", 1},
    };
    for (const auto& r : rows) {
        SetScript(r.script);
        const test::TStopped stopped = StopWhileWaiting(window, r.line, [&] { window.Run(); }, [&] { window.Stop(); });
        RecordProperty(std::string("stop_ms_") + r.name, static_cast<int>(stopped.ms));
        ASSERT_GE(stopped.ms, 0) << r.name << ": did not wait, or gave no verdict\n" << LogRows().join('\n').toStdString();
        EXPECT_LT(stopped.ms, 100) << r.name;
        EXPECT_TRUE(stopped.verdict.contains("Test abgebrochen")) << r.name << ": " << stopped.verdict.toStdString();
        EXPECT_EQ(LogRows().filter("|Info").filter(QRegularExpression("^\\d+\\|(nach)?\\|")).size(), 0) << r.name;
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

TEST_F(WorkbenchTest, SyntaxErrorIsUnderlinedAtItsLineAfterTypingPauses)
{
    QSignalSpy checked(&window.Editor(), &TScriptEditor::Checked);
    window.Editor().setPlainText("var A : Number\nLog(A)\nA := * 3\nLog(A)");
    EXPECT_TRUE(checked.isEmpty()) << "checked before the pause";
    ASSERT_TRUE(checked.wait(5000));
    const auto& errors = window.Editor().LastCheck().errors;
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].line, 3);
    bool underlined = false;
    for (const QTextEdit::ExtraSelection& mark : window.Editor().extraSelections()) {
        if (mark.format.underlineStyle() != QTextCharFormat::WaveUnderline) continue;
        EXPECT_EQ(mark.cursor.blockNumber(), 2);
        EXPECT_EQ(mark.format.toolTip(), errors[0].message);
        underlined = true;
    }
    EXPECT_TRUE(underlined);
}

TEST_F(WorkbenchTest, ScriptWithSyntaxErrorsDoesNotRunAndLogsWhereTheyAre)
{
    SetScript("Log(1)\nLog(\n");
    RunToEnd();
    EXPECT_TRUE(window.Verdict().text().startsWith("Fehlgeschlagen"));
    EXPECT_EQ(window.LastReport()->exitCode, 2);
    EXPECT_FALSE(LogRows().contains("1|1|Info"));
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
    const QTextCharFormat red = FormatOf(window.Labor().Document(), "Rot fett");
    EXPECT_TRUE(red.fontFamilies().toStringList().contains("Courier"));
    EXPECT_EQ(red.fontPointSize(), 14);
    EXPECT_EQ(red.foreground().color(), QColor(255, 0, 0));
    EXPECT_EQ(red.fontWeight(), QFont::Bold);
    EXPECT_TRUE(red.fontUnderline());
    EXPECT_FALSE(red.fontItalic());
    EXPECT_FALSE(red.fontStrikeOut());
    const QTextCharFormat blue = FormatOf(window.Labor().Document(), "Blau schraeg");
    EXPECT_EQ(blue.fontPointSize(), 8);
    EXPECT_EQ(blue.foreground().color(), QColor(0, 0, 255));
    EXPECT_NE(blue.fontWeight(), QFont::Bold);
    EXPECT_TRUE(blue.fontItalic());
    EXPECT_TRUE(blue.fontStrikeOut());
    EXPECT_FALSE(blue.fontUnderline());
    const QString pdf = folder.filePath("labor.pdf");
    ASSERT_TRUE(window.Labor().ExportPdf(pdf));
    EXPECT_TRUE(ReadText(pdf).startsWith("%PDF"));
    SetScript("HideLabor");
    RunToEnd();
    EXPECT_FALSE(window.Labor().isVisible());
}

TEST_F(WorkbenchTest, OlderLinesAreConvertedAsDvrunConvertsThemAfterThePreviewAndCancelKeepsThem)
{
    ASSERT_TRUE(window.OpenFile(DV_TEST_DATA_DIR "/examples/older_lines.dvs"));
    const QString original = window.Editor().toPlainText();
    int listed = 0;
    OnModal("ConvertPreview", [&](QWidget& d) {
        listed = dv::test::Find<QTreeWidget>(d, "Changes").topLevelItemCount();
        static_cast<QDialog&>(d).reject();
    });
    EXPECT_FALSE(window.ConvertOlderLines());
    EXPECT_GT(listed, 5);
    EXPECT_EQ(window.Editor().toPlainText(), original);

    OnModal("ConvertPreview", [](QWidget& d) { Click(d, "BT_OK"); });
    ASSERT_TRUE(window.ConvertOlderLines());
    EXPECT_EQ(window.Editor().toPlainText(), ReadText(DV_TEST_DATA_DIR "/examples/older_lines.expected"));
    window.Editor().undo();
    EXPECT_EQ(window.Editor().toPlainText(), original);
}

TEST_F(WorkbenchTest, ReplaceAllIsOneUndoStepAndFindWrapsAround)
{
    SetScript("Log(Wert)\nLog(wert + 1)\nLog(\"x\")");
    TFindReplaceBar& bar = window.FindBar();
    Type(bar, "Edit_Find", "wert");
    Type(bar, "Edit_Replace", "Spannung");
    window.Editor().GoToLine(3);
    ASSERT_TRUE(bar.FindNext());  // past the last match: wraps to the first
    EXPECT_EQ(window.Editor().textCursor().blockNumber(), 0);
    EXPECT_EQ(bar.ReplaceAll(), 2);
    EXPECT_EQ(window.Editor().toPlainText(), "Log(Spannung)\nLog(Spannung + 1)\nLog(\"x\")");
    window.Editor().undo();
    EXPECT_EQ(window.Editor().toPlainText(), "Log(Wert)\nLog(wert + 1)\nLog(\"x\")");
    Click(bar, "CB_CaseSensitive");
    EXPECT_EQ(bar.ReplaceAll(), 1);
}

TEST_F(WorkbenchTest, SavedScriptOpensAgainAndHeadsTheRecentFiles)
{
    const QString first = folder.filePath("eins.dvs");
    const QString second = folder.filePath("zwei.dvs");
    SetScript("Log(\"eins\")");
    ASSERT_TRUE(window.SaveFile(first));
    SetScript("Log(\"zwei\")");
    ASSERT_TRUE(window.SaveFile(second));
    EXPECT_FALSE(window.SaveFile(folder.filePath("fehlt/drei.dvs")));
    ASSERT_TRUE(window.OpenFile(first));
    EXPECT_EQ(window.Editor().toPlainText(), "Log(\"eins\")");
    ASSERT_TRUE(window.OpenFile(second));
    ASSERT_TRUE(window.OpenFile(first));
    EXPECT_EQ(window.RecentFiles(), QStringList({first, second}));
    EXPECT_FALSE(window.OpenFile(folder.filePath("fehlt.dvs")));
    EXPECT_EQ(window.FileName(), first);
}

QByteArray Utf16(const QString& text, QStringEncoder::Encoding encoding)
{
    return QStringEncoder(encoding, QStringEncoder::Flag::WriteBom)(text);
}

// Files as Windows stations and editors write them: read as dvrun reads them (UTF-8, else
// Windows-1252) or by their byte order mark, and saved unchanged in the same bytes.
TEST_F(WorkbenchTest, ScriptFilesKeepTheirEncodingAndLineEndsThroughOpenAndSave)
{
    const QString text = "Log(\"Prüfung µs €\")\nLog(\"zwei\")\n";
    const QString crlf = QString(text).replace("\n", "\r\n");
    const struct {
        const char* name;
        QByteArray bytes;
        TTextEncoding encoding;
        bool crlf;
    } rows[] = {
        {"cp1252-crlf", QByteArray("Log(\"Pr\xfc" "fung \xb5s \x80\")\r\nLog(\"zwei\")\r\n"), TTextEncoding::Windows1252, true},
        {"cp1252-lf", QByteArray("Log(\"Pr\xfc" "fung \xb5s \x80\")\nLog(\"zwei\")\n"), TTextEncoding::Windows1252, false},
        {"utf16le-crlf", Utf16(crlf, QStringEncoder::Utf16LE), TTextEncoding::Utf16LE, true},
        {"utf16be-lf", Utf16(text, QStringEncoder::Utf16BE), TTextEncoding::Utf16BE, false},
        {"utf8bom-crlf", "\xEF\xBB\xBF" + crlf.toUtf8(), TTextEncoding::Utf8WithBom, true},
        {"utf8-lf", text.toUtf8(), TTextEncoding::Utf8, false},
    };
    for (const auto& r : rows) {
        const QString path = folder.filePath(QString(r.name) + ".dvs");
        ASSERT_TRUE(WriteBytes(path, r.bytes));
        ASSERT_TRUE(window.OpenFile(path)) << r.name;
        EXPECT_EQ(window.Editor().toPlainText(), text) << r.name;
        EXPECT_EQ(window.FileFormat().encoding, r.encoding) << r.name;
        EXPECT_EQ(window.FileFormat().crlf, r.crlf) << r.name;
        ASSERT_TRUE(window.SaveFile(path)) << r.name;
        EXPECT_EQ(ReadBytes(path), r.bytes) << r.name;
    }

    // What the script logs is what was in the Windows file.
    ASSERT_TRUE(window.OpenFile(folder.filePath("cp1252-crlf.dvs")));
    RunToEnd();
    EXPECT_TRUE(LogRows().contains("1|Prüfung µs €|Info")) << LogRows().join('\n').toStdString();

    // An edit stays in the file's code page; a character it lacks makes the file UTF-8.
    const QString path = folder.filePath("cp1252-crlf.dvs");
    window.Editor().GoToLine(2);
    QTest::keyClick(&window.Editor(), Qt::Key_End);
    window.Editor().insertPlainText(" // Länge");
    ASSERT_TRUE(window.SaveFile(path));
    EXPECT_EQ(ReadBytes(path), QByteArray("Log(\"Pr\xfc" "fung \xb5s \x80\")\r\nLog(\"zwei\") // L\xe4nge\r\n"));
    window.Editor().insertPlainText(" \u2192");
    ASSERT_TRUE(window.SaveFile(path));
    EXPECT_EQ(ReadBytes(path), QString("Log(\"Prüfung µs €\")\r\nLog(\"zwei\") // Länge \u2192\r\n").toUtf8());
    EXPECT_EQ(window.FileFormat().encoding, TTextEncoding::Utf8);
    EXPECT_TRUE(window.statusBar()->currentMessage().contains("UTF-8")) << window.statusBar()->currentMessage().toStdString();
}

// Answers the "Änderungen speichern?" question with the button captioned answer.
void Answer(const char* answer, QStringList* buttons = nullptr)
{
    OnModal("SaveChanges", [answer, buttons](QWidget& d) {
        auto& box = static_cast<QMessageBox&>(d);
        EXPECT_EQ(box.text(), "Änderungen speichern?");
        QAbstractButton* chosen = nullptr;
        for (QAbstractButton* b : box.buttons()) {
            if (buttons) *buttons << b->text();
            if (b->text() == answer) chosen = b;
        }
        ASSERT_NE(chosen, nullptr) << answer;
        chosen->click();
    });
}

TEST_F(WorkbenchTest, UnsavedChangesAreOnlyDroppedWhenTheUserSaysSo)
{
    QAction* newScript = window.findChild<QAction*>("ActionNew");
    ASSERT_NE(newScript, nullptr);
    const QString path = folder.filePath("skript.dvs");
    ASSERT_TRUE(WriteBytes(path, "Log(1)"));
    ASSERT_TRUE(window.OpenFile(path));

    newScript->trigger();  // nothing changed: no question
    EXPECT_TRUE(window.Editor().toPlainText().isEmpty());

    ASSERT_TRUE(window.OpenFile(path));
    window.Editor().appendPlainText("Log(2)");
    QStringList buttons;
    Answer("Abbrechen", &buttons);
    newScript->trigger();
    EXPECT_EQ(buttons.size(), 3);
    for (const char* b : {"Ja", "Nein", "Abbrechen"}) EXPECT_TRUE(buttons.contains(b)) << b;
    EXPECT_EQ(window.Editor().toPlainText(), "Log(1)\nLog(2)");
    Answer("Abbrechen");
    EXPECT_FALSE(window.close()) << "cancelled: the window stays";
    EXPECT_TRUE(window.isVisible());

    Answer("Ja");
    newScript->trigger();
    EXPECT_EQ(ReadBytes(path), "Log(1)\nLog(2)");
    EXPECT_TRUE(window.Editor().toPlainText().isEmpty());

    window.Editor().setPlainText("Log(3)");
    Answer("Nein");
    ASSERT_FALSE(window.RecentFiles().isEmpty());
    QMenu* recent = nullptr;
    for (QMenu* m : window.findChildren<QMenu*>()) {
        if (m->title() == "&Zuletzt geöffnet") recent = m;
    }
    ASSERT_NE(recent, nullptr);
    recent->actions().first()->trigger();
    EXPECT_EQ(window.Editor().toPlainText(), "Log(1)\nLog(2)");
    EXPECT_EQ(ReadBytes(path), "Log(1)\nLog(2)") << "No: the file is not written";
}

TEST(ScriptHighlighter, ColoursWhatTheTokenizerReads)
{
    TScriptEditor editor;  // its highlighter
    editor.setPlainText("while X < 3 do TCP(Host := \"a\") // Ende");
    const QList<QTextLayout::FormatRange> ranges = editor.document()->firstBlock().layout()->formats();
    ASSERT_FALSE(ranges.isEmpty());
    auto styleAt = [&](int position) {
        QTextCharFormat f;
        for (const QTextLayout::FormatRange& r : ranges) {
            if (position >= r.start && position < r.start + r.length) f = r.format;
        }
        return f;
    };
    EXPECT_EQ(styleAt(0).foreground().color(), TScriptHighlighter::Format(TTokenStyle::Keyword).foreground().color());  // while
    EXPECT_EQ(styleAt(10).foreground().color(), TScriptHighlighter::Format(TTokenStyle::Number).foreground().color());  // 3
    EXPECT_EQ(styleAt(15).foreground().color(), TScriptHighlighter::Format(TTokenStyle::Command).foreground().color());  // TCP
    EXPECT_EQ(styleAt(28).foreground().color(), TScriptHighlighter::Format(TTokenStyle::String).foreground().color());  // "a"
    EXPECT_EQ(styleAt(36).foreground().color(), TScriptHighlighter::Format(TTokenStyle::Comment).foreground().color());  // Ende
    EXPECT_NE(styleAt(6).foreground().color(), TScriptHighlighter::Format(TTokenStyle::Command).foreground().color());  // X
}

TEST(RunLog, HostLinesBecomeEntriesWithLevelAndLine)
{
    struct Case {
        const char* hostLine;
        int runningLine;
        int line;
        const char* message;
        TLogLevel level;
    };
    const Case cases[] = {
        {"LOG Spannung 5", 7, 7, "Spannung 5", TLogLevel::Info},
        {"FEHLER a.dvs:12: Division durch 0", 3, 12, "a.dvs:12: Division durch 0", TLogLevel::Error},
        {"PRÜFUNG FEHLGESCHLAGEN Zeile 4: zu klein", 9, 4, "PRÜFUNG FEHLGESCHLAGEN Zeile 4: zu klein", TLogLevel::Error},
        {"WARN Datei fehlt", 2, 2, "Datei fehlt", TLogLevel::Warning},
        {"STATUS bereit", 1, 1, "STATUS bereit", TLogLevel::Info},
    };
    for (const Case& c : cases) {
        const TLogEntry e = MakeLogEntry(QString::fromUtf8(c.hostLine), c.runningLine);
        EXPECT_EQ(e.line, c.line) << c.hostLine;
        EXPECT_EQ(e.message, QString::fromUtf8(c.message)) << c.hostLine;
        EXPECT_EQ(e.level, c.level) << c.hostLine;
    }
}

}  // namespace
}  // namespace dv::workbench
