// The editor dialogs this library builds; one row per dialog, added with the dialog.
#include "commands/system/gui_callnamedpipe_form.h"
#include "commands/system/gui_tcp_form.h"
#include "commands/system/gui_exec_form.h"
#include "commands/system/gui_inifile_form.h"
#include "commands/system/gui_sysutils_form.h"
#include "framework/editorform.h"
#include "framework/forms/commandform.h"
#include "framework/forms/guiforms.h"

namespace dv {

void RegisterForms()
{
    RegisterForm<TFormCallNamedPipe, TDVCmdCallNamedPipe>(QStringLiteral("TFormCallNamedPipe"));
    RegisterForm<TFormTCP, TDVCmdTCP>(QStringLiteral("TFormTCP"));
    RegisterForm<TStartEXE, TDVCmdStartEXE>(QStringLiteral("TStartEXE"));
    RegisterForm<TSystemUtilities, TDVCmdSystemUtilities>(QStringLiteral("TSystemUtilities"));
    RegisterForm<TIni_Files, TDVCmdIniFiles>(QStringLiteral("TIni_Files"));
}

}  // namespace dv
