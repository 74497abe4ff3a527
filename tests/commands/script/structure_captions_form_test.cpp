// The four structure dialogs as the user sees them: title, the caption of every control, the
// buttons and the help context, each text to the letter.
#include "commands/script/gui_bemerkung.h"
#include "commands/script/gui_case.h"
#include "commands/script/gui_ifthenelse.h"
#include "commands/script/gui_loop.h"
#include "framework/forms/dvform.h"
#include "tests/commands/script/structuredriver.h"

#include <QGroupBox>
#include <QLabel>

#include <gtest/gtest.h>

#include <memory>

namespace dv {
namespace {

using namespace test;

// The text a control shows: a label's text, a button's caption, a group's title. An edit box
// stands for the label that names it.
QString Caption(QWidget& dialog, const char* name)
{
    QWidget* control = dialog.findChild<QWidget*>(QString::fromLatin1(name));
    if (!control) return QStringLiteral("<fehlt>");
    if (qobject_cast<QLineEdit*>(control)) {
        for (QLabel* label : dialog.findChildren<QLabel*>()) {
            if (label->buddy() == control) return label->text();
        }
        return QStringLiteral("<ohne Beschriftung>");
    }
    if (auto* label = qobject_cast<QLabel*>(control)) return label->text();
    if (auto* button = qobject_cast<QAbstractButton*>(control)) return button->text();
    if (auto* group = qobject_cast<QGroupBox*>(control)) return group->title();
    return QStringLiteral("<unbekannt>");
}

struct TDialogCase {
    const char* form;
    std::function<std::unique_ptr<TDVRunEdit>()> make;
    const char* title;
    int helpContext;
    std::vector<std::pair<const char*, const char*>> captions;
};

TEST(StructureDialogTexts, TitlesCaptionsAndHelpContextsAreTheDialogsOwn)
{
    const TDialogCase dialogs[] = {
        {"TDVGUILoop", [] { return std::make_unique<TDVCmdLoop>(); }, "Schleifen", 0,
         {{"RG_Type", "Schleifentyp"},
          {"RadioFor", "Zählschleife (for - to - do)"},
          {"RadioWhile", "Vorprüfende Schleife (while-do)"},
          {"RadioRepeat", "Nachprüfende Schleife (repeat-until)"},
          {"GB_ForLoop", "Zählschleife"},
          {"Edit_LoopVarName", "Zähler:"},
          {"Edit_StartValue", "Startwert:"},
          {"Edit_EndValue", "Endwert:"},
          {"GB_WhileLoop", "Vorprüfende Schleife"},
          {"Edit_WhileCondition", "Bedingung:"},
          {"GB_RepeatLoop", "Nachprüfende Schleife"},
          {"Edit_RepeatCondition", "Bedingung:"},
          {"BT_OK", "&OK"},
          {"BT_Cancel", "&Abbrechen"}}},
        {"TIfThenElse", [] { return std::make_unique<TDVCmdIfThenElse>(); }, "Bedingte Ausführung", 168,
         {{"Label1", "Geben Sie die Bedingung ein, unter der der IF-Zweig ausgeführt werden soll."},
          {"BT_OK", "OK"},
          {"BT_Cancel", "Abbrechen"}}},
        {"T_Case", [] { return std::make_unique<TDVCmdCase>(); }, "Case", 167,
         {{"Label1", "Selektor:"},
          {"Label2", "Wert:"},
          {"RB_Anweisung", "Anweisung"},
          {"RB_Verzweigung", "Fall"},
          {"BT_OK", "OK"},
          {"BT_Cancel", "Abbrechen"}}},
        {"TBemerkung", [] { return std::make_unique<TDVCmdComment>(); }, "Bemerkung", 180,
         {{"Label1", "Kommentar:"}, {"BT_OK", "OK"}, {"BT_Cancel", "Abbrechen"}}},
    };
    for (const TDialogCase& d : dialogs) {
        const std::unique_ptr<TDVRunEdit> command = d.make();
        command->SetDefaults();
        QString title;
        int helpContext = -1;
        std::vector<QString> shown;
        EditLine(*command, "", d.form, [&](QWidget& dialog) {
            title = dialog.windowTitle();
            if (const auto* help = dialog.findChild<TDVHelpButton*>()) helpContext = help->HelpContext();
            for (const auto& [name, caption] : d.captions) shown.push_back(Caption(dialog, name));
            Click(dialog, "BT_Cancel");
        });
        EXPECT_EQ(title, d.title) << d.form;
        EXPECT_EQ(helpContext, d.helpContext) << d.form;
        ASSERT_EQ(shown.size(), d.captions.size()) << d.form;
        for (std::size_t i = 0; i < shown.size(); ++i) EXPECT_EQ(shown[i], d.captions[i].second) << d.form << " " << d.captions[i].first;
    }
}

}  // namespace
}  // namespace dv
