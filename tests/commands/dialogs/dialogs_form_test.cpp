// The dialogs of MeldungsBox, OpenSaveDlg, StatusText, TextOut, FormShow and FormResult driven
// offscreen: the message, file and form windows the operator meets, and the editor dialogs that
// write the commands' lines.
#include "commands/dialogs/gui_formshow.h"
#include "commands/dialogs/gui_meldungsbox.h"
#include "commands/dialogs/gui_opensavedlg.h"
#include "commands/dialogs/gui_statustext_form.h"
#include "commands/dialogs/gui_textout.h"
#include "framework/systemlog.h"
#include "host/hostservices.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/process.h"
#include "tests/support/testhost.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFontDialog>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <future>

namespace dv {
namespace {

using namespace test;

// The shown message offers exactly the chosen buttons, with the type's icon, at the place given in
// percent of the screen; each button pressed by the person gives its result text, and Cancel or
// Abort stops. An empty set shows the OK button of the standard message dialog and answers "OK", as
// the headless answer OK does.
TEST(MeldungsBoxFormTest, ExactlyTheChosenButtonsEachGivingItsResultTheTypesIconAndThePlace)
{
    const char* all = "mbYes + mbNo + mbOK + mbCancel + mbAbort + mbRetry + mbIgnore";
    const QStringList allOffered{"mbAbort", "mbCancel", "mbIgnore", "mbNo", "mbOK", "mbRetry", "mbYes"};
    const struct {
        const char *buttons, *type, *press;
        QStringList offered;
        QMessageBox::Icon icon;
        const char* result;
        int stops;
    } rows[] = {
        {all, "\"mtWarning\"", "mbYes", allOffered, QMessageBox::Warning, "JA", 0},
        {all, "\"mtWarning\"", "mbNo", allOffered, QMessageBox::Warning, "NEIN", 0},
        {all, "\"mtWarning\"", "mbOK", allOffered, QMessageBox::Warning, "OK", 0},
        {all, "\"mtWarning\"", "mbCancel", allOffered, QMessageBox::Warning, "ABBRECHEN", 1},
        {all, "\"mtWarning\"", "mbAbort", allOffered, QMessageBox::Warning, "ABBRECHEN", 1},
        {all, "\"mtWarning\"", "mbRetry", allOffered, QMessageBox::Warning, "WIEDERHOLEN", 0},
        {all, "\"mtWarning\"", "mbIgnore", allOffered, QMessageBox::Warning, "IGNORIEREN", 0},
        {"mbYes + mbNo", "\"mtError\"", "mbNo", {"mbNo", "mbYes"}, QMessageBox::Critical, "NEIN", 0},
        {"", "\"mtWarning\"", "mbOK", {"mbOK"}, QMessageBox::Warning, "OK", 0},
    };
    const QSize screen = QGuiApplication::primaryScreen()->geometry().size();
    for (const auto& r : rows) {
        TTestHost host;
        host.Declare("ButtonResult", g_StringType);
        TDVCmdMeldungsBox command(&host);
        QStringList offered;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QPoint at;
        OnModal("MeldungsBox", [&](QWidget& box) {
            for (QAbstractButton* b : static_cast<QMessageBox&>(box).buttons()) offered << b->objectName();
            icon = static_cast<QMessageBox&>(box).icon();
            at = box.pos();
            Find<QAbstractButton>(box, r.press).click();
        });
        TParamList params = MakeParams({{"Position", "False"}, {"Text", "Weiter?"}, {"Type", r.type}, {"Buttons", r.buttons},
                                        {"XPos", "10"}, {"YPos", "20"}});
        command.Run(params);
        EXPECT_EQ(host.ValueText("ButtonResult"), r.result) << r.press;
        EXPECT_EQ(host.stopCalls, r.stops) << r.press;
        offered.sort();
        EXPECT_EQ(offered, r.offered) << r.buttons;
        EXPECT_EQ(icon, r.icon) << r.type;
        EXPECT_EQ(at, QPoint(qRound(screen.width() * 0.1), qRound(screen.height() * 0.2)));
    }
}

// A ButtonResult that cannot take the answer fails before the message shows, naming it.
TEST(MeldungsBoxFormTest, AButtonResultThatTakesNoTextFailsBeforeTheMessageShows)
{
    TTestHost host;
    host.Declare("ButtonResult", g_NumberType);
    TDVCmdMeldungsBox command(&host);
    int shown = 0;
    QTimer closer;  // ends with the test, unlike OnModal's, which would wait for a message that never comes
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            ++shown;
            box->buttons().front()->click();
        }
    });
    closer.start(5);
    TParamList params = MakeParams({{"Text", "Frage"}, {"Buttons", "mbOK"}});
    const std::optional<QString> message = RaisedMessage([&] { command.Run(params); });
    ASSERT_TRUE(message);
    EXPECT_TRUE(message->startsWith("MeldungsBox: ButtonResult: die Variable \"ButtonResult\" vom Typ Number")) << message->toStdString();
    EXPECT_EQ(shown, 0);
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST(MeldungsBoxFormTest, DialogEnablesThePositionOnlyWithoutStandardAndWritesItsControls)
{
    TTestHost host;
    TDVCmdMeldungsBox command(&host);
    for (const char* button : {"BT_Cancel", "BT_OK"}) {
        TParamList params = MakeParams({{"Text", "Hallo"}, {"Type", "\"mtInformation\""}, {"Buttons", "mbOK + mbAbort"}});
        const TParamList before = params;
        bool enabledWithStandard = true;
        bool enabledWithout = false;
        int tested = 0;
        OnModal("TMeldungsbox", [&](QWidget& d) {
            EXPECT_TRUE(Find<QRadioButton>(d, "RB_Information").isChecked());
            enabledWithStandard = Find<QLineEdit>(d, "DVEdit_x").isEnabled() || Find<QLineEdit>(d, "DVEdit_Y").isEnabled();
            Click(d, "CB_Position");
            enabledWithout = Find<QLineEdit>(d, "DVEdit_x").isEnabled() && Find<QLineEdit>(d, "DVEdit_Y").isEnabled();
            Type(d, "DVEdit_Meldung", "Fertig?");
            Click(d, "RB_Confirmation");
            Click(d, "CB_OK");
            Click(d, "CB_YES");
            Click(d, "CB_Ignore");
            Type(d, "DVEdit_x", "25");
            Type(d, "DVEdit_Y", "75");
            OnModal("MeldungsBox", [&](QWidget& box) {
                ++tested;
                static_cast<QMessageBox&>(box).buttons().front()->click();
            });
            Click(d, "BT_Test");
            Click(d, button);
        });
        EXPECT_EQ(command.Edit(params), QString(button) == "BT_OK");
        EXPECT_FALSE(enabledWithStandard);
        EXPECT_TRUE(enabledWithout);
        EXPECT_EQ(tested, 1) << "the Test button shows the message";
        EXPECT_TRUE(host.setVariableCalls.isEmpty()) << "testing writes no ButtonResult";
        if (QString(button) == "BT_OK") {
            EXPECT_EQ(params, MakeParams({{"Text", "Fertig?"}, {"Type", "\"mtConfirmation\""}, {"Buttons", "\"mbYes + mbIgnore\""},
                                          {"Position", "False"}, {"XPos", "25"}, {"YPos", "75"}}));
            // The message text is script text: OK on an unchanged line keeps an expression.
            TParamList expression = MakeParams({{"Text", "\"Spannung: \" + Wert"}, {"Type", "\"mtWarning\""}});
            OnModal("TMeldungsbox", [](QWidget& d) { Click(d, "BT_OK"); });
            ASSERT_TRUE(command.Edit(expression));
            EXPECT_EQ(expression.GetString("Text"), "\"Spannung: \" + Wert");
        } else {
            EXPECT_EQ(params, before);
        }
    }
}

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
    OnMessage("Ergebnis", &shown);
    Find<QLineEdit>(dialog, "Edit_Statustext").setText("Prüfung 3");
    EXPECT_EQ(dialog.BT_TestClick(), "Ergebnis = Prüfung 3");
    EXPECT_EQ(shown, "Ergebnis = Prüfung 3");
    EXPECT_EQ(dialog.ScriptLine(), "StatusBar(Prüfung 3);");
    EXPECT_EQ(host.statusTexts.last(), "Prüfung 3");
}

