// The command classes this library builds; one row per command, added with the command.
#include "commands/system/gui_callnamedpipe.h"
#include "commands/system/gui_tcp.h"
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
};
}  // namespace

std::span<const TCommandClass> CommandClasses() { return kCommandClasses; }

}  // namespace dv
