#include "commands/system/gui_callnamedpipe_form.h"
#include "tests/commands/system/testservers.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace dv {
namespace {

QWidget* Modal() { return QApplication::activeModalWidget(); }

template <class T>
T* Child(const char* name)
{
    T* child = Modal() ? Modal()->findChild<T*>(QString::fromLatin1(name)) : nullptr;
    EXPECT_NE(child, nullptr) << name;
    return child;
}

class CallNamedPipeFormTest : public ::testing::Test {
protected:
    TParamList Params(const QString& name, const QString& call, const QString& result)
    {
        TParamList params;
        params.AddString("Name", name);
        params.AddString("Call", call);
        params.AddString("Result", result);
        return params;
    }

    // Clicks the Test button and returns the text of the message box it shows.
    QString TestOutcome()
    {
        QString shown;
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QMessageBox*>(Modal());
            if (!box) return;
            shown = box->text();
            box->accept();
        });
        QTest::mouseClick(Child<QPushButton>("BT_Test"), Qt::LeftButton);
        return shown;
    }

    test::TTestHost host;
    TDVCmdCallNamedPipe command{&host};
};

TEST_F(CallNamedPipeFormTest, OkStoresTheEditedTextsUnderTheParameterNames)
{
    TParamList params = Params("\"demo\"", "\"PING\"", "Antwort");
    QStringList shown;
    QString title;
    QTimer::singleShot(0, [&] {
        title = Modal()->windowTitle();
        for (const char* name : {"DVEdit_Name", "DVEdit_Call", "DVEdit_Result"}) shown << Child<QLineEdit>(name)->text();
        QLineEdit* call = Child<QLineEdit>("DVEdit_Call");
        call->clear();
        QTest::keyClicks(call, "\"STATUS\"");
        QTest::mouseClick(Child<QPushButton>("BT_OK"), Qt::LeftButton);
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(title, "CallNamedPipe");
    EXPECT_EQ(shown, (QStringList{"\"demo\"", "\"PING\"", "Antwort"}));
    EXPECT_EQ(params, Params("\"demo\"", "\"STATUS\"", "Antwort"));
    EXPECT_EQ(params.Names(), (QStringList{"Name", "Call", "Result"}));
}

TEST_F(CallNamedPipeFormTest, CancelLeavesTheListAsItWas)
{
    TParamList params = Params("a", "b", "c");
    QTimer::singleShot(0, [&] {
        QTest::keyClicks(Child<QLineEdit>("DVEdit_Name"), "changed");
        QTest::mouseClick(Child<QPushButton>("BT_Cancel"), Qt::LeftButton);
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_EQ(params, Params("a", "b", "c"));
}

TEST_F(CallNamedPipeFormTest, LabelsAndVariableEditors)
{
    TParamList params;
    QStringList labels;
    int helpContext = 0;
    QTimer::singleShot(0, [&] {
        helpContext = Child<TDVHelpButton>("DVHelpButton")->HelpContext();
        for (const char* name : {"DVEdit_Name", "DVEdit_Call", "DVEdit_Result"}) {
            for (QLabel* label : Modal()->findChildren<QLabel*>()) {
                if (label->buddy() == Child<QLineEdit>(name)) labels << label->text();
            }
        }
        QTest::mouseClick(Child<QPushButton>("BT_Cancel"), Qt::LeftButton);
    });
    command.Edit(params);
    EXPECT_EQ(labels, (QStringList{"Name der Pipe", "Zu schreibenden Text", "Ergebnis-Variable"}));
    EXPECT_EQ(host.attached.size(), 3u);
    EXPECT_EQ(helpContext, 191);
}

TEST_F(CallNamedPipeFormTest, TestButtonShowsTheReplyOrTheFailure)
{
    test::TPipeServer server([](int fd, const TRunControl& quit) { test::SendBytes(fd, "re: " + test::ReceiveSome(fd, quit)); });
    TParamList params = Params(server.Name(), "PING", "Antwort");
    QStringList outcomes;
    QTimer::singleShot(0, [&] {
        outcomes << TestOutcome();
        QLineEdit* name = Child<QLineEdit>("DVEdit_Name");
        name->setText("\\\\server\\pipe\\x");
        outcomes << TestOutcome();
        QTest::mouseClick(Child<QPushButton>("BT_Cancel"), Qt::LeftButton);
    });
    command.Edit(params);
    ASSERT_EQ(outcomes.size(), 2);
    EXPECT_EQ(outcomes[0], "Ergebnis = re: PING");
    EXPECT_TRUE(outcomes[1].startsWith("CallNamedPipe: Pipes auf anderen Rechnern")) << outcomes[1].toStdString();
    EXPECT_TRUE(host.setVariableCalls.isEmpty());  // the test writes no variable
}

}  // namespace
}  // namespace dv
