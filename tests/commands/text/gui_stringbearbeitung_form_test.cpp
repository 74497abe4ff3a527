#include "commands/text/gui_stringbearbeitung.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QLabel>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

class StringBearbeitungFormTest : public ::testing::Test {
protected:
    StringBearbeitungFormTest() { command.ReadParams(defaults); }

    TTestHost host;
    TDVCmdStringConversion command{&host};
    TParamList defaults;
};

TEST_F(StringBearbeitungFormTest, CheckBoxesEnableTheirOwnControls)
{
    const std::pair<const char*, std::vector<const char*>> rules[] = {
        {"CB_Pos", {"Edit_PosSuchstring"}},
        {"CB_Fragment", {"Panel_Fragment", "RB_CUT", "RB_Mid", "Edit_Laenge"}},
        {"CB_Seg", {"Edit_Separator", "Edit_Spin_Teil"}},
        {"CB_Trim", {"Panel_Trim", "RB_TrimLeft"}},
        {"CB_Ersetzen", {"Edit_Ersetze_Pos", "Edit_Ersetze_durch"}},
    };
    QStringList wrong;
    OnModal("TStringBearbeitung", [&](QWidget& d) {
        for (const auto& [box, controls] : rules) {
            for (int clicks = 0; clicks < 3; ++clicks) {  // off, on, off again
                for (const char* control : controls) {
                    if (Find<QWidget>(d, control).isEnabled() != (clicks == 1)) wrong << QString("%1 %2").arg(box, control);
                }
                Click(d, box);
            }
        }
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(defaults));
    EXPECT_EQ(wrong, QStringList{});
}

TEST_F(StringBearbeitungFormTest, DefaultsAndOkWritesTheChosenSteps)
{
    TParamList params = defaults;
    params.AddString("Search", "Welt");
    params.AddString("Count", "a");
    std::vector<bool> shown;
    OnModal("TStringBearbeitung", [&](QWidget& d) {
        for (const char* name : {"RB_CUT", "RB_Left", "CB_Pos", "cb_CountofChar"}) shown.push_back(Find<QAbstractButton>(d, name).isChecked());
        for (const char* name : {"Edit_Position", "Edit_Laenge", "Edit_Spin_Teil"}) shown.push_back(Find<QLineEdit>(d, name).text() == "0");
        Type(d, "Edit_Eingang", "abcdef");
        Type(d, "Edit_Ausgang", "R");
        // Unchecking the search and count boxes drops their texts from the list.
        for (const char* name : {"CB_Pos", "cb_CountofChar", "CB_Fragment", "RB_Right", "RB_Del", "CB_Trim", "RB_Trimright"}) Click(d, name);
        Type(d, "Edit_Laenge", "2");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(shown, std::vector<bool>(7, true));
    EXPECT_EQ(params.Names(), command.Signature().ParamNames());
    const std::pair<const char*, const char*> expected[] = {
        {"Input", "abcdef"}, {"Output", "R"}, {"Search", ""}, {"Count", ""}, {"Fragment", "True"}, {"Cut", "0"},
        {"FragPos", "\"Right\""}, {"Length", "2"}, {"Trim", "True"}, {"TrimMode", "3"}, {"UpperCase", "False"},
    };
    for (const auto& [name, text] : expected) EXPECT_EQ(params.GetString(name), text) << name;
}

TEST_F(StringBearbeitungFormTest, TestButtonShowsTheResultAndChangesNothing)
{
    TParamList params = MakeParams({{"Input", "alt"}, {"Output", "R"}});
    QStringList shown;
    OnModal("TStringBearbeitung", [&](QWidget& d) {
        Type(d, "Edit_Eingang", "Hallo Welt");
        // Upper case alone, then rounding the text, which fails.
        for (const char* box : {"cb_Uppercase", "CB_Round"}) {
            Click(d, box);
            Click(d, "BT_Test");
            shown << Find<QLabel>(d, "LB_Ergebnis").text();
        }
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(params));
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[0], "Ergebnis = HALLO WELT");
    EXPECT_TRUE(shown[1].startsWith("Ergebnis = ") && shown[1].contains("HALLO WELT")) << shown[1].toStdString();
    EXPECT_EQ(params, MakeParams({{"Input", "alt"}, {"Output", "R"}}));
    EXPECT_EQ(command.Fields().input, "alt");
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

}  // namespace
}  // namespace dv
