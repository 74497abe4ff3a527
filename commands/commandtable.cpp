// The command classes this library builds; one row per command, added with the command.
#include "commands/system/gui_callnamedpipe.h"
#include "commands/system/gui_tcp.h"
#include "commands/system/gui_exec.h"
#include "commands/system/gui_inifile.h"
#include "commands/system/gui_sysutils.h"
#include "commands/dialogs/gui_formshow.h"
#include "commands/dialogs/gui_meldungsbox.h"
#include "commands/dialogs/gui_opensavedlg.h"
#include "commands/dialogs/gui_statustext.h"
#include "commands/dialogs/gui_textout.h"
#include "commands/script/gui_bemerkung.h"
#include "commands/script/gui_case.h"
#include "commands/script/gui_ifthenelse.h"
#include "commands/script/gui_loop.h"
#include "commands/text/gui_arraytostr.h"
#include "commands/text/gui_numberconvert.h"
#include "commands/text/gui_strtoarray.h"
#include "commands/text/gui_stringbearbeitung.h"
#include "framework/dvmiscfunctions.h"
#include "framework/registry.h"
#include "scope/gui_scope.h"
#include "image/gui_imagecapture.h"
#include "image/gui_imagechange.h"
#include "image/gui_imageevaluation.h"
#include "image/gui_imageload.h"
#include "image/gui_imagesave.h"

#include <array>

namespace dv {

namespace {
constexpr std::array kCommandClasses{
    TCommandClass{"TDVShowLaborCommand", &Construct<TDVShowLaborCommand>},
    TCommandClass{"TDVHideLaborCommand", &Construct<TDVHideLaborCommand>},
    TCommandClass{"TDVCmdCallNamedPipe", &Construct<TDVCmdCallNamedPipe>},
    TCommandClass{"TDVCmdTCP", &Construct<TDVCmdTCP>},
    TCommandClass{"TDVCmdStartEXE", &Construct<TDVCmdStartEXE>},
    TCommandClass{"TDVCmdSystemUtilities", &Construct<TDVCmdSystemUtilities>},
    TCommandClass{"TDVCmdIniFiles", &Construct<TDVCmdIniFiles>},
    TCommandClass{"TDVCmdArrayToString", &Construct<TDVCmdArrayToString>},
    TCommandClass{"TDVCmdStringToArray", &Construct<TDVCmdStringToArray>},
    TCommandClass{"TDVCmdStringConversion", &Construct<TDVCmdStringConversion>},
    TCommandClass{"TDVCmdNumberConversion", &Construct<TDVCmdNumberConversion>},
    TCommandClass{"TDVCmdTextOut", &Construct<TDVCmdTextOut>},
    TCommandClass{"TDVCmdScope", &Construct<TDVCmdScope>},
    TCommandClass{"TDVCmdComment", &Construct<TDVCmdComment>},
    TCommandClass{"TDVCmdIfThenElse", &Construct<TDVCmdIfThenElse>},
    TCommandClass{"TDVCmdCase", &Construct<TDVCmdCase>},
    TCommandClass{"TDVCmdLoop", &Construct<TDVCmdLoop>},
    TCommandClass{"TDVCmdMeldungsBox", &Construct<TDVCmdMeldungsBox>},
    TCommandClass{"TDVCmdStatusBar", &Construct<TDVCmdStatusBar>},
    TCommandClass{"TDVCmdOpenSave", &Construct<TDVCmdOpenSave>},
    TCommandClass{"TDVCmdFormShow", &Construct<TDVCmdFormShow>},
    TCommandClass{"TDVCmdFormResult", &Construct<TDVCmdFormResult>},
    TCommandClass{"TDVCmdImageEvaluation", &Construct<TDVCmdImageEvaluation>},
    TCommandClass{"TDVCmdImageCapture", &Construct<TDVCmdImageCapture>},
    TCommandClass{"TDVCmdImageSave", &Construct<TDVCmdImageSave>},
    TCommandClass{"TDVCmdImageLoad", &Construct<TDVCmdImageLoad>},
    TCommandClass{"TDVCmdImageChange", &Construct<TDVCmdImageChange>},
};
}  // namespace

std::span<const TCommandClass> CommandClasses() { return kCommandClasses; }

}  // namespace dv
