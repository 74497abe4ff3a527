// The command classes this library builds; one row per command, added with the command.
#include "commands/system/gui_callnamedpipe.h"
#include "commands/system/gui_tcp.h"
#include "commands/system/gui_exec.h"
#include "commands/system/gui_inifile.h"
#include "commands/system/gui_sysutils.h"
#include "framework/dvmiscfunctions.h"
#include "framework/registry.h"

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
};
}  // namespace

std::span<const TCommandClass> CommandClasses() { return kCommandClasses; }

}  // namespace dv
