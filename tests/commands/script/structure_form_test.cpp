// The four structure dialogs driven offscreen through EditCommand: the lines they write, their
// texts as the user sees them, and the blocks they insert, filled in and run by the interpreter.
#include "commands/script/gui_bemerkung.h"
#include "commands/script/gui_case.h"
#include "commands/script/gui_ifthenelse.h"
#include "commands/script/gui_loop.h"
#include "framework/forms/dvform.h"
#include "host/hostservices.h"
#include "host/runner.h"
#include "tests/commands/formdriver.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace dv {
namespace {

using namespace test;

struct TEdited { bool confirmed; QString line; };

// Edits line through the command; act works the dialog named form and must close it.
TEdited EditLine(TDVRunEdit& command, const QString& line, const QString& form, std::function<void(QWidget&)> act)
{
    OnModal(form, std::move(act));
    QString text;
    QString script = line;
    const bool confirmed = command.EditCommand(1, 1, text, script);
    return {confirmed, script};
}

// Shows what the box holds, types text into it (nullptr: leaves it) and closes the dialog with the button.
std::function<void(QWidget&)> TypeAndClose(const char* box, const char* text, const char* button, QString* shown)
{
    return [=](QWidget& d) {
        *shown = Find<QLineEdit>(d, box).text();
        if (text) Type(d, box, text);
        QString(button) == "Escape" ? QTest::keyClick(&d, Qt::Key_Escape) : Click(d, button);
    };
}

// A host whose parser knows the variables the edited script declares, as in the editor.
class EditedScript {
public:
    explicit EditedScript(const QString& declarations) : run_(QStringLiteral("edit.dvs"), host_)
    {
        EXPECT_TRUE(run_.Load(declarations)) << run_.Report().errors.join('\n').toStdString();
    }

private:
    host::THost host_;
    host::TScriptRun run_;
};

struct TTypedRow { const char *line, *typed, *button, *shown; TEdited out; };

// Edits each row's line through the command's dialog, typing into box.
void EditRows(TDVRunEdit& command, const char* form, const char* box, std::initializer_list<TTypedRow> rows)
{
    for (const auto& r : rows) {
        command.SetDefaults();
        QString shown;
        const TEdited out = EditLine(command, r.line, form, TypeAndClose(box, r.typed, r.button, &shown));
        EXPECT_EQ(shown, r.shown) << r.line;
        EXPECT_EQ(out.confirmed, r.out.confirmed) << r.line;
        EXPECT_EQ(out.line, r.out.line) << r.line;
    }
}

TEST(CommentFormTest, ShowsTheCommentTextAndWritesALineComment)
{
    TDVCmdComment command;
    EditRows(command, "TBemerkung", "Edit_Bemerkung",
             {
                 {"//   Hallo", nullptr, "BT_OK", "Hallo", {true, "// Hallo"}},
                 {"(* zwei Worte *)", nullptr, "BT_OK", "zwei Worte", {true, "// zwei Worte"}},
                 {"", nullptr, "BT_OK", "", {true, "// "}},
                 {"abc", nullptr, "BT_OK", "bc", {true, "// bc"}},
                 {"// alt", "neu", "BT_OK", "alt", {true, "// neu"}},
                 {"// alt", "neu", "BT_Cancel", "alt", {false, "// alt"}},
                 {"(* alt *)", "neu", "Escape", "alt", {false, "(* alt *)"}},
             });
}

TEST(IfThenElseFormTest, WritesTheHeadAndForANewStatementItsElseAndEndLines)
{
    EditedScript script("var a : Number\nvar x : Number\nvar y : Boolean");
    TDVCmdIfThenElse command;
    EditRows(command, "TIfThenElse", "Edit_Vergleich1",
             {
                 {"", "a > 5", "BT_OK", "", {true, "if a > 5 then\r\n911:else\r\n912:end if;"}},
                 {"if (x = 1) AND y then", nullptr, "BT_OK", "(x = 1) AND y", {true, "if (x = 1) AND y then"}},
                 {"if a > 5 then", "a < 2", "BT_Cancel", "a > 5", {false, "if a > 5 then"}},
                 // Only an empty line is a new statement: on a line of blanks the head comes alone.
                 {"   ", "a > 5", "BT_OK", "", {true, "if a > 5 then"}},
             });
}

TEST(IfThenElseFormTest, ARejectedConditionKeepsTheDialogOpen)
{
    EditedScript script("var a : Number");
    TDVCmdIfThenElse command;
    for (const char* rejected : {"a >", "b > 1", "a > 5 5", ""}) {
        bool stayedOpen = false;
        const TEdited out = EditLine(command, "if a > 5 then", "TIfThenElse", [&](QWidget& d) {
            Type(d, "Edit_Vergleich1", rejected);
            Click(d, "BT_OK");
            stayedOpen = d.isVisible();
            Type(d, "Edit_Vergleich1", "a = 1");
            Click(d, "BT_OK");
        });
        EXPECT_TRUE(stayedOpen) << rejected;
        EXPECT_EQ(out.line, "if a = 1 then") << rejected;
        EXPECT_TRUE(out.confirmed);
    }
}

TEST(CaseFormTest, WritesAHeadWithItsClosingLineOnlyWhenNewAndABranchWithout)
{
    const struct {
        const char* line;
        const char* box;  // typed into
        const char* typed;
        const char* button;
        const char* checked;  // the radio button checked when shown
        TEdited out;
    } rows[] = {
        {"", "Edit_Selektor", "Modus", "BT_OK", "RB_Anweisung", {true, "case Modus of\r\n631:end case"}},
        {"case Modus of", "Edit_Selektor", "Betrieb", "BT_OK", "RB_Anweisung", {true, "case Betrieb of"}},
        {"select 3:", "Edit_Fall", nullptr, "BT_OK", "RB_Verzweigung", {true, "select 3:"}},
        {"", "Edit_Fall", "7", "BT_OK", "RB_Anweisung", {true, "select 7:"}},  // typing checks "Fall"
        {"case Modus of", "Edit_Fall", "4", "BT_OK", "RB_Anweisung", {true, "select 4:"}},
        {"select 3:", "Edit_Selektor", "Neu", "BT_OK", "RB_Verzweigung", {true, "case Neu of"}},
        {"case Modus of", "Edit_Fall", "4", "BT_Cancel", "RB_Anweisung", {false, "case Modus of"}},
        // A line of blanks is no new statement: it reads as a branch, and a head written on it
        // gets no closing line.
        {"  ", "Edit_Selektor", "Modus", "BT_OK", "RB_Verzweigung", {true, "case Modus of"}},
    };
    TDVCmdCase command;
    for (const auto& r : rows) {
        command.SetDefaults();
        QString checked;
        QString value;
        const TEdited out = EditLine(command, r.line, "T_Case", [&](QWidget& d) {
            checked = Find<QRadioButton>(d, "RB_Anweisung").isChecked() ? "RB_Anweisung" : "";
            checked += Find<QRadioButton>(d, "RB_Verzweigung").isChecked() ? "RB_Verzweigung" : "";
            value = Find<QLineEdit>(d, "Edit_Fall").text();
            if (r.typed) Type(d, r.box, r.typed);
            Click(d, r.button);
        });
        EXPECT_EQ(checked, r.checked) << r.line;
        if (QString(r.line) == "select 3:") { EXPECT_EQ(value, "3"); }
        EXPECT_EQ(out.confirmed, r.out.confirmed) << r.line;
        EXPECT_EQ(out.line, r.out.line) << r.line << " " << r.typed;
    }
}

TEST(LoopFormTest, WritesTheEditedHeadOrANewLoopWithItsMarkedLine)
{
    const struct {
        const char* line;
        const char* radio;  // clicked, nullptr: the kind the line gave
        std::vector<std::pair<const char*, const char*>> typed;
        const char* button;
        std::vector<std::pair<const char*, const char*>> shown;
        TEdited out;
    } rows[] = {
        {"", "RadioFor", {{"Edit_LoopVarName", "I"}, {"Edit_StartValue", "1"}, {"Edit_EndValue", "10"}}, "BT_OK",
         {{"Edit_LoopVarName", ""}}, {true, "for I := 1 to 10 do\r\n93:end for"}},
        {"for I := 1 to N - 1 do", nullptr, {}, "BT_OK", {{"Edit_StartValue", "1"}, {"Edit_EndValue", "N-1"}},
         {true, "for I := 1 to N-1 do"}},
        {"while (a > 0) do", nullptr, {}, "BT_OK", {{"Edit_WhileCondition", " (a > 0) "}}, {true, "while  (a > 0)  do"}},
        {"until  x = 5 ;", nullptr, {}, "BT_OK", {{"Edit_RepeatCondition", "x = 5"}}, {true, "until x = 5;"}},
        {"", "RadioRepeat", {{"Edit_RepeatCondition", "Fertig"}}, "BT_OK", {}, {true, "repeat\r\n93:until Fertig;"}},
        {"", "RadioWhile", {{"Edit_WhileCondition", "a < 3"}}, "BT_OK", {}, {true, "while a < 3 do\r\n93:end while"}},
        {"while a do", "RadioFor", {{"Edit_LoopVarName", "J"}, {"Edit_StartValue", "0"}, {"Edit_EndValue", "2"}}, "BT_OK", {},
         {true, "for J := 0 to 2 do"}},
        {"for I := 1 to 3 do", nullptr, {{"Edit_EndValue", "9"}}, "BT_Cancel", {}, {false, "for I := 1 to 3 do"}},
    };
    TDVCmdLoop command;
    for (const auto& r : rows) {
        command.SetDefaults();
        std::vector<std::pair<const char*, QString>> shown;
        const TEdited out = EditLine(command, r.line, "TDVGUILoop", [&](QWidget& d) {
            for (const auto& [box, text] : r.shown) shown.emplace_back(box, Find<QLineEdit>(d, box).text());
            if (r.radio) Click(d, r.radio);
            for (const auto& [box, text] : r.typed) Type(d, box, text);
            Click(d, r.button);
        });
        for (std::size_t i = 0; i < r.shown.size(); ++i) EXPECT_EQ(shown[i].second, r.shown[i].second) << r.line;
        EXPECT_EQ(out.confirmed, r.out.confirmed) << r.line;
        EXPECT_EQ(out.line, r.out.line) << r.line;
    }
}

TEST(LoopFormTest, EachKindShowsOnlyItsGroupAndSizesTheDialog)
{
    const std::pair<const char*, const char*> kinds[] = {
        {"RadioFor", "GB_ForLoop"}, {"RadioWhile", "GB_WhileLoop"}, {"RadioRepeat", "GB_RepeatLoop"}, {"RadioFor", "GB_ForLoop"}};
    TDVCmdLoop command;
    command.SetDefaults();
    EditLine(command, "", "TDVGUILoop", [&](QWidget& d) {
        for (const auto& [radio, group] : kinds) {
            Click(d, radio);
            QApplication::processEvents();
            for (const char* g : {"GB_ForLoop", "GB_WhileLoop", "GB_RepeatLoop"}) {
                EXPECT_EQ(Find<QGroupBox>(d, g).isVisible(), QString(g) == group) << radio << " " << g;
            }
            EXPECT_EQ(d.height(), Find<QGroupBox>(d, "RG_Type").height() + Find<QGroupBox>(d, group).height() + 75) << radio;
        }
        Click(d, "BT_Cancel");
    });
}

// The dialogs as the user sees them: title, the caption of every control, the buttons and the help
// context, each text to the letter.
// The text a control shows: a label's text, a button's caption, a group's title. An edit box
// stands for the label that names it.
QString Caption(QWidget& dialog, const char* name)
{
    QWidget* control = dialog.findChild<QWidget*>(QString::fromLatin1(name));
    if (!control) return QStringLiteral("<fehlt>");
    if (qobject_cast<QLineEdit*>(control)) {
        for (QLabel* label : dialog.findChildren<QLabel*>()) {
            if (label->buddy() == control) return label->text();
        }
        return QStringLiteral("<ohne Beschriftung>");
    }
    if (auto* label = qobject_cast<QLabel*>(control)) return label->text();
    if (auto* button = qobject_cast<QAbstractButton*>(control)) return button->text();
    if (auto* group = qobject_cast<QGroupBox*>(control)) return group->title();
    return QStringLiteral("<unbekannt>");
}

struct TDialogCase {
    const char* form;
    std::function<std::unique_ptr<TDVRunEdit>()> make;
    const char* title;
    int helpContext;
    std::vector<std::pair<const char*, const char*>> captions;
};

TEST(StructureDialogTexts, TitlesCaptionsAndHelpContextsAreTheDialogsOwn)
{
    const TDialogCase dialogs[] = {
        {"TDVGUILoop", [] { return std::make_unique<TDVCmdLoop>(); }, "Schleifen", 0,
         {{"RG_Type", "Schleifentyp"},
          {"RadioFor", "Zählschleife (for - to - do)"},
          {"RadioWhile", "Vorprüfende Schleife (while-do)"},
          {"RadioRepeat", "Nachprüfende Schleife (repeat-until)"},
          {"GB_ForLoop", "Zählschleife"},
          {"Edit_LoopVarName", "Zähler:"},
          {"Edit_StartValue", "Startwert:"},
          {"Edit_EndValue", "Endwert:"},
          {"GB_WhileLoop", "Vorprüfende Schleife"},
          {"Edit_WhileCondition", "Bedingung:"},
          {"GB_RepeatLoop", "Nachprüfende Schleife"},
          {"Edit_RepeatCondition", "Bedingung:"},
          {"BT_OK", "&OK"},
          {"BT_Cancel", "&Abbrechen"}}},
        {"TIfThenElse", [] { return std::make_unique<TDVCmdIfThenElse>(); }, "Bedingte Ausführung", 168,
         {{"Label1", "Geben Sie die Bedingung ein, unter der der IF-Zweig ausgeführt werden soll."},
          {"BT_OK", "OK"},
          {"BT_Cancel", "Abbrechen"}}},
        {"T_Case", [] { return std::make_unique<TDVCmdCase>(); }, "Case", 167,
         {{"Label1", "Selektor:"},
          {"Label2", "Wert:"},
          {"RB_Anweisung", "Anweisung"},
          {"RB_Verzweigung", "Fall"},
          {"BT_OK", "OK"},
          {"BT_Cancel", "Abbrechen"}}},
        {"TBemerkung", [] { return std::make_unique<TDVCmdComment>(); }, "Bemerkung", 180,
         {{"Label1", "Kommentar:"}, {"BT_OK", "OK"}, {"BT_Cancel", "Abbrechen"}}},
    };
    for (const TDialogCase& d : dialogs) {
        const std::unique_ptr<TDVRunEdit> command = d.make();
        command->SetDefaults();
        QString title;
        int helpContext = -1;
        std::vector<QString> shown;
        EditLine(*command, "", d.form, [&](QWidget& dialog) {
            title = dialog.windowTitle();
            if (const auto* help = dialog.findChild<TDVHelpButton*>()) helpContext = help->HelpContext();
            for (const auto& [name, caption] : d.captions) shown.push_back(Caption(dialog, name));
            Click(dialog, "BT_Cancel");
        });
        EXPECT_EQ(title, d.title) << d.form;
        EXPECT_EQ(helpContext, d.helpContext) << d.form;
        ASSERT_EQ(shown.size(), d.captions.size()) << d.form;
        for (std::size_t i = 0; i < shown.size(); ++i) EXPECT_EQ(shown[i], d.captions[i].second) << d.form << " " << d.captions[i].first;
    }
}

// Runs a script in a fresh host: the lines it logged, or its errors.
QStringList RunScript(const QString& script)
{
    QStringList logged;
    host::THost host;
    host.SetOutput([&](const QString& line) { logged << line; }, {});
    host::TScriptRun run(QStringLiteral("eingefuegt.dvs"), host);
    if (run.Load(script)) run.Run();
    return run.Report().errors.isEmpty() ? logged : run.Report().errors;
}

using TFill = std::vector<std::pair<const char*, const char*>>;  // edit box, text

// The lines of a new block inserted on an empty line through command's dialog, filled as given and
// confirmed, with the script's declarations known.
QStringList Insert(const QString& declarations, TDVRunEdit& command, const char* form, const char* radio, const TFill& fill)
{
    const EditedScript script(declarations);
    command.SetDefaults();
    const TEdited out = EditLine(command, "", form, [&](QWidget& d) {
        if (radio) Click(d, radio);
        for (const auto& [box, text] : fill) Type(d, box, text);
        Click(d, "BT_OK");
    });
    EXPECT_TRUE(out.confirmed) << form;
    return out.line.split(QStringLiteral("\r\n"));
}

TEST(StructureRunTest, InsertedLoopsRunTheirBodies)
{
    const QString declarations = "var I : Number\nvar N : Number\nvar Summe : Number";
    TDVCmdLoop loop;
    QStringList forBlock =
        Insert(declarations, loop, "TDVGUILoop", "RadioFor", {{"Edit_LoopVarName", "I"}, {"Edit_StartValue", "1"}, {"Edit_EndValue", "10"}});
    forBlock.insert(1, "  Summe := Summe + I");
    QStringList whileBlock = Insert(declarations, loop, "TDVGUILoop", "RadioWhile", {{"Edit_WhileCondition", "N < 3"}});
    whileBlock.insert(1, "  N := N + 1");
    QStringList repeatBlock = Insert(declarations, loop, "TDVGUILoop", "RadioRepeat", {{"Edit_RepeatCondition", "N >= 7"}});
    repeatBlock.insert(1, "  N := N + 2");
    const QStringList script = QStringList{declarations} + forBlock + QStringList{"Log(Summe)"} + whileBlock +
                               QStringList{"Log(N)"} + repeatBlock + QStringList{"Log(N)"};
    EXPECT_EQ(RunScript(script.join("\r\n")), (QStringList{"55", "3", "7"})) << script.join('\n').toStdString();
}

TEST(StructureRunTest, InsertedCaseRunsTheMatchingBranch)
{
    const QString declarations = "var Modus : Number\nvar Text : String";
    TDVCmdCase cases;
    QStringList block = Insert(declarations, cases, "T_Case", nullptr, {{"Edit_Selektor", "Modus"}});
    ASSERT_EQ(block.size(), 2);
    block.insert(1, Insert(declarations, cases, "T_Case", nullptr, {{"Edit_Fall", "1"}}).front());
    block.insert(2, "  Text := \"eins\"");
    block.insert(3, Insert(declarations, cases, "T_Case", nullptr, {{"Edit_Fall", "2 + 1"}}).front());
    block.insert(4, "  Text := \"drei\"");
    for (const auto& [modus, expected] : {std::pair{"1", "[eins]"}, {"3", "[drei]"}, {"2", "[]"}}) {
        const QString script = declarations + "\r\nModus := " + modus + "\r\n" + block.join("\r\n") + "\r\nLog(\"[\" + Text + \"]\")";
        EXPECT_EQ(RunScript(script), QStringList{expected}) << script.toStdString();
    }
}

TEST(StructureRunTest, InsertedIfRunsOneOfItsBranchesAndAnInsertedCommentNothing)
{
    const QString declarations = "var A : Number";
    TDVCmdIfThenElse ifThenElse;
    TDVCmdComment comment;
    QStringList block = Insert(declarations, ifThenElse, "TIfThenElse", nullptr, {{"Edit_Vergleich1", "A > 5"}});
    ASSERT_EQ(block.size(), 3);
    block.insert(2, "  Log(\"klein\")");
    block.insert(1, "  Log(\"gross\")");
    const QStringList remark = Insert(declarations, comment, "TBemerkung", nullptr, {{"Edit_Bemerkung", "Log(\"nie\")"}});
    for (const auto& [a, expected] : {std::pair{"9", "gross"}, {"5", "klein"}}) {
        const QString script = declarations + "\r\nA := " + a + "\r\n" + remark.join("") + "\r\n" + block.join("\r\n");
        EXPECT_EQ(RunScript(script), QStringList{expected}) << script.toStdString();
    }
}

}  // namespace
}  // namespace dv
