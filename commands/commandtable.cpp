// The command classes this library builds; one row per command, added with the command.
#include "commands/dialogs/gui_textout.h"
#include "commands/text/gui_arraytostr.h"
#include "commands/text/gui_numberconvert.h"
#include "commands/text/gui_strtoarray.h"
#include "commands/text/gui_stringbearbeitung.h"
#include "framework/dvmiscfunctions.h"
#include "framework/registry.h"

#include <array>

namespace dv {

namespace {
constexpr std::array kCommandClasses{
    TCommandClass{"TDVShowLaborCommand", &Construct<TDVShowLaborCommand>},
    TCommandClass{"TDVHideLaborCommand", &Construct<TDVHideLaborCommand>},
    TCommandClass{"TDVCmdArrayToString", &Construct<TDVCmdArrayToString>},
    TCommandClass{"TDVCmdStringToArray", &Construct<TDVCmdStringToArray>},
    TCommandClass{"TDVCmdStringConversion", &Construct<TDVCmdStringConversion>},
    TCommandClass{"TDVCmdNumberConversion", &Construct<TDVCmdNumberConversion>},
    TCommandClass{"TDVCmdTextOut", &Construct<TDVCmdTextOut>},
};
}  // namespace

std::span<const TCommandClass> CommandClasses() { return kCommandClasses; }

}  // namespace dv
