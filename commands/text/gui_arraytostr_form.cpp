#include "commands/text/gui_arraytostr_form.h"

#include "framework/catalogue.h"
#include "framework/forms/formbuilder.h"
#include "framework/translate.h"

#include <QLineEdit>

namespace dv {

TFRM_ArrayToString::TFRM_ArrayToString(TDVCmdArrayToString& command)
    : TCommandForm(command, QStringLiteral("TFRM_ArrayToString"), _("ArrayToString"),
                   FindCommandClass(QStringLiteral("TDVCmdArrayToString"))->helpContext)
{
    TFormBuilder form(this, Body());
    arr_ = form.Edit(QStringLiteral("Edit_Arr"), _("Array:"));
    str_ = form.Edit(QStringLiteral("Edit_Str"), _("String:"));
    form.Label(_("Beispiel:"));
    form.Label(QStringLiteral("StringArray        -->String"));
    form.Label(QStringLiteral("RealArray                  -->String"));
    form.Label(QStringLiteral("{H}{A}{L}{L}{O}-->HALLO"));
    form.Label(QStringLiteral("{72}{65}{76}{76}{79}-->HALLO"));
    AttachVariableEditors();
}

void TFRM_ArrayToString::Load(const Fields& fields)
{
    arr_->setText(fields.arr);
    str_->setText(fields.str);
    arr_->setFocus();
}

void TFRM_ArrayToString::Store(Fields& fields)
{
    fields.arr = arr_->text();
    fields.str = str_->text();
}

}  // namespace dv
