#include "commands/dialogs/gui_formshow.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace dv
