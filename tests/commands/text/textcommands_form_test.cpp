// The dialogs of the text commands: StringBearbeitung, NumberConvert, ArrayToStr and StrToArray.
#include "commands/text/gui_arraytostr.h"
#include "commands/text/gui_numberconvert.h"
#include "commands/text/gui_stringbearbeitung.h"
#include "commands/text/gui_strtoarray.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QLabel>
#include <QSpinBox>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

TEST(StringBearbeitungFormTest, CheckBoxesEnableTheirControlsTestButtonShowsTheResultAndChangesNothing)
{
    TTestHost host;
    TDVCmdStringConversion command(&host);
    const std::pair<const char*, const char*> rules[] = {
        {"CB_Pos", "Edit_PosSuchstring"}, {"CB_Fragment", "Panel_Fragment"}, {"CB_Seg", "Edit_Separator"}, {"CB_Seg", "Edit_Spin_Teil"},
        {"CB_Trim", "Panel_Trim"}, {"CB_Ersetzen", "Edit_Ersetze_Pos"}, {"CB_Ersetzen", "Edit_Ersetze_durch"}};
    TParamList params = MakeParams({{"Input", "alt"}, {"Output", "R"}});
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
    EXPECT_EQ(shown.value(0), "Ergebnis = HALLO WELT");
    EXPECT_TRUE(shown.value(1).startsWith("Ergebnis = ") && shown.value(1).contains("HALLO WELT")) << shown.value(1).toStdString();
    EXPECT_EQ(params, before);
    EXPECT_EQ(command.Fields().input, "alt");
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST(StringBearbeitungFormTest, OkWritesTheChosenSteps)
{
    TTestHost host;
    TDVCmdStringConversion command(&host);
    TParamList params;
    command.ReadParams(params);
    params.AddString("Search", "Welt");
    params.AddString("Count", "a");
    OnModal("TStringBearbeitung", [&](QWidget& d) {
        Type(d, "Edit_Eingang", "abcdef");
        Type(d, "Edit_Ausgang", "R");
        // The search and count boxes show checked for their texts; unchecking them drops the texts from the list.
        for (auto* name : {"CB_Pos", "cb_CountofChar", "CB_Fragment", "RB_Right", "RB_Del", "CB_Trim", "RB_Trimright"}) Click(d, name);
        Type(d, "Edit_Laenge", "2");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    const std::pair<const char*, const char*> expected[] = {
        {"Input", "abcdef"}, {"Output", "R"}, {"Search", ""}, {"Count", ""}, {"Fragment", "True"}, {"Cut", "0"},
        {"FragPos", "\"Right\""}, {"Length", "2"}, {"Trim", "True"}, {"TrimMode", "3"}, {"UpperCase", "False"},
    };
    for (const auto& [name, text] : expected) EXPECT_EQ(params.GetString(name), text) << name;
}

TEST(ZahlenkonverterTest, RadiosChooseTheOperationAndShowStellenOnlyWhereUsed)
{
    TTestHost host;
    TDVCmdNumberConversion command(&host);
    const TParamList before = MakeParams({{"Operation", "ccOrd"}, {"Input", "A"}, {"Output", "X"}, {"Stellen", "2"}});
    const TParamList chosen = MakeParams({{"Operation", "ccIntToHex"}, {"Input", "255"}, {"Output", "H"}, {"Stellen", "4"}});
    const QStringList usesStellen{"ccIntToBin", "ccIntToHex", "ccRound"};
    for (const QString button : {"BT_Cancel", "BT_OK"}) {
        TParamList params = before;
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
            Find<QSpinBox>(d, "UD_Stellen").setValue(4);  // the up-down writes the Stellen box
            Click(d, button.toLatin1().constData());
        });
        EXPECT_EQ(command.Edit(params), button == "BT_OK");
        EXPECT_EQ(wrong, QStringList{});
        EXPECT_EQ(params, button == "BT_OK" ? chosen : before);
    }
}

TEST(ArrayStringFormTest, ArrayToStrOkReadsTheBoxesBackInSignatureOrderAbbrechenLeavesTheList)
{
    TTestHost host;
    TDVCmdArrayToString command(&host);
    const TParamList before = MakeParams({{"Arr", "{72}"}, {"Str", "S"}});
    for (const QString button : {"BT_Cancel", "BT_OK"}) {
        TParamList params = before;
        QStringList shown;
        OnModal("TFRM_ArrayToString", [&](QWidget& d) {
            shown << Find<QLineEdit>(d, "Edit_Arr").text() << Find<QLineEdit>(d, "Edit_Str").text();
            Type(d, "Edit_Arr", "{65}{66}");
            Type(d, "Edit_Str", "T");
            Click(d, button.toLatin1().constData());
        });
        EXPECT_EQ(command.Edit(params), button == "BT_OK");
        EXPECT_EQ(shown, QStringList({"{72}", "S"}));
        EXPECT_EQ(params, button == "BT_OK" ? MakeParams({{"Str", "T"}, {"Arr", "{65}{66}"}}) : before);
    }
    EXPECT_EQ(host.attached.size(), 2u);  // both boxes offer the script's variables
}

TEST(ArrayStringFormTest, StrToArrayEnterPressesOkEscapeLeavesTheList)
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
