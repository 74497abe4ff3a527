// The curve-source dialog through its controls: splitting a source into the fields, building it on
// OK, the text a cancelled dialog hands back, enabling by kind, help context and variable pickers.
#include "framework/forms/dvform.h"
#include "scope/uscopesource_form.h"
#include "tests/scope/formcheck.h"
#include "tests/support/testhost.h"

#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

namespace dv::scope {
namespace {

using test::Child;

QLineEdit& Edit(QDialog& d, const char* name) { return Child<QLineEdit>(d, name); }

// Opens the dialog on source, lets act look and change, then presses button ("BT_OK" or
// "BT_Cancel") and returns what the dialog hands back.
QString OpenSource(const QString& source, const std::function<void(QDialog&)>& act, const char* button = "BT_OK")
{
    test::WhenModal([&](QDialog& d) {
        act(d);
        Child<QPushButton>(d, button).click();
    });
    return TScopeSource::EditSource(source);
}

class ScopeSource : public testing::Test {
protected:
    test::TTestHost host;
};

// The fields a source opens on, and what OK or Abbrechen then hands back: Abbrechen the source
// upper-cased and without its modifiers.
TEST_F(ScopeSource, OpensOnTheSourcesFieldsAndHandsBackItsText)
{
    struct TRow {
        const char* in;
        QStringList shown;
        const char* button;
        const char* out;  // nullptr: not compared
    };
    const TRow rows[] = {
        {"",
         {"RB_Array=on", "Edit_File=", "Edit_Array=", "Edit_Array_Y=", "Edit_X=", "Edit_y=", "Edit_Name=", "Edit_OffsetX=", "Edit_Separator=|"},
         "BT_OK", ""},
        // The separator is written as its code and read back as its character.
        {"file:werte.csv,sep:9", {"RB_File=on", "Edit_File=WERTE.CSV", "Edit_Separator=\t"}, "BT_OK", nullptr},
        {"ARRAY:a,FREQ:1000,OFX:1:OFY:2,FAKX:3:FAKY:4,NAME:u1",
         {"RB_Array=on", "Edit_Array=A", "Edit_Array_Y=1000", "Edit_Name=U1", "Edit_OffsetX=1", "Edit_OffsetY=2", "Edit_Mx=3", "Edit_My=4"},
         "BT_Cancel", "ARRAY:A,FREQ:1000"},
        {"IMAGE-R-L:7,FREQ:100",
         {"RB_Image=on", "CB_Channel=Rot-Kanal", "CB_RowCol=Zeile:", "Edit_Image_N=7", "Edit_Image_Freq=100"}, "BT_OK", nullptr},
    };
    for (const TRow& r : rows) {
        const QString out = OpenSource(r.in, [&r](QDialog& d) { EXPECT_TRUE(formcheck::Shows(d, r.shown)) << r.in; }, r.button);
        if (r.out) {
            EXPECT_EQ(out, r.out) << r.in;
        }
    }
    EXPECT_EQ(OpenSource("", [](QDialog& d) {
                  Child<QRadioButton>(d, "RB_File").click();
                  Edit(d, "Edit_File").setText("messung.txt");
                  Edit(d, "Edit_Separator").setText(";");
              }),
              "FILE:messung.txt,SEP:59");
}

TEST_F(ScopeSource, OkBuildsEachKindWithItsModifiers)
{
    struct TRow {
        const char* in;
        std::function<void(QDialog&)> act;
        const char* out;
    };
    const TRow rows[] = {
        {"ARRAY:A,FREQ:1", [](QDialog& d) { Edit(d, "Edit_OffsetX").setText("3"); }, "ARRAY:A,FREQ:1,OFX:3:OFY:"},
        {"ARRAY:A,FREQ:1,NAME:N", [](QDialog&) {}, "ARRAY:A,FREQ:1,NAME:N"},
        {"", [](QDialog& d) {
             Child<QRadioButton>(d, "RB_Image").click();
             Child<QComboBox>(d, "CB_Channel").setCurrentIndex(1);
             Child<QComboBox>(d, "CB_RowCol").setCurrentIndex(1);
             Edit(d, "Edit_Image_N").setText("12");
             Edit(d, "Edit_Image_Freq").setText("25");
         }, "IMAGE-G-C:12,FREQ:25"},
        {"", [](QDialog& d) {
             Child<QRadioButton>(d, "RB_Point").click();
             Edit(d, "Edit_X").setText("Zeit");
             Edit(d, "Edit_y").setText("Wert");
             Edit(d, "Edit_Mx").setText("2");
         }, "X:Zeit,Y:Wert,FAKX:2:FAKY:"},
        // Only one point variable: the point is not built; the parsed source stays.
        {"ARRAY:B,FREQ:5", [](QDialog& d) {
             Child<QRadioButton>(d, "RB_Point").click();
             Edit(d, "Edit_X").setText("Zeit");
         }, "ARRAY:B,FREQ:5"},
        {"x:t,y:u", [](QDialog& d) { Child<QRadioButton>(d, "RB_ADX").click(); }, "ADX_DATA:"},
    };
    for (const TRow& r : rows) EXPECT_EQ(OpenSource(r.in, r.act), r.out) << r.in;
}

TEST_F(ScopeSource, ChoosingAKindEnablesOnlyItsFields)
{
    OpenSource("", [](QDialog& d) {
        const char* fields[] = {"Edit_File", "Edit_Separator", "Edit_Array", "Edit_Array_Y", "Edit_X", "Edit_y", "Edit_Image_N", "Edit_Image_Freq"};
        struct TRow {
            const char* radio;
            std::set<std::string> enabled;
        };
        const TRow rows[] = {{"RB_File", {"Edit_File", "Edit_Separator"}},
                             {"RB_Array", {"Edit_Array", "Edit_Array_Y"}},
                             {"RB_Point", {"Edit_X", "Edit_y"}},
                             {"RB_ADX", {"Edit_File", "Edit_Separator"}},  // no tag of its own: 0, the file's
                             {"RB_Image", {"Edit_Image_N", "Edit_Image_Freq"}}};
        for (const TRow& r : rows) {
            Child<QRadioButton>(d, r.radio).click();
            for (const char* f : fields) EXPECT_EQ(Edit(d, f).isEnabled(), r.enabled.count(f) == 1) << r.radio << " " << f;
            EXPECT_EQ(Child<QComboBox>(d, "CB_Channel").isEnabled(), std::string(r.radio) == "RB_Image");
        }
    });
}

TEST_F(ScopeSource, RecordingKeepsTheDefaultTagAndStillBuildsItsSource)
{
    TScopeSource dialog;
    const std::pair<const char*, int> tags[] = {{"RB_File", 0}, {"RB_Array", 1}, {"RB_Point", 2}, {"RB_ADX", 0}, {"RB_Image", 4}};
    for (const auto& [radio, tag] : tags) EXPECT_EQ(Child<QRadioButton>(dialog, radio).property("tag").toInt(), tag) << radio;
    const QString out = OpenSource("adx_data:", [](QDialog& d) {
        EXPECT_TRUE(Child<QRadioButton>(d, "RB_ADX").isChecked());
        EXPECT_FALSE(Child<QRadioButton>(d, "RB_File").isChecked());
        EXPECT_TRUE(Edit(d, "Edit_File").isEnabled());
        EXPECT_FALSE(Edit(d, "Edit_Array").isEnabled());
        Edit(d, "Edit_File").setText("unbenutzt.txt");  // enabled, but the recording ignores it
    });
    EXPECT_EQ(out, "ADX_DATA:");
}

TEST_F(ScopeSource, HelpContextAndVariablePickers)
{
    TScopeSource dialog;
    EXPECT_EQ(dialog.findChild<TDVHelpButton*>()->HelpContext(), 185);
    QStringList attached;
    for (QObject* o : host.attached) attached << o->objectName();
    attached.sort();
    QStringList expected{"Edit_File", "Edit_Array", "Edit_X", "Edit_y", "Edit_Array_Y", "Edit_Separator", "Edit_OffsetX", "Edit_OffsetY", "Edit_Mx", "Edit_My"};
    expected.sort();
    EXPECT_EQ(attached, expected);
}

}  // namespace
}  // namespace dv::scope
