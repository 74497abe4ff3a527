#include "commands/system/gui_tcp_form.h"

#include "framework/forms/formbuilder.h"
#include "framework/translate.h"

namespace dv {

TFormTCP::TFormTCP(TDVCmdTCP& command) : TBoundForm(command, QStringLiteral("TFormTCP"), _("TCP"), 0)
{
    TFormBuilder form(this, Body());
    form.Edit(QStringLiteral("DVEdit_Host"), _("Host"));
    form.Edit(QStringLiteral("DVEdit_Port"), _("Port"));
    form.Edit(QStringLiteral("DVEdit_Send"), _("Zu sendender Text"));
    form.Edit(QStringLiteral("DVEdit_Sentinel"), _("Text, der das Ende der Antwort signalisiert"));
    form.Edit(QStringLiteral("DVEdit_Result"), _("Ergebnis-Variable"));
    AttachVariableEditors();
}

}  // namespace dv
