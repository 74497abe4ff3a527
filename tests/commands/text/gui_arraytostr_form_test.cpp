#include "commands/text/gui_arraytostr.h"
#include "commands/text/gui_strtoarray.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

TEST(ArrayToStringFormTest, OkReadsTheBoxesBackInSignatureOrderAbbrechenLeavesTheList)
{
    TTestHost host;
    TDVCmdArrayToString command(&host);
    for (const QString button : {"BT_Cancel", "BT_OK"}) {
        TParamList params = MakeParams({{"Arr", "{72}"}, {"Str", "S"}});
        QStringList shown;
        OnModal("TFRM_ArrayToString", [&](QWidget& d) {
            shown << Find<QLineEdit>(d, "Edit_Arr").text() << Find<QLineEdit>(d, "Edit_Str").text();
            Type(d, "Edit_Arr", "{65}{66}");
            Type(d, "Edit_Str", "T");
            Click(d, button.toLatin1().constData());
        });
        const bool ok = button == "BT_OK";
        EXPECT_EQ(command.Edit(params), ok);
        EXPECT_EQ(shown, QStringList({"{72}", "S"}));
        EXPECT_EQ(params, ok ? MakeParams({{"Str", "T"}, {"Arr", "{65}{66}"}}) : MakeParams({{"Arr", "{72}"}, {"Str", "S"}}));
    }
    EXPECT_EQ(host.attached.size(), 2u);  // both boxes offer the script's variables
}

TEST(StringIntoArrayFormTest, EnterPressesOkEscapeLeavesTheList)
{
    TTestHost host;
    TDVCmdStringToArray command(&host);
    TParamList params;
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        OnModal("TFRM_StringIntoArrayString", [key](QWidget& d) {
            Type(d, "Edit_String", key == Qt::Key_Return ? "HALLO" : "anders");
            Type(d, "Edit_Array", "A");
            QTest::keyClick(&d, key);
        });
        EXPECT_EQ(command.Edit(params), key == Qt::Key_Return);
        EXPECT_EQ(params, MakeParams({{"str", "HALLO"}, {"arr", "A"}}));
    }
}

}  // namespace
}  // namespace dv
