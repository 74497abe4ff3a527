// The editor dialogs of Exec, SysUtils and IniFile, driven offscreen by control name.
#include "commands/system/gui_exec.h"
#include "commands/system/gui_inifile.h"
#include "commands/system/gui_sysutils.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

#include <functional>

namespace dv {
namespace {

// Runs act on the modal dialog as soon as it shows, then the command's Edit returns.
bool EditWith(TDVThreadRunEdit& command, TParamList& params, std::function<void(QWidget&)> act)
{
    QTimer::singleShot(0, [act] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        act(*dialog);
    });
    return command.Edit(params);
}

template <class T>
T* Child(QWidget& dialog, const char* name)
{
    T* w = dialog.findChild<T*>(name);
    EXPECT_NE(w, nullptr) << name;
    return w;
}

void Click(QWidget& dialog, const char* name) { Child<QAbstractButton>(dialog, name)->click(); }

TEST(IniFilesFormTest, EnablingRulesFollowTheModeIncludingTheKeptAsymmetry)
{
    test::TTestHost host;
    TDVCmdIniFiles ini(&host);
    TParamList params;
    EditWith(ini, params, [](QWidget& d) {
        for (const TIniModeRow& row : kIniModes) {
            Click(d, row.radioName);
            const int mode = static_cast<int>(row.mode);
            EXPECT_EQ(Child<QLineEdit>(d, "Edit_Section")->isEnabled(), mode >= 3) << mode;
            EXPECT_EQ(Child<QLineEdit>(d, "Edit_Ident")->isEnabled(), (mode >= 3 && mode <= 11) || mode == 14) << mode;
            EXPECT_EQ(Child<QLineEdit>(d, "Edit_Value")->isEnabled(), mode >= 7 && mode <= 10) << mode;
            EXPECT_EQ(Child<QLineEdit>(d, "Edit_Result")->isEnabled(), (mode >= 3 && mode <= 6) || mode == 12 || mode == 14)
                << mode;
        }
        Click(d, "BT_Cancel");
    });
    EXPECT_EQ(params.Count(), 0);  // cancelled: the list is untouched
}

TEST(IniFilesFormTest, OkWritesTheParameterList)
{
    test::TTestHost host;
    TDVCmdIniFiles ini(&host);
    TParamList params;
    params.AddString("FileName", "\"a.ini\"");
    params.AddString("Mode", "5");
    const bool ok = EditWith(ini, params, [](QWidget& d) {
        EXPECT_TRUE(Child<QRadioButton>(d, "RB_ReadString")->isChecked());
        EXPECT_EQ(Child<QLineEdit>(d, "Edit_Dateiname")->text(), "\"a.ini\"");
        Click(d, "RB_WriteInteger");
        QTest::keyClicks(Child<QLineEdit>(d, "Edit_Section"), "S");
        QTest::keyClicks(Child<QLineEdit>(d, "Edit_Ident"), "K");
        QTest::keyClicks(Child<QLineEdit>(d, "Edit_Value"), "12");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(ok);
    EXPECT_EQ(params.Names(), QStringList({"FileName", "Section", "Ident", "Value", "Result", "Mode"}));
    EXPECT_EQ(params.GetString("Mode"), "7");
    EXPECT_EQ(params.GetString("Section"), "S");
    EXPECT_EQ(params.GetString("Value"), "12");
    EXPECT_EQ(host.attached.size(), 5u);  // every edit offers the script's variables
}

TEST(SystemUtilitiesFormTest, FileCopyRelabelsAndStoresTheTarget)
{
    test::TTestHost host;
    TDVCmdSystemUtilities utils(&host);
    TParamList params;
    const bool ok = EditWith(utils, params, [](QWidget& d) {
        EXPECT_TRUE(Child<QRadioButton>(d, "RB_Fileexist")->isChecked());
        Click(d, "RB_Filecopy");
        EXPECT_EQ(Child<QLabel>(d, "LB_Filename")->text(), "Quelle:");
        EXPECT_EQ(Child<QLabel>(d, "LB_Ergebnis")->text(), "Ziel:");
        Click(d, "RB_FileAge");
        EXPECT_EQ(Child<QLabel>(d, "LB_Filename")->text(), "Dateiname");
        EXPECT_EQ(Child<QLabel>(d, "LB_Ergebnis")->text(), "Ergebnis-Variable");
        Click(d, "RB_Filecopy");
        QTest::keyClicks(Child<QLineEdit>(d, "Edit_Filename"), "a.txt");
        QTest::keyClicks(Child<QLineEdit>(d, "Edit_Ergebnis"), "b.txt");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(ok);
    EXPECT_EQ(params.GetString("Command"), "\"FileCopy\"");
    EXPECT_EQ(params.GetString("Target"), "b.txt");
    EXPECT_EQ(params.GetString("Result"), "");
}

TEST(StartExeFormTest, WaitControlsAndParameterList)
{
    test::TTestHost host;
    TDVCmdStartEXE exec(&host);
    TParamList params;
    params.AddString("ExePath", "\"/bin/prog\"");
    params.AddString("TimeOut", "3");
    params.AddString("Delay", "2");
    params.AddString("Kill", "True");
    const bool ok = EditWith(exec, params, [](QWidget& d) {
        EXPECT_TRUE(Child<QCheckBox>(d, "CB_WaitForExit")->isChecked());
        EXPECT_EQ(Child<QSpinBox>(d, "Spin_Timeout")->value(), 5);
        EXPECT_FALSE(Child<QSpinBox>(d, "Spin_Timeout")->isHidden());
        EXPECT_TRUE(Child<QCheckBox>(d, "CB_Kill")->isChecked());
        Click(d, "CB_WaitForExit");
        EXPECT_TRUE(Child<QSpinBox>(d, "Spin_Timeout")->isHidden());
        EXPECT_TRUE(Child<QCheckBox>(d, "CB_Kill")->isHidden());
        Click(d, "CB_Minimized");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(ok);
    EXPECT_EQ(params.GetString("ExePath"), "\"/bin/prog\"");
    EXPECT_FALSE(params.Contains("TimeOut"));  // not waiting: the default 0 holds
    EXPECT_FALSE(params.Contains("Delay"));
    EXPECT_EQ(params.GetString("Minimized"), "True");
    EXPECT_EQ(params.GetString("Kill"), "True");
}

TEST(StartExeFormTest, TestButtonShowsTheExitCode)
{
    test::TTestHost host;
    TDVCmdStartEXE exec(&host);
    TParamList params;
    QString shown;
    const bool ok = EditWith(exec, params, [&shown](QWidget& d) {
        QTest::keyClicks(Child<QLineEdit>(d, "Edit_ExeName"), "sh");
        QTest::keyClicks(Child<QLineEdit>(d, "Edit_Parameter"), "-c 'exit 4'");
        Click(d, "CB_WaitForExit");
        Child<QSpinBox>(d, "Spin_Timeout")->setValue(10);
        QTimer::singleShot(0, [&shown] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            shown = box->text();
            box->accept();
        });
        Click(d, "BT_Test");
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(ok);
    EXPECT_EQ(shown, "ExitCode = -65532");
    EXPECT_EQ(exec.Fields().exePath, "");  // the test did not commit the dialog
}

}  // namespace
}  // namespace dv
