#include "commands/script/gui_case_form.h"

#include "commands/script/structure_form.h"
#include "framework/catalogue.h"
#include "framework/forms/formbuilder.h"

#include <QButtonGroup>
#include <QLineEdit>
#include <QRadioButton>

namespace dv {

namespace {
constexpr const char* kTag = "tag";
}

T_Case::T_Case(TDVCmdCase& command)
    : TCommandForm(command, QStringLiteral("T_Case"), QStringLiteral("Case"),
                   FindCommandClass(QStringLiteral("TDVCmdCase"))->helpContext)
{
    TFormBuilder form(this, Body());
    selector_ = form.Edit(QStringLiteral("Edit_Selektor"), _("Selektor:"));
    value_ = form.Edit(QStringLiteral("Edit_Fall"), _("Wert:"));
    NameLabelOf(*this, selector_, QStringLiteral("Label1"));
    NameLabelOf(*this, value_, QStringLiteral("Label2"));
    selector_->setProperty(kTag, static_cast<int>(TCaseMode::Head));
    value_->setProperty(kTag, static_cast<int>(TCaseMode::Branch));
    const QButtonGroup* modes = form.Radios(QString(), {QStringLiteral("RB_Anweisung"), QStringLiteral("RB_Verzweigung")},
                                            {_("Anweisung"), _("Fall")},
                                            {static_cast<int>(TCaseMode::Head), static_cast<int>(TCaseMode::Branch)});
    head_ = static_cast<QRadioButton*>(modes->button(static_cast<int>(TCaseMode::Head)));
    branch_ = static_cast<QRadioButton*>(modes->button(static_cast<int>(TCaseMode::Branch)));
    head_->setChecked(true);
    for (QLineEdit* edit : {selector_, value_}) {
        connect(edit, &QLineEdit::textEdited, this, [this, edit] { Edit_FallChange(*edit); });
    }
    AttachVariableEditors();
}

void T_Case::Edit_FallChange(const QLineEdit& sender)
{
    Check(static_cast<TCaseMode>(sender.property(kTag).toInt()));
}

// Checks the mode's button; focus on the other button moves to the mode's edit box.
void T_Case::Check(TCaseMode mode)
{
    QRadioButton* on = mode == TCaseMode::Head ? head_ : branch_;
    QRadioButton* off = on == head_ ? branch_ : head_;
    on->setChecked(true);
    if (off->hasFocus()) (mode == TCaseMode::Head ? selector_ : value_)->setFocus();
}

void T_Case::Load(const Fields& fields)
{
    selector_->setText(fields.selector);
    value_->setText(fields.value);
    Check(fields.mode == TCaseMode::Head ? TCaseMode::Head : TCaseMode::Branch);
}

void T_Case::Store(Fields& fields)
{
    fields.mode = head_->isChecked() ? TCaseMode::Head : TCaseMode::Branch;
    fields.selector = selector_->text();
    fields.value = value_->text();
}

}  // namespace dv
