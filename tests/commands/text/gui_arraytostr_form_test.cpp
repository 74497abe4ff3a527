#include "commands/text/gui_arraytostr.h"
#include "commands/text/gui_strtoarray.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

TEST(ArrayToStringFormTest, OkReadsTheBoxesBackInSignatureOrderAndAbbrechenLeavesTheList)
{
    TTestHost host;
    TDVCmdArrayToString command(&host);
    TParamList params = MakeParams({{"Arr", "{72}"}, {"Str", "S"}});
    OnModal("TFRM_ArrayToString", [](QWidget& d) {
        Type(d, "Edit_Arr", "anders");
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_EQ(params, MakeParams({{"Arr", "{72}"}, {"Str", "S"}}));

    QStringList shown;
    OnModal("TFRM_ArrayToString", [&](QWidget& d) {
        shown << Find<QLineEdit>(d, "Edit_Arr").text() << Find<QLineEdit>(d, "Edit_Str").text();
        Type(d, "Edit_Arr", "{65}{66}");
        Type(d, "Edit_Str", "T");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(shown, QStringList({"{72}", "S"}));
    EXPECT_EQ(params, MakeParams({{"Str", "T"}, {"Arr", "{65}{66}"}}));
    EXPECT_EQ(host.attached.size(), 2u);  // both boxes offer the script's variables
}

TEST(StringIntoArrayFormTest, OkAndEscape)
{
    TTestHost host;
    TDVCmdStringToArray command(&host);
    TParamList params;
    OnModal("TFRM_StringIntoArrayString", [](QWidget& d) {
        Type(d, "Edit_String", "HALLO");
        Type(d, "Edit_Array", "A");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(params, MakeParams({{"str", "HALLO"}, {"arr", "A"}}));

    OnModal("TFRM_StringIntoArrayString", [](QWidget& d) {
        Type(d, "Edit_String", "anders");
        QTest::keyClick(&d, Qt::Key_Escape);
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_EQ(params.GetString("str"), "HALLO");
}

}  // namespace
}  // namespace dv
