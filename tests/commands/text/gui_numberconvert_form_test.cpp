#include "commands/text/gui_numberconvert.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QSpinBox>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

TEST(ZahlenkonverterTest, RadiosChooseTheOperationAndShowStellenOnlyWhereUsed)
{
    TTestHost host;
    TDVCmdNumberConversion command(&host);
    TParamList params = MakeParams({{"Operation", "ccOrd"}, {"Input", "A"}, {"Output", "X"}, {"Stellen", "2"}});
    const TParamList before = params;
    OnModal("TZahlenkonverter", [](QWidget& d) {
        Click(d, "RB_ccHigh");
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_EQ(params, before);

    const QStringList usesStellen{"ccIntToBin", "ccIntToHex", "ccRound"};
    QStringList wrong;
    OnModal("TZahlenkonverter", [&](QWidget& d) {
        auto stellenShown = [&d] { return Find<QWidget>(d, "Panel_Stellen").isVisibleTo(&d); };
        if (!Find<QAbstractButton>(d, "RB_ccOrd").isChecked() || stellenShown()) wrong << "on show";
        for (const TNumberOperationRow& op : NumberOperations()) {
            Click(d, (QByteArray("RB_") + op.keyword).constData());
            if (stellenShown() != usesStellen.contains(op.keyword)) wrong << op.keyword;
        }
        Click(d, "RB_ccIntToHex");
        Type(d, "Edit_IN", "255");
        Type(d, "Edit_Out", "H");
        auto& upDown = Find<QSpinBox>(d, "UD_Stellen");  // keeps to 1..16
        upDown.setValue(16);
        upDown.stepUp();
        if (Find<QLineEdit>(d, "Edit_Stellen").text() != "16") wrong << "up past 16";
        upDown.setValue(1);
        upDown.stepDown();
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(wrong, QStringList{});
    EXPECT_EQ(params, MakeParams({{"Operation", "ccIntToHex"}, {"Input", "255"}, {"Output", "H"}, {"Stellen", "1"}}));
}

}  // namespace
}  // namespace dv
