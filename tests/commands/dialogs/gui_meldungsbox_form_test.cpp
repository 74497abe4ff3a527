#include "commands/dialogs/gui_meldungsbox.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace dv
