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
    StringBearbeitungFormTest() { command.ReadParams(params); }

    TTestHost host;
    TDVCmdStringConversion command{&host};
    TParamList params;  // the defaults
};

TEST_F(StringBearbeitungFormTest, CheckBoxesEnableTheirControlsTestButtonShowsTheResultAndChangesNothing)
{
    const std::pair<const char*, const char*> rules[] = {
        {"CB_Pos", "Edit_PosSuchstring"}, {"CB_Fragment", "Panel_Fragment"}, {"CB_Fragment", "Edit_Laenge"},
        {"CB_Seg", "Edit_Separator"}, {"CB_Seg", "Edit_Spin_Teil"}, {"CB_Trim", "Panel_Trim"},
        {"CB_Ersetzen", "Edit_Ersetze_Pos"}, {"CB_Ersetzen", "Edit_Ersetze_durch"},
    };
    params.AddString("Input", "alt");
    params.AddString("Output", "R");
    const TParamList before = params;
    QStringList wrong, shown;
    OnModal("TStringBearbeitung", [&](QWidget& d) {
        for (const auto& [box, control] : rules) {
            for (int clicks = 0; clicks < 3; ++clicks) {  // off, on, off again
                if (Find<QWidget>(d, control).isEnabled() != (clicks == 1)) wrong << QString("%1 %2").arg(box, control);
                if (clicks < 2) Click(d, box);
            }
        }
        Type(d, "Edit_Eingang", "Hallo Welt");
        for (const char* box : {"cb_Uppercase", "CB_Round"}) {  // upper case, then rounding the text, which fails
            Click(d, box);
            Click(d, "BT_Test");
            shown << Find<QLabel>(d, "LB_Ergebnis").text();
        }
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_EQ(wrong, QStringList{});
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[0], "Ergebnis = HALLO WELT");
    EXPECT_TRUE(shown[1].startsWith("Ergebnis = ") && shown[1].contains("HALLO WELT")) << shown[1].toStdString();
    EXPECT_EQ(params, before);
    EXPECT_EQ(command.Fields().input, "alt");
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(StringBearbeitungFormTest, DefaultsAndOkWritesTheChosenSteps)
{
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

}  // namespace
}  // namespace dv