// Shows the fields, types a text and chooses a font; OK writes it all back, Abbrechen leaves the list.
TEST(TextOutFormTest, FontButtonRebuildsTheStyleAndOkWritesTheBoxesBack)
{
    TTestHost host;
    TDVCmdTextOut command(&host);
    const TParamList before = MakeParams({{"Text", "Hallo"}, {"Font", "\"Arial\""}, {"FontSize", "12"}, {"FontColor", "255"},
                                          {"FontStyle", "\"bold\""}, {"FormFeed", "True"}});
    for (const QString button : {"BT_CANCEL", "BT_OK"}) {
        TParamList params = before;
        QStringList shown;
        QString family;
        OnModal("TFRM_TextOut", [&](QWidget& d) {
            for (const char* name : {"DVEdit_Text", "Edit_Schriftart", "Edit_Schriftgroesse", "Edit_Schriftstyle"}) {
                shown << Find<QLineEdit>(d, name).text();
            }
            shown << (Find<QAbstractButton>(d, "formfeed").isChecked() ? "formfeed" : "");
            Type(d, "DVEdit_Text", "Neu");
            OnModal("FontDialog", [&](QWidget& fontDialog) {
                auto& dialog = static_cast<QFontDialog&>(fontDialog);
                QFont font(QStringLiteral("DejaVu Serif"), 14, QFont::Bold, true);  // a family with a bold italic face
                font.setUnderline(true);
                dialog.setCurrentFont(font);
                family = dialog.currentFont().family();
                dialog.accept();
            });
            Click(d, "BT_Schriftart");
            Click(d, button.toLatin1().constData());
        });
        const bool ok = button == "BT_OK";
        EXPECT_EQ(command.Edit(params), ok);
        EXPECT_EQ(shown, (QStringList{"Hallo", "Arial", "12", "bold", "formfeed"}));
        TParamList expected = before;
        if (ok) {
            expected.AddString("Text", "Neu");
            expected.AddString("Font", '"' + family + '"');
            expected.AddString("FontSize", "14");
            expected.AddString("FontStyle", "\"Underline  + Italic  + bold \"");  // the words in reverse order
        }
        EXPECT_EQ(params, expected) << button.toStdString();
    }
}

