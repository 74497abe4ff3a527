#include "commands/text/gui_stringbearbeitung.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QLabel>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

class StringBearbeitungFormTest : public ::testing::Test {
protected:
    StringBearbeitungFormTest() { command.SetDefaults(); }

    TTestHost host;
    TDVCmdStringConversion command{&host};
};

TEST_F(StringBearbeitungFormTest, CheckBoxesEnableTheirOwnControls)
{
    struct Rule {
        const char* box;
        std::vector<const char*> controls;
    };
    const std::vector<Rule> rules = {
        {"CB_Pos", {"Edit_PosSuchstring"}},
        {"CB_Fragment", {"Panel_Fragment", "RB_CUT", "RB_Mid", "Edit_Laenge"}},
        {"CB_Seg", {"Edit_Separator", "Edit_Spin_Teil"}},
        {"CB_Trim", {"Panel_Trim", "RB_TrimLeft"}},
        {"CB_Ersetzen", {"Edit_Ersetze_Pos", "Edit_Ersetze_durch"}},
    };
    TParamList params;
    command.ReadParams(params);
    std::vector<std::string> wrong;
    OnModal("TStringBearbeitung", [&](QWidget& d) {
        for (const Rule& rule : rules) {
            for (int clicks = 0; clicks < 3; ++clicks) {
                const bool on = clicks % 2 == 1;
                for (const char* control : rule.controls) {
                    if (Find<QWidget>(d, control).isEnabled() != on) wrong.push_back(std::string(rule.box) + " " + control);
                }
                Click(d, rule.box);
            }
        }
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_TRUE(wrong.empty()) << wrong.front();
}

TEST_F(StringBearbeitungFormTest, DefaultsAndOkWritesTheChosenSteps)
{
    TParamList params;
    command.ReadParams(params);
    std::vector<bool> defaults;
    OnModal("TStringBearbeitung", [&](QWidget& d) {
        defaults = {Find<QRadioButton>(d, "RB_CUT").isChecked(), Find<QRadioButton>(d, "RB_Left").isChecked(),
                    Find<QLineEdit>(d, "Edit_Position").text() == "0", Find<QLineEdit>(d, "Edit_Laenge").text() == "0",
                    Find<QLineEdit>(d, "Edit_Spin_Teil").text() == "0"};
        Type(d, "Edit_Eingang", "abcdef");
        Type(d, "Edit_Ausgang", "R");
        Click(d, "CB_Fragment");
        Click(d, "RB_Right");
        Click(d, "RB_Del");
        Type(d, "Edit_Laenge", "2");
        Click(d, "CB_Trim");
        Click(d, "RB_Trimright");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(defaults, std::vector<bool>(5, true));
    EXPECT_EQ(params.Names(), command.Signature().ParamNames());
    const std::pair<const char*, const char*> expected[] = {
        {"Input", "abcdef"}, {"Output", "R"},      {"Fragment", "True"}, {"Cut", "0"},        {"FragPos", "\"Right\""},
        {"Length", "2"},     {"Trim", "True"},     {"TrimMode", "3"},    {"UpperCase", "False"}, {"Search", ""},
    };
    for (const auto& [name, text] : expected) EXPECT_EQ(params.GetString(name), text) << name;
}

TEST_F(StringBearbeitungFormTest, TestButtonShowsTheResultAndChangesNothing)
{
    TParamList params = MakeParams({{"Input", "alt"}, {"Output", "R"}});
    const TParamList before = params;
    QStringList shown;
    OnModal("TStringBearbeitung", [&](QWidget& d) {
        Type(d, "Edit_Eingang", "Hallo Welt");
        Click(d, "cb_Uppercase");
        Click(d, "BT_Test");
        shown << Find<QLabel>(d, "LB_Ergebnis").text();
        Click(d, "CB_Pos");
        Type(d, "Edit_PosSuchstring", "WELT");
        Click(d, "BT_Test");
        shown << Find<QLabel>(d, "LB_Ergebnis").text();
        Click(d, "CB_Round");  // "7" rounds; now make it fail
        Click(d, "CB_Pos");
        Click(d, "BT_Test");
        shown << Find<QLabel>(d, "LB_Ergebnis").text();
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(params));
    ASSERT_EQ(shown.size(), 3);
    EXPECT_EQ(shown[0], "Ergebnis = HALLO WELT");
    EXPECT_EQ(shown[1], "Ergebnis = 7");
    EXPECT_TRUE(shown[2].startsWith("Ergebnis = ") && shown[2].contains("HALLO WELT")) << shown[2].toStdString();
    EXPECT_EQ(params, before);
    EXPECT_EQ(command.Fields().input, "alt");
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(StringBearbeitungFormTest, CountBoxDecidesWhetherTheCountTextIsWritten)
{
    TParamList params = MakeParams({{"Input", "banana"}, {"Output", "R"}, {"Count", "a"}});
    bool checkedOnShow = false;
    OnModal("TStringBearbeitung", [&](QWidget& d) {
        checkedOnShow = Find<QAbstractButton>(d, "cb_CountofChar").isChecked();
        Click(d, "cb_CountofChar");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_TRUE(checkedOnShow);
    EXPECT_EQ(params.GetString("Count"), "");
}

}  // namespace
}  // namespace dv
