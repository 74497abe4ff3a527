#pragma once
// Top-level windows of other programs, reached through the X11 display when there is one.
#include <QString>

#include <cstdint>

namespace dv {

// The window whose title is exactly title, among the window manager's client list; 0 when none
// matches or no display can be opened.
std::uint64_t FindTopLevelWindow(const QString& title);
// Asks the window manager to iconify the window (minimise, not destroy); false when no display
// can be opened or the request fails.
bool IconifyTopLevelWindow(std::uint64_t window);

}  // namespace dv