// The swatch shows only the RGB bytes; OK without touching it gives back the colour as it came.
TEST(TextOutFormTest, OkKeepsTheColourItWasGiven)
{
    TTestHost host;
    TDVCmdTextOut command(&host);
    for (const char* colour : {"-1", "536870911", "-16777201", "255", "clRed"}) {
        TParamList params = MakeParams({{"Text", "Hallo"}, {"FontColor", colour}});
        OnModal("TFRM_TextOut", [&](QWidget& d) { Click(d, "BT_OK"); });
        ASSERT_TRUE(command.Edit(params));
        EXPECT_EQ(params.GetString("FontColor"), colour);
    }
}

// The two dialogs move their parameters only through controls named after them.
TEST(FormShowFormTest, ControlsBindToTheParametersByName)
{
    TTestHost host;
    TDVCmdFormShow show(&host);
    TParamList showParams = MakeParams({{"File", "\"alt.html\""}, {"Fullscreen", "False"}});
    OnModal("TFormFormShow", [](QWidget& d) {
        Type(d, "DVEdit_File", "\"formular.html\"");
        Click(d, "DVCheckBox_Fullscreen");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(show.Edit(showParams));
    EXPECT_EQ(showParams, MakeParams({{"File", "\"formular.html\""}, {"Fullscreen", "True"}}));

    TDVCmdFormResult result(&host);
    TParamList resultParams = MakeParams({{"Close", "True"}, {"Timeout", "-1"}, {"Result", "A"}, {"Unpack", "False"}});
    OnModal("TFormFormResult", [](QWidget& d) {
        Click(d, "DVCheckBox_Close");
        Type(d, "DVEdit_Timeout", "5000");
        Type(d, "DVEdit_Result", "Felder");
        Click(d, "DVCheckBox_Unpack");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(result.Edit(resultParams));
    EXPECT_EQ(resultParams, MakeParams({{"Close", "False"}, {"Timeout", "5000"}, {"Result", "Felder"}, {"Unpack", "True"}}));
}

// The browser window ends before anything was submitted (closed by the person, or a browser that
// cannot start, as Chromium does for root without its sandbox flag): FormResult stops waiting,
// writes "" and says why.
TEST(FormWindowTest, AWindowThatEndsBeforeAnAnswerEndsTheWait)
{
    QTemporaryDir dir;
    WriteProgram(dir.filePath("dvformbrowser"), "exit 1");
    WriteFile(dir.filePath("f.html"), "<form method=post></form>");
    const TScopedEnvironment path("PATH", dir.path().toLocal8Bit() + ':' + qgetenv("PATH"));
    QStringList warnings;
    SystemLog.SetSink([&](const QString&, const QString& text) { warnings << text; });

    TTestHost host;
    host.Declare("Antwort", g_StringType);
    host.SetVariable("Antwort", std::make_unique<TStringValue>("alt"));
    TDVCmdFormShow show(&host);
    TParamList showParams = MakeParams({{"File", dir.filePath("f.html").toUtf8().constData()}});
    show.Run(showParams);
    auto waiting = std::async(std::launch::async, [&] {
        TDVCmdFormResult result(&host);
        TParamList params = MakeParams({{"Timeout", "60000"}, {"Result", "Antwort"}});
        result.RunThreaded(params);
    });
    // The GUI thread goes on with its events, as the host's does while a thread command runs.
    QElapsedTimer timer;
    timer.start();
    while (waiting.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready && timer.elapsed() < 10000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    const bool ended = waiting.wait_for(std::chrono::milliseconds(0)) == std::future_status::ready;
    if (!ended) host.runControl.SignalStop();
    while (waiting.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready) QCoreApplication::processEvents();
    SystemLog.SetSink({});
    CloseShownForm();
    EXPECT_TRUE(ended) << "FormResult still waited for a window that had ended";
    EXPECT_EQ(host.ValueText("Antwort"), "");
    EXPECT_EQ(warnings, QStringList{"FormResult: das Formularfenster wurde ohne Eingabe geschlossen"});
}

}  // namespace
}  // namespace dv
