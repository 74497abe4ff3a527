#include "commands/text/gui_strtoarray_form.h"

#include "framework/catalogue.h"
#include "framework/forms/formbuilder.h"
#include "framework/translate.h"

#include <QLineEdit>

namespace dv {

TFRM_StringIntoArrayString::TFRM_StringIntoArrayString(TDVCmdStringToArray& command)
    : TCommandForm(command, QStringLiteral("TFRM_StringIntoArrayString"), _("StringtoArray"),
                   FindCommandClass(QStringLiteral("TDVCmdStringToArray"))->helpContext)
{
    TFormBuilder form(this, Body());
    string_ = form.Edit(QStringLiteral("Edit_String"), _("String:"));
    array_ = form.Edit(QStringLiteral("Edit_Array"), _("Array:"));
    form.Label(_("Beispiel:"));
    form.Label(QStringLiteral("String  -->StringArray"));
    form.Label(QStringLiteral("String   -->RealArray"));
    form.Label(QStringLiteral("HALLO-->{H}{A}{L}{L}{O}"));
    form.Label(QStringLiteral("HALLO-->{72}{65}{76}{76}{79}"));
    AttachVariableEditors();
}

void TFRM_StringIntoArrayString::Load(const Fields& fields)
{
    string_->setText(fields.str);
    array_->setText(fields.arr);
    string_->setFocus();
}

void TFRM_StringIntoArrayString::Store(Fields& fields)
{
    fields.str = string_->text();
    fields.arr = array_->text();
}

}  // namespace dv
