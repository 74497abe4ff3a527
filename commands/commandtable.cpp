// The command classes this library builds; one row per command, added with the command.
#include "framework/dvmiscfunctions.h"
#include "framework/registry.h"

#include <array>

namespace dv {

namespace {
constexpr std::array kCommandClasses{
    TCommandClass{"TDVShowLaborCommand", &Construct<TDVShowLaborCommand>},
    TCommandClass{"TDVHideLaborCommand", &Construct<TDVHideLaborCommand>},
};
}  // namespace

std::span<const TCommandClass> CommandClasses() { return kCommandClasses; }

}  // namespace dv
