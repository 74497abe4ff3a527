// The editor dialogs this library builds; one row per dialog, added with the dialog.
#include "commands/system/gui_callnamedpipe_form.h"
#include "commands/system/gui_tcp_form.h"
#include "framework/editorform.h"
#include "framework/forms/commandform.h"
#include "framework/forms/guiforms.h"

namespace dv {

void RegisterForms()
{
    RegisterForm<TFormCallNamedPipe, TDVCmdCallNamedPipe>(QStringLiteral("TFormCallNamedPipe"));
    RegisterForm<TFormTCP, TDVCmdTCP>(QStringLiteral("TFormTCP"));
}

}  // namespace dv
