// The editor dialogs this library builds; one row per dialog, added with the dialog.
#include "commands/system/gui_callnamedpipe_form.h"
#include "commands/system/gui_tcp_form.h"
#include "commands/system/gui_exec_form.h"
#include "commands/system/gui_inifile_form.h"
#include "commands/system/gui_sysutils_form.h"
#include "commands/dialogs/gui_formshow_form.h"
#include "commands/dialogs/gui_meldungsbox_form.h"
#include "commands/dialogs/gui_opensavedlg_form.h"
#include "commands/dialogs/gui_statustext_form.h"
#include "commands/dialogs/gui_textout_form.h"
#include "commands/script/gui_bemerkung_form.h"
#include "commands/script/gui_case_form.h"
#include "commands/script/gui_ifthenelse_form.h"
#include "commands/script/gui_loop_form.h"
#include "commands/dialogs/operatordialogs_form.h"
#include "commands/text/gui_arraytostr_form.h"
#include "commands/text/gui_numberconvert_form.h"
#include "commands/text/gui_stringbearbeitung_form.h"
#include "commands/text/gui_strtoarray_form.h"
#include "framework/editorform.h"
#include "image/gui_imagechange_form.h"
#include "image/gui_imageevaluation_form.h"
#include "image/gui_imageload_form.h"
#include "image/gui_imagesave_form.h"
#include "framework/forms/commandform.h"
#include "framework/forms/guiforms.h"
#include "scope/gui_scope_form.h"
#include "scope/scopeeditor_form.h"

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
    RegisterForm<TBemerkung, TDVCmdComment>(QStringLiteral("TBemerkung"));
    RegisterForm<TIfThenElse, TDVCmdIfThenElse>(QStringLiteral("TIfThenElse"));
    RegisterForm<T_Case, TDVCmdCase>(QStringLiteral("T_Case"));
    RegisterForm<TDVGUILoop, TDVCmdLoop>(QStringLiteral("TDVGUILoop"));
    RegisterForm<TMeldungsbox, TDVCmdMeldungsBox>(QStringLiteral("TMeldungsbox"));
    RegisterForm<TStatusleiste, TDVCmdStatusBar>(QStringLiteral("TStatusleiste"));
    RegisterForm<TFRM_OpenSave, TDVCmdOpenSave>(QStringLiteral("TFRM_OpenSave"));
    RegisterForm<TFormFormShow, TDVCmdFormShow>(QStringLiteral("TFormFormShow"));
    RegisterForm<TFormFormResult, TDVCmdFormResult>(QStringLiteral("TFormFormResult"));
    RegisterOperatorDialogs();
    RegisterForm<TFormImageEvaluation, TDVCmdImageEvaluation>(QStringLiteral("TFormImageEvaluation"));
    RegisterForm<TFormImageCapture, TDVCmdImageCapture>(QStringLiteral("TFormImageCapture"));
    RegisterForm<TFormImageSave, TDVCmdImageSave>(QStringLiteral("TFormImageSave"));
    RegisterForm<TFormImageLoad, TDVCmdImageLoad>(QStringLiteral("TFormImageLoad"));
    RegisterForm<TFormImageChange, TDVCmdImageChange>(QStringLiteral("TFormImageChange"));
    scope::RegisterScopeEditor();
    scope::InstallScopeWindow();
}

}  // namespace dv
