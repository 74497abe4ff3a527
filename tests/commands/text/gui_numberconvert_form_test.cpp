#include "commands/text/gui_numberconvert.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QRadioButton>
#include <QSpinBox>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

class ZahlenkonverterTest : public ::testing::Test {
protected:
    TTestHost host;
    TDVCmdNumberConversion command{&host};
};

TEST_F(ZahlenkonverterTest, RadioChoosesTheOperationAndShowsStellenOnlyWhereUsed)
{
    TParamList params = MakeParams({{"Operation", "ccOrd"}, {"Input", "A"}, {"Output", "X"}, {"Stellen", "2"}});
    std::map<QString, bool> stellenShown;
    bool ordChecked = false;
    OnModal("TZahlenkonverter", [&](QWidget& d) {
        ordChecked = Find<QRadioButton>(d, "RB_ccOrd").isChecked();
        stellenShown["ccOrd"] = Find<QWidget>(d, "Panel_Stellen").isVisibleTo(&d);
        for (const TNumberOperationRow& op : NumberOperations()) {
            Click(d, (QByteArray("RB_") + op.keyword).constData());
            stellenShown[op.keyword] = Find<QWidget>(d, "Panel_Stellen").isVisibleTo(&d);
        }
        Click(d, "RB_ccIntToHex");
        Type(d, "Edit_IN", "255");
        Type(d, "Edit_Out", "H");
        Type(d, "Edit_Stellen", "4");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_TRUE(ordChecked);
    const std::map<QString, bool> expected{
        {"ccOrd", false},          {"ccBinToInt", false},   {"ccIntToBin", true},   {"ccIntToHex", true},
        {"ccHexToInt", false},     {"ccRandom", false},     {"ccASCII", false},     {"ccMaxArrayEntry", false},
        {"ccHigh", false},         {"ccLow", false},        {"ccRound", true},      {"cc4ByteHexToFloat", false},
        {"ccSumOfArray", false},
    };
    EXPECT_EQ(stellenShown, expected);
    EXPECT_EQ(params, MakeParams({{"Operation", "ccIntToHex"}, {"Input", "255"}, {"Output", "H"}, {"Stellen", "4"}}));
}

TEST_F(ZahlenkonverterTest, UpDownStepsTheStellenWithinOneToSixteen)
{
    TParamList params = MakeParams({{"Operation", "ccRound"}, {"Input", "1.5"}, {"Output", "X"}, {"Stellen", "16"}});
    OnModal("TZahlenkonverter", [&](QWidget& d) {
        auto& upDown = Find<QSpinBox>(d, "UD_Stellen");
        upDown.stepUp();  // already at its top
        upDown.setValue(1);
        upDown.stepDown();
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(params.GetString("Stellen"), "1");
}

TEST_F(ZahlenkonverterTest, AbbrechenLeavesTheList)
{
    TParamList params = MakeParams({{"Operation", "ccLow"}, {"Input", "1"}, {"Output", "X"}, {"Stellen", "0"}});
    const TParamList before = params;
    QString caption;
    OnModal("TZahlenkonverter", [&](QWidget& d) {
        caption = d.windowTitle();
        Click(d, "RB_ccHigh");
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_EQ(caption, "Zahlenkonverter");
    EXPECT_EQ(params, before);
}

}  // namespace
}  // namespace dv
