// The editor dialogs of the system commands, driven offscreen by control name.
#include "commands/system/gui_callnamedpipe.h"
#include "commands/system/gui_exec.h"
#include "commands/system/gui_inifile.h"
#include "commands/system/gui_sysutils.h"
#include "commands/system/gui_tcp.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/system/systemtest.h"

#include <QLabel>
#include <QMessageBox>
#include <QSpinBox>

namespace dv {
namespace {

using namespace test;

class SystemFormTest : public ::testing::Test {
protected:
    // Clicks the Test button and gives the text of the message box it shows.
    static QString TestOutcome(QWidget& dialog, const QString& boxName)
    {
        QString shown;
        OnMessage(boxName, &shown);
        Click(dialog, "BT_Test");
        return shown;
    }
    TTestHost host;
};

TEST_F(SystemFormTest, IniFilesEnablesTheEditsOfTheModeAndOkWritesTheList)
{
    TDVCmdIniFiles ini(&host);
    TParamList params = MakeParams({{"FileName", "\"a.ini\""}, {"Mode", "5"}});
    const TParamList before = params;
    OnModal("TIni_Files", [&](QWidget& d) {
        EXPECT_TRUE(Find<QRadioButton>(d, "RB_ReadString").isChecked());
        for (const TIniModeRow& row : kIniModes) {
            Click(d, row.radioName);
            const int m = static_cast<int>(row.mode);
            EXPECT_EQ(Find<QLineEdit>(d, "Edit_Section").isEnabled(), m >= 3) << m;
            EXPECT_EQ(Find<QLineEdit>(d, "Edit_Ident").isEnabled(), (m >= 3 && m <= 11) || m == 14) << m;
            EXPECT_EQ(Find<QLineEdit>(d, "Edit_Value").isEnabled(), m >= 7 && m <= 10) << m;
            // the result edit serves DeleteSection and not SectionExist, as it always did
            EXPECT_EQ(Find<QLineEdit>(d, "Edit_Result").isEnabled(), (m >= 3 && m <= 6) || m == 12 || m == 14) << m;
        }
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(ini.Edit(params));
    EXPECT_EQ(params, before);

    OnModal("TIni_Files", [](QWidget& d) {
        Click(d, "RB_WriteInteger");
        Type(d, "Edit_Value", "12");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(ini.Edit(params));
    EXPECT_EQ(params, MakeParams({{"FileName", "\"a.ini\""}, {"Section", ""}, {"Ident", ""}, {"Value", "12"}, {"Result", ""},
                                  {"Mode", "7"}}));
    EXPECT_EQ(host.attached.size(), 5u);  // every edit offers the script's variables
}

TEST_F(SystemFormTest, SystemUtilitiesRelabelsForFileCopyAndStoresTheTarget)
{
    TDVCmdSystemUtilities utils(&host);
    TParamList params;
    QStringList labels;
    OnModal("TSystemUtilities", [&](QWidget& d) {
        EXPECT_TRUE(Find<QRadioButton>(d, "RB_Fileexist").isChecked());
        for (const char* radio : {"RB_Filecopy", "RB_FileAge", "RB_Filecopy"}) {
            Click(d, radio);
            labels << Find<QLabel>(d, "LB_Filename").text() + " / " + Find<QLabel>(d, "LB_Ergebnis").text();
        }
        Type(d, "Edit_Filename", "a.txt");
        Type(d, "Edit_Ergebnis", "b.txt");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(utils.Edit(params));
    EXPECT_EQ(labels, QStringList({"Quelle: / Ziel:", "Dateiname / Ergebnis-Variable", "Quelle: / Ziel:"}));
    EXPECT_EQ(params, MakeParams({{"Command", "\"FileCopy\""}, {"FileName", "a.txt"}, {"Result", ""}, {"Target", "b.txt"}}));
}

TEST_F(SystemFormTest, StartExeShowsWaitControlsWithWaitingTestsWithoutCommittingAndFoldsDelay)
{
    QTemporaryDir output;
    SetProgramOutputFolder(output.path());
    TDVCmdStartEXE exec(&host);
    TParamList params = MakeParams({{"ExePath", "sh"}, {"Params", "-c \"exit 9\""}, {"TimeOut", "3"}, {"Delay", "2"}, {"Kill", "True"}});
    QString shown, paramsDuringTest;
    OnModal("TStartEXE", [&](QWidget& d) {
        EXPECT_EQ(Find<QSpinBox>(d, "Spin_Timeout").value(), 5);
        EXPECT_TRUE(Find<QSpinBox>(d, "Spin_Timeout").isVisibleTo(&d));
        Type(d, "Edit_Parameter", "-c \"exit 4\"");
        shown = TestOutcome(d, "TestResult");
        paramsDuringTest = exec.Fields().params;
        Click(d, "CB_WaitForExit");
        EXPECT_FALSE(Find<QSpinBox>(d, "Spin_Timeout").isVisibleTo(&d));
        EXPECT_FALSE(Find<QCheckBox>(d, "CB_Kill").isVisibleTo(&d));
        Click(d, "CB_Minimized");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(exec.Edit(params));
    EXPECT_EQ(shown, "ExitCode = -65532");
    EXPECT_EQ(paramsDuringTest, "-c \"exit 9\"");
    // Not waiting: TimeOut is left out so its default 0 holds; Delay is never written.
    EXPECT_EQ(params, MakeParams({{"ExePath", "sh"}, {"Params", "-c \"exit 4\""}, {"WorkDir", ""}, {"Return", ""}, {"Hide", "False"},
                                  {"Minimized", "True"}, {"Kill", "True"}}));
    SetProgramOutputFolder({});
}

TEST_F(SystemFormTest, CallNamedPipeTestsTheCallWithoutWritingAndAbbrechenLeavesTheList)
{
    TDVCmdCallNamedPipe command(&host);
    TPipeServer server([](int fd, const TRunControl& quit) { SendBytes(fd, "re: " + ReceiveSome(fd, quit)); });
    TParamList params = ParamsOf({{"Name", server.name}, {"Call", "PING"}, {"Result", "Antwort"}});
    const TParamList before = params;
    QStringList outcomes;
    OnModal("TFormCallNamedPipe", [&](QWidget& d) {
        outcomes << TestOutcome(d, "MSG_TestResult");
        Type(d, "DVEdit_Name", "\\\\server\\pipe\\x");
        outcomes << TestOutcome(d, "MSG_TestResult").left(41);
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_EQ(params, before);
    EXPECT_EQ(outcomes, QStringList({"Ergebnis = re: PING", "CallNamedPipe: Pipes auf anderen Rechnern"}));
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
    EXPECT_EQ(host.attached.size(), 3u);
}

TEST_F(SystemFormTest, TcpOffersTheLineFeedSentinelToANewCallAndStoresEveryParameter)
{
    TDVCmdTCP command(&host);
    command.SetDefaults();  // as the host inserts a new call: defaults, then the editor on the defaulted list
    TParamList params;
    command.AddDefaults(params);
    OnModal("TFormTCP", [](QWidget& d) {
        Type(d, "DVEdit_Host", "127.0.0.1");
        Type(d, "DVEdit_Port", "80");
        Type(d, "DVEdit_Result", "Antwort");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(params, MakeParams({{"Host", "127.0.0.1"}, {"Port", "80"}, {"Send", ""}, {"Sentinel", "[10]"}, {"Result", "Antwort"}}));
    EXPECT_EQ(host.attached.size(), 5u);
}

}  // namespace
}  // namespace dv
