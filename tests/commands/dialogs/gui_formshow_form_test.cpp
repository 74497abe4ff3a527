#include "commands/dialogs/gui_formshow.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/process.h"
#include "tests/support/testhost.h"
#include "framework/systemlog.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <future>

namespace dv {
namespace {

using namespace test;

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
