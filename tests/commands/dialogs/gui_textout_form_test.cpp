#include "commands/dialogs/gui_textout.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QFontDialog>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

// Shows the fields, types a text and chooses a font; OK writes it all back, Abbrechen leaves the list.
TEST(TextOutFormTest, FontButtonRebuildsTheStyleAndOkWritesTheBoxesBack)
{
    TTestHost host;
    TDVCmdTextOut command(&host);
    const TParamList before = MakeParams({{"Text", "Hallo"}, {"Font", "\"Arial\""}, {"FontSize", "12"}, {"FontColor", "255"},
                                          {"FontStyle", "\"bold\""}, {"FormFeed", "True"}});
    for (const QString button : {"BT_CANCEL", "BT_OK"}) {
        TParamList params = before;
        QStringList shown;
        QString family;
        OnModal("TFRM_TextOut", [&](QWidget& d) {
            for (const char* name : {"DVEdit_Text", "Edit_Schriftart", "Edit_Schriftgroesse", "Edit_Schriftstyle"}) {
                shown << Find<QLineEdit>(d, name).text();
            }
            shown << (Find<QAbstractButton>(d, "formfeed").isChecked() ? "formfeed" : "");
            Type(d, "DVEdit_Text", "Neu");
            OnModal("FontDialog", [&](QWidget& fontDialog) {
                auto& dialog = static_cast<QFontDialog&>(fontDialog);
                QFont font(QStringLiteral("DejaVu Serif"), 14, QFont::Bold, true);  // a family with a bold italic face
                font.setUnderline(true);
                dialog.setCurrentFont(font);
                family = dialog.currentFont().family();
                dialog.accept();
            });
            Click(d, "BT_Schriftart");
            Click(d, button.toLatin1().constData());
        });
        const bool ok = button == "BT_OK";
        EXPECT_EQ(command.Edit(params), ok);
        EXPECT_EQ(shown, (QStringList{"Hallo", "Arial", "12", "bold", "formfeed"}));
        TParamList expected = before;
        if (ok) {
            expected.AddString("Text", "Neu");
            expected.AddString("Font", '"' + family + '"');
            expected.AddString("FontSize", "14");
            expected.AddString("FontStyle", "\"Underline  + Italic  + bold \"");  // the words in reverse order
        }
        EXPECT_EQ(params, expected) << button.toStdString();
    }
}

// The swatch shows only the RGB bytes; OK without touching it gives back the colour as it came.
TEST(TextOutFormTest, OkKeepsTheColourItWasGiven)
{
    TTestHost host;
    TDVCmdTextOut command(&host);
    for (const char* colour : {"-1", "536870911", "-16777201", "255", "clRed"}) {
        TParamList params = MakeParams({{"Text", "Hallo"}, {"FontColor", colour}});
        OnModal("TFRM_TextOut", [&](QWidget& d) { Click(d, "BT_OK"); });
        ASSERT_TRUE(command.Edit(params));
        EXPECT_EQ(params.GetString("FontColor"), colour);
    }
}

}  // namespace
}  // namespace dv
