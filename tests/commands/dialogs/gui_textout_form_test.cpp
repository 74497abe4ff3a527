#include "commands/dialogs/gui_textout.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QCheckBox>
#include <QFontDialog>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

class TextOutFormTest : public ::testing::Test {
protected:
    TTestHost host;
    TDVCmdTextOut command{&host};
};

TEST_F(TextOutFormTest, ShowsTheFieldsOkWritesThemBackAbbrechenLeavesThem)
{
    TParamList before = MakeParams({{"Text", "Hallo"}, {"Font", "\"Arial\""}, {"FontSize", "12"}, {"FontColor", "255"},
                                    {"FontStyle", "\"bold\""}, {"FormFeed", "True"}});
    TParamList params = before;
    OnModal("TFRM_TextOut", [](QWidget& d) {
        Type(d, "Edit_Schriftart", "Courier");
        Click(d, "BT_CANCEL");
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_EQ(params, before);

    QStringList shown;
    OnModal("TFRM_TextOut", [&](QWidget& d) {
        for (const char* name : {"DVEdit_Text", "Edit_Schriftart", "Edit_Schriftgroesse", "Edit_Schriftstyle"}) {
            shown << Find<QLineEdit>(d, name).text();
        }
        shown << (Find<QCheckBox>(d, "formfeed").isChecked() ? "formfeed" : "");
        Type(d, "DVEdit_Text", "Neu");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(shown, (QStringList{"Hallo", "Arial", "12", "bold", "formfeed"}));
    before.AddString("Text", "Neu");
    EXPECT_EQ(params, before);
}

TEST_F(TextOutFormTest, FontButtonRebuildsTheStyleText)
{
    TParamList params = MakeParams({{"Text", "x"}});
    QString family;
    OnModal("TFRM_TextOut", [&](QWidget& d) {
        OnModal("FontDialog", [&](QWidget& fontDialog) {
            auto& dialog = static_cast<QFontDialog&>(fontDialog);
            QFont font(QStringLiteral("DejaVu Serif"), 14);  // a family with a bold italic face
            font.setBold(true);
            font.setItalic(true);
            font.setUnderline(true);
            dialog.setCurrentFont(font);
            family = dialog.currentFont().family();
            dialog.accept();
        });
        Click(d, "BT_Schriftart");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(params.GetString("FontStyle"), "\"Underline  + Italic  + bold \"") << family.toStdString();
    EXPECT_EQ(params.GetString("FontSize"), "14");
    EXPECT_EQ(params.GetString("Font"), '"' + family + '"');
}

}  // namespace
}  // namespace dv
