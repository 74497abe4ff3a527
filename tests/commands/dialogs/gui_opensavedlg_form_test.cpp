#include "commands/dialogs/gui_opensavedlg.h"
#include "commands/dialogs/gui_statustext_form.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "host/hostservices.h"
#include "tests/support/testhost.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

// The file dialog as the person meets it: title, folder and proposed name from the call; a typed
// name without extension gets the default one; Abbrechen leaves the variable as it was.
TEST(OpenSaveDlgFormTest, ConfirmWritesTheChoiceCancelAndEmptyVariableWriteNothing)
{
    QTemporaryDir folder;
    const struct { const char* variable; bool confirm; QString expected; } rows[] = {
        {"Datei", true, folder.filePath("bericht.csv")},
        {"Datei", false, "vorschlag.txt"},
        {"", true, ""},
    };
    for (const auto& r : rows) {
        TTestHost host;
        host.Declare("Datei", g_StringType);
        host.SetVariable("Datei", std::make_unique<TStringValue>("vorschlag.txt"));
        host.setVariableCalls.clear();
        TDVCmdOpenSave command(&host);
        QString title;
        QString proposed;
        QString directory;
        int shown = 0;
        OnModal("OpenSaveDialog", [&](QWidget& d) {
            auto& dialog = static_cast<QFileDialog&>(d);
            ++shown;
            title = dialog.windowTitle();
            directory = dialog.directory().absolutePath();
            proposed = Find<QLineEdit>(d, "fileNameEdit").text();
            if (!r.confirm) {
                dialog.reject();
                return;
            }
            Find<QLineEdit>(d, "fileNameEdit").setText("bericht");
            static_cast<QDialog&>(dialog).accept();
        });
        TParamList params = MakeParams({{"OpenDlg", "False"}, {"FileName", r.variable}, {"InitDir", folder.path().toUtf8()},
                                        {"Caption", "Bericht speichern"}, {"Extension", "csv"}});
        command.Run(params);
        EXPECT_EQ(shown, 1);
        EXPECT_EQ(title, "Bericht speichern");
        EXPECT_EQ(directory, folder.path());
        EXPECT_EQ(proposed, QString(r.variable).isEmpty() ? "" : "vorschlag.txt");
        if (QString(r.variable).isEmpty()) {
            EXPECT_TRUE(host.setVariableCalls.isEmpty());
        } else {
            EXPECT_EQ(host.ValueText("Datei"), r.expected);
        }
    }
}

TEST(OpenSaveDlgFormTest, EditorDialogControlsByName)
{
    TTestHost host;
    TDVCmdOpenSave command(&host);
    TParamList params = MakeParams({{"OpenDlg", "True"}, {"FileName", "Datei"}, {"InitDir", "\"/daten\""}});
    OnModal("TFRM_OpenSave", [&](QWidget& d) {
        EXPECT_TRUE(Find<QRadioButton>(d, "RB_OpenDialog").isChecked());
        EXPECT_EQ(Find<QLineEdit>(d, "Edit_InitDir").text(), "\"/daten\"");
        Click(d, "RB_SaveDialog");
        Type(d, "Edit_Filename", "Ziel");
        Type(d, "Edit_Caption", "Speichern");
        Type(d, "Edit_Extension", "txt");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(params, MakeParams({{"OpenDlg", "False"}, {"FileName", "Ziel"}, {"InitDir", "\"/daten\""},
                                  {"Caption", "\"Speichern\""}, {"Extension", "\"txt\""}}));
}

// OK never changes what a line means: a field holding an expression keeps it, with the script's
// own parser deciding; only what was typed as plain text becomes a string literal.
TEST(OpenSaveDlgFormTest, EditingKeepsExpressionsAndQuotesTypedText)
{
    host::THost host;
    for (const char* name : {"Bericht", "Ext"}) host.Program().globals.Declare({name, g_StringType});
    TDVCmdOpenSave command(&host);
    const TParamList line = MakeParams({{"OpenDlg", "False"}, {"FileName", "Bericht"}, {"InitDir", "PROJEKTPFAD + \"/daten\""},
                                        {"Caption", "\"Bericht \"\"A\"\"\""}, {"Extension", "Ext"}});
    TParamList params = line;
    OnModal("TFRM_OpenSave", [](QWidget& d) { Click(d, "BT_OK"); });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(params, line);

    const std::pair<const char*, const char*> rows[] = {
        {"c:\\daten", "\"c:\\daten\""},
        {"Neuer \"Titel\"", "\"Neuer \"\"Titel\"\"\""},
        {"csv", "\"csv\""},                     // no variable of that name: text
        {"Ext + \".bak\"", "Ext + \".bak\""},    // an expression over a variable
        {"\"txt\"", "\"txt\""},
        {"", "\"\""},
    };
    for (const auto& [typed, written] : rows) {
        params = line;
        OnModal("TFRM_OpenSave", [&](QWidget& d) {
            Type(d, "Edit_Extension", QString::fromUtf8(typed));
            Click(d, "BT_OK");
        });
        ASSERT_TRUE(command.Edit(params));
        EXPECT_EQ(params.GetString("Extension"), QString::fromUtf8(written)) << typed;
        EXPECT_EQ(params.GetString("InitDir"), line.GetString("InitDir"));
    }
}

TEST(StatusleisteFormTest, OkCopiesTheEditAndTheTestHandlerShowsErgebnis)
{
    TTestHost host;
    TDVCmdStatusBar command(&host);
    for (const char* button : {"BT_Cancel", "BT_OK"}) {
        TParamList params = MakeParams({{"Text", "alt"}});
        QString focused;
        OnModal("TStatusleiste", [&](QWidget& d) {
            focused = d.focusWidget() ? d.focusWidget()->objectName() : QString();
            Type(d, "Edit_Statustext", "Messung läuft");
            Click(d, button);
        });
        const bool ok = QString(button) == "BT_OK";
        EXPECT_EQ(command.Edit(params), ok);
        EXPECT_EQ(focused, "Edit_Statustext");
        EXPECT_EQ(params, MakeParams({{"Text", ok ? "Messung läuft" : "alt"}}));
    }
    TStatusleiste dialog(command);
    QString shown;
    OnModal("Ergebnis", [&](QWidget& box) {
        shown = static_cast<QMessageBox&>(box).text();
        static_cast<QMessageBox&>(box).accept();
    });
    Find<QLineEdit>(dialog, "Edit_Statustext").setText("Prüfung 3");
    EXPECT_EQ(dialog.BT_TestClick(), "Ergebnis = Prüfung 3");
    EXPECT_EQ(shown, "Ergebnis = Prüfung 3");
    EXPECT_EQ(dialog.ScriptLine(), "StatusBar(Prüfung 3);");
    EXPECT_EQ(host.statusTexts.last(), "Prüfung 3");
}

}  // namespace
}  // namespace dv
