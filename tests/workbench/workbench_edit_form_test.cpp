// The workbench's editor driven through its widgets: calls, structure blocks and scope lines written
// and re-edited through the commands' dialogs, the palette, tooltips, syntax marks, find and replace,
// and the older lines converted.
#include "framework/catalogue.h"
#include "framework/registry.h"
#include "tests/commands/formdriver.h"
#include "tests/workbench/workbenchdriver.h"
#include "workbench/calledit.h"
#include "workbench/findreplace.h"
#include "workbench/highlighter.h"
#include "workbench/palette.h"
#include "workbench/scripteditor.h"

#include <QComboBox>
#include <QCompleter>
#include <QDialog>
#include <QHelpEvent>
#include <QMessageBox>
#include <QStringListModel>
#include <QTextBlock>
#include <QTextEdit>
#include <QToolTip>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace dv::workbench {
namespace {

using dv::test::Click;
using dv::test::Find;
using dv::test::OnModal;
using dv::test::Type;
using test::ReadText;
using test::WaitFor;
using test::WorkbenchTest;

TEST_F(WorkbenchTest, PaletteInsertsATcpCallWrittenFromItsDialogWithNamedArguments)
{
    SetScript("var Spannung : Number\nvar Kurve : Array of Number\nvar Antwort : String\n\nLog(Antwort)");
    window.Editor().GoToLine(4);
    QStringList offered;
    InsertFromPalette("TCP", "TFormTCP", [&offered](QWidget& d) {
        // A completer that is no case-insensitive list of names offers nothing.
        const QCompleter* completer = Find<QLineEdit>(d, "DVEdit_Result").completer();
        const auto* names = completer ? qobject_cast<QStringListModel*>(completer->model()) : nullptr;
        if (names && completer->caseSensitivity() == Qt::CaseInsensitive) offered = names->stringList();
        Type(d, "DVEdit_Host", "\"127.0.0.1\"");
        Type(d, "DVEdit_Port", "5000");
        Type(d, "DVEdit_Send", "\"PING\"");
        Type(d, "DVEdit_Result", "Antwort");
        Click(d, "BT_OK");
    });
    // The untouched sentinel keeps its default; as it is not trailing, it is written out.
    EXPECT_EQ(window.Editor().LineText(4),
              "TCP(Host := \"127.0.0.1\", Port := 5000, Send := \"PING\", Sentinel := [10], Result := Antwort);");
    EXPECT_EQ(window.Editor().LineText(5), "Log(Antwort)");
    EXPECT_EQ(offered, QStringList({"PROJEKTPFAD", "Spannung", "Kurve", "Antwort"})) << "the dialog offers the declared variables";
    window.Editor().CheckNow();
    EXPECT_TRUE(window.Editor().LastCheck().errors.empty()) << "the written line must read back as a call";
}

TEST_F(WorkbenchTest, PaletteListsEveryCatalogueRowUnderItsSubsystem)
{
    const QStringList names{"Text", "Struktur", "System", "Dialoge", "Scope", "Bild", "Labor"};  // in the subsystems' order
    QStringList groups;
    for (int i = 0; i < window.Palette().topLevelItemCount(); ++i) groups << window.Palette().topLevelItem(i)->text(0);
    EXPECT_EQ(groups, names);
    for (const dv::TCatalogueRow& row : dv::Catalogue()) {
        const QTreeWidgetItem* item = window.Palette().ItemOf(row.procedure);
        ASSERT_TRUE(item && item->parent()) << row.procedure;
        EXPECT_EQ(item->parent()->text(0), names.value(static_cast<int>(row.group))) << row.procedure;
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
        EXPECT_EQ(Find<QLineEdit>(d, "DVEdit_Host").text(), "\"h\"");
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

// Types a new line below line as the user would: end of the line, Return, the text.
void TypeBelow(TScriptEditor& editor, int line, const QString& text)
{
    editor.GoToLine(line);
    QTest::keyClick(&editor, Qt::Key_End);
    QTest::keyClick(&editor, Qt::Key_Return);
    QTest::keyClicks(&editor, text);
}

// Types text into the box and presses OK; a text the dialog refuses keeps it open, so it is closed then.
void Confirm(QWidget& dialog, const char* box, const QString& text)
{
    Type(dialog, box, text);
    Click(dialog, "BT_OK");
    EXPECT_FALSE(dialog.isVisible()) << "refused: " << text.toStdString();
    if (dialog.isVisible()) static_cast<QDialog&>(dialog).reject();
}
void ConfirmCondition(QWidget& dialog, const QString& condition) { Confirm(dialog, "Edit_Vergleich1", condition); }

TEST_F(WorkbenchTest, LoopAndIfBlocksInsertedFromTheStructureGroupAreWrittenInPlaceAndRun)
{
    SetScript("var I : Number\nvar Summe : Number\n\nLog(Summe)");
    EXPECT_EQ(window.Palette().ItemOf("(loop)")->parent()->text(0), "Struktur");
    window.Editor().GoToLine(3);
    InsertFromPalette("(loop)", "TDVGUILoop", [](QWidget& d) {
        Click(d, "RadioFor");
        Type(d, "Edit_LoopVarName", "I");
        Type(d, "Edit_StartValue", "1");
        Type(d, "Edit_EndValue", "4");
        Click(d, "BT_OK");
    });
    EXPECT_EQ(window.Editor().toPlainText(), "var I : Number\nvar Summe : Number\nfor I := 1 to 4 do\n93:end for\nLog(Summe)");
    TypeBelow(window.Editor(), 3, "  Summe := Summe + I");
    // Inserted below an indented line, the whole block takes its indentation.
    InsertFromPalette("(if-then-else)", "TIfThenElse", [](QWidget& d) { ConfirmCondition(d, "I = 4"); });
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
    InsertFromPalette("(comment)", "TBemerkung", [](QWidget& d) {
        Type(d, "Edit_Bemerkung", "Auswahl nach N");
        Click(d, "BT_OK");
    });
    EXPECT_EQ(window.Editor().LineText(3), "// Auswahl nach N");
    InsertFromPalette("(case)", "T_Case", [](QWidget& d) {
        Type(d, "Edit_Selektor", "N");
        Click(d, "BT_OK");
    });
    EXPECT_EQ(window.Editor().toPlainText(), "var N : Number = 2\nLog(N)\n// Auswahl nach N\ncase N of\n631:end case");
}

TEST_F(WorkbenchTest, EditingALineKeepsItsMarkerAndWhatFollowsTheStatement)
{
    const QString tcp = "TCP(Host := \"h\", Port := 2, Send := \"x\", Sentinel := [10], Result := R);";
    const struct { QString line; const char *form, *box, *shown, *typed; QString edited; } rows[] = {  // shown: nullptr, unchecked
        {"TCP(Host := \"h\", Port := 1, Send := \"x\", Result := R); // Messgeraet", "TFormTCP", "DVEdit_Port", nullptr, "2",
         tcp + " // Messgeraet"},
        {"  TCP(Host := \"h\", Port := 1, Send := \"x\", Result := R);  Log(R)", "TFormTCP", "DVEdit_Port", nullptr, "2",
         "  " + tcp + "  Log(R)"},
        {"TCP(Host := \"(\", Port := 1, Send := \")\", Result := R) Log(R)", "TFormTCP", "DVEdit_Port", nullptr, "2",
         "TCP(Host := \"(\", Port := 2, Send := \")\", Sentinel := [10], Result := R); Log(R)"},
        {"  93:until N >= 3;", "TDVGUILoop", "Edit_RepeatCondition", "N >= 3", "N >= 4", "  93:until N >= 4;"},
        {"until N > 1; Log(\"do\") // fertig", "TDVGUILoop", "Edit_RepeatCondition", nullptr, "N > 2", "until N > 2; Log(\"do\") // fertig"},
        {"while N < 3 do // warten", "TDVGUILoop", "Edit_WhileCondition", nullptr, "N < 4", "while N < 4 do // warten"},
        {"if N > 1 then Log(\"gross\")", "TIfThenElse", "Edit_Vergleich1", nullptr, "N > 5", "if N > 5 then Log(\"gross\")"},
    };
    for (const auto& r : rows) {
        SetScript("var R : String\nvar N : Number\n" + r.line);
        window.Editor().GoToLine(3);
        QString shown;
        OnModal(r.form, [&](QWidget& d) {
            shown = Find<QLineEdit>(d, r.box).text();
            Confirm(d, r.box, r.typed);
        });
        window.EditCurrentLine();
        EXPECT_EQ(window.Editor().LineText(3), r.edited) << r.line.toStdString();
        if (r.shown) { EXPECT_EQ(shown, r.shown); }
    }
}

TEST_F(WorkbenchTest, EndAndRepeatLinesOfLoopsAnswerWithTheLoopsMessage)
{
    const QString end = "Sie können das Ende einer For- oder While-schleife nicht editieren, editieren Sie stattdessen den Schleifenkopf.";
    const QString repeat = "Eine Repeat-Anweisung kann nicht editiert werden. Bitte editieren Sie die abschliessende Until-Anweisung.";
    const std::pair<const char*, QString> rows[] = {
        {"93:end for", end}, {"end for", end}, {"  end while", end}, {"93:end while", end}, {"repeat", repeat},
    };
    for (const auto& [line, message] : rows) {
        SetScript(QString("var R : String\nvar N : Number\n") + line);
        window.Editor().GoToLine(3);
        QString shown;
        dv::test::OnMessage("MessageDlg", &shown);
        EXPECT_FALSE(window.EditCurrentLine()) << line;
        EXPECT_EQ(shown, message) << line;
        EXPECT_EQ(window.Editor().LineText(3), line);
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
        shown = Find<QLineEdit>(d, "Edit_Vergleich1").text();
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
    const struct { int line; const char* condition; bool accepted; } rows[] = {
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
    InsertFromPalette("(if-then-else)", "TIfThenElse", [](QWidget& d) { ConfirmCondition(d, "Wert > Kanal"); });
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

TEST_F(WorkbenchTest, OlderLinesAreConvertedAsDvrunConvertsThemAfterThePreviewAndCancelKeepsThem)
{
    ASSERT_TRUE(window.OpenFile(DV_TEST_DATA_DIR "/examples/older_lines.dvs"));
    const QString original = window.Editor().toPlainText();
    int listed = 0;
    OnModal("ConvertPreview", [&](QWidget& d) {
        listed = Find<QTreeWidget>(d, "Changes").topLevelItemCount();
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

TEST(ScriptHighlighter, ColoursWhatTheTokenizerReads)
{
    TScriptEditor editor;  // its highlighter
    editor.setPlainText("while X < 3 do TCP(Host := \"a\") // Ende");
    const QList<QTextLayout::FormatRange> ranges = editor.document()->firstBlock().layout()->formats();
    ASSERT_FALSE(ranges.isEmpty());
    auto colourAt = [&](int position) {
        QTextCharFormat f;
        for (const QTextLayout::FormatRange& r : ranges) {
            if (position >= r.start && position < r.start + r.length) f = r.format;
        }
        return f.foreground().color();
    };
    const auto colour = [](TTokenStyle style) { return TScriptHighlighter::Format(style).foreground().color(); };
    // while, 3, TCP, "a", Ende
    for (const auto& [position, style] : {std::pair{0, TTokenStyle::Keyword}, {10, TTokenStyle::Number}, {15, TTokenStyle::Command},
                                          {28, TTokenStyle::String}, {36, TTokenStyle::Comment}}) {
        EXPECT_EQ(colourAt(position), colour(style)) << position;
    }
    EXPECT_NE(colourAt(6), colour(TTokenStyle::Command));  // X
}

// Scope lines: written from the palette through the scope editor and run, and re-edited with F2,
// where an unchanged editor gives back the same line.
// F2 on the line; act works the scope editor and closes it.
bool EditScopeLine(TMainWindow& window, int line, std::function<void(QWidget&)> act)
{
    window.Editor().GoToLine(line);
    OnModal("TFormScope", std::move(act));
    return window.EditCurrentLine();
}

TEST_F(WorkbenchTest, PaletteWritesAScopeCallThatRuns)
{
    SetScript("var A : Array of Number\nvar M : Number\nA[1] := 2\nA[2] := 4\nA[3] := 6\n");
    window.Editor().GoToLine(6);
    bool offersVariables = false;
    InsertFromPalette("Scope", "TFormScope", [&offersVariables](QWidget& w) {
        EXPECT_FALSE(Find<QCheckBox>(w, "CB_EN_Curve1").isChecked()) << "a new call opens on an empty editor";
        EXPECT_EQ(Find<QComboBox>(w, "FuncSelect").currentIndex(), 0);
        offersVariables = Find<QLineEdit>(w, "Edit_Result").completer() != nullptr;
        OnModal("TScopeSource", [](QWidget& d) {
            Click(d, "RB_Array");
            Type(d, "Edit_Array", "A");
            Type(d, "Edit_Array_Y", "1");
            Click(d, "BT_OK");
        });
        Click(w, "BT_Source1");
        Find<QComboBox>(w, "FuncSelect").setCurrentIndex(9);  // "x/y-Abfrage"
        Find<QComboBox>(w, "CB_FxChoice1").setCurrentIndex(1);  // search by "Y"
        Type(w, "Edit_FxParam1", "1");
        Type(w, "Edit_Result", "M");
        Click(w, "RB_HideScope");
        Click(w, "BT_OK");
    });
    EXPECT_EQ(window.Editor().LineText(6), "Scope(Command := \"[HIDE],1:[ARRAY:A,FREQ:1],[FX:QUERY:1:2:1],[OUT:M]\", Special := \"\");");
    EXPECT_TRUE(offersVariables);

    RunToEnd();
    // The curve's Y at X = 1 is the second element.
    EXPECT_EQ(VariableValue("M"), "Number 4");
}

TEST_F(WorkbenchTest, F2OnAScopeLineGivesBackTheSameLineAndWritesWhatWasChanged)
{
    // A string literal whose source holds a quoted file name, with scaling in Special.
    const QString literal = "Scope(Command := \"[SETSCALE],[HIDE],1:[FILE:\"\"/tmp/a b.txt\"\",SEP:59],[FX:MID:1],[OUT:M]\", "
                            "Special := \"[SETSCALE:18:9:0:0:0:270]\");";
    // An expression: the pieces between the tags stay as they were written.
    const QString expression = "  Scope(Command := \"[CLR],1:[\" + Quelle + \"],[FX:MID:1],[OUT:M]\", Special := \"\");";
    SetScript("var Quelle : String\nvar M : Number\n" + literal + '\n' + expression);

    EXPECT_TRUE(EditScopeLine(window, 3, [](QWidget& w) {
        EXPECT_EQ(Find<QLineEdit>(w, "Edit_Curve1").text(), "FILE:\"/tmp/a b.txt\",SEP:59");
        Click(w, "BT_OK");
    }));
    EXPECT_EQ(window.Editor().LineText(3), literal);

    EXPECT_FALSE(EditScopeLine(window, 4, [](QWidget& w) {
        Type(w, "Edit_Result", "N");
        Click(w, "BT_Cancel");
    }));
    EXPECT_EQ(window.Editor().LineText(4), expression);

    EXPECT_TRUE(EditScopeLine(window, 4, [](QWidget& w) {
        EXPECT_EQ(Find<QLineEdit>(w, "Edit_Curve1").text(), "\" + Quelle + \"");
        Type(w, "Edit_Result", "N");
        Click(w, "BT_OK");
    }));
    EXPECT_EQ(window.Editor().LineText(4), "  Scope(Command := \"[CLR],1:[\" + Quelle + \"],[FX:MID:1],[OUT:N]\", Special := \"\");");
    window.Editor().CheckNow();
    EXPECT_TRUE(window.Editor().LastCheck().errors.empty()) << "the written lines read back as calls";
}

}  // namespace
}  // namespace dv::workbench
