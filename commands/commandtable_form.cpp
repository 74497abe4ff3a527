// The editor dialogs this library builds; one row per dialog, added with the dialog.
#include "commands/system/gui_callnamedpipe_form.h"
#include "commands/system/gui_tcp_form.h"
#include "commands/system/gui_exec_form.h"
#include "commands/system/gui_inifile_form.h"
#include "commands/system/gui_sysutils_form.h"
#include "commands/dialogs/gui_textout_form.h"
#include "commands/text/gui_arraytostr_form.h"
#include "commands/text/gui_numberconvert_form.h"
#include "commands/text/gui_stringbearbeitung_form.h"
#include "commands/text/gui_strtoarray_form.h"
#include "framework/editorform.h"
#include "framework/forms/commandform.h"
#include "framework/forms/guiforms.h"
#include "scope/gui_scope_form.h"

namespace dv {

void RegisterForms()
{
    RegisterForm<TFormCallNamedPipe, TDVCmdCallNamedPipe>(QStringLiteral("TFormCallNamedPipe"));
    RegisterForm<TFormTCP, TDVCmdTCP>(QStringLiteral("TFormTCP"));
    RegisterForm<TStartEXE, TDVCmdStartEXE>(QStringLiteral("TStartEXE"));
    RegisterForm<TSystemUtilities, TDVCmdSystemUtilities>(QStringLiteral("TSystemUtilities"));
    RegisterForm<TIni_Files, TDVCmdIniFiles>(QStringLiteral("TIni_Files"));
    RegisterForm<TFRM_ArrayToString, TDVCmdArrayToString>(QStringLiteral("TFRM_ArrayToString"));
    RegisterForm<TFRM_StringIntoArrayString, TDVCmdStringToArray>(QStringLiteral("TFRM_StringIntoArrayString"));
    RegisterForm<TStringBearbeitung, TDVCmdStringConversion>(QStringLiteral("TStringBearbeitung"));
    RegisterForm<TZahlenkonverter, TDVCmdNumberConversion>(QStringLiteral("TZahlenkonverter"));
    RegisterForm<TFRM_TextOut, TDVCmdTextOut>(QStringLiteral("TFRM_TextOut"));
    scope::InstallScopeWindow();
}

}  // namespace dv
