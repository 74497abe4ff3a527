#include "commands/system/platform_windows.h"

#ifdef DV_HAVE_X11
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#endif

#include <cstdlib>
#include <memory>
#include <vector>

namespace dv {

#ifdef DV_HAVE_X11

namespace {

struct TDisplayCloser {
    void operator()(Display* d) const { XCloseDisplay(d); }
};
using TDisplay = std::unique_ptr<Display, TDisplayCloser>;

// A display connection, or null without DISPLAY or server; errors of requests on windows that
// vanish meanwhile must not end the program, so a quiet handler is installed.
TDisplay OpenDisplay()
{
    if (!std::getenv("DISPLAY")) return nullptr;
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    return TDisplay(XOpenDisplay(nullptr));
}

// The raw bytes of a window property of the given type, empty when absent.
std::vector<unsigned char> Property(Display* d, Window w, const char* name, Atom type)
{
    Atom actual = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    const Atom property = XInternAtom(d, name, False);
    if (XGetWindowProperty(d, w, property, 0, 1 << 20, False, type, &actual, &format, &count, &after, &data) != Success || !data) {
        return {};
    }
    const std::size_t bytes = count * static_cast<std::size_t>(format == 32 ? sizeof(long) : format / 8);
    std::vector<unsigned char> out(data, data + bytes);
    XFree(data);
    return out;
}

QString Title(Display* d, Window w)
{
    const auto utf8 = Property(d, w, "_NET_WM_NAME", XInternAtom(d, "UTF8_STRING", False));
    if (!utf8.empty()) return QString::fromUtf8(reinterpret_cast<const char*>(utf8.data()), static_cast<qsizetype>(utf8.size()));
    const auto latin1 = Property(d, w, "WM_NAME", XA_STRING);
    return QString::fromLatin1(reinterpret_cast<const char*>(latin1.data()), static_cast<qsizetype>(latin1.size()));
}

}  // namespace

std::uint64_t FindTopLevelWindow(const QString& title)
{
    const TDisplay display = OpenDisplay();
    if (!display) return 0;
    Display* d = display.get();
    const auto list = Property(d, DefaultRootWindow(d), "_NET_CLIENT_LIST", XA_WINDOW);
    const auto* windows = reinterpret_cast<const long*>(list.data());
    for (std::size_t i = 0; i < list.size() / sizeof(long); ++i) {
        const auto w = static_cast<Window>(windows[i]);
        if (Title(d, w) == title) return w;
    }
    return 0;
}

bool IconifyTopLevelWindow(std::uint64_t window)
{
    const TDisplay display = OpenDisplay();
    if (!display || window == 0) return false;
    Display* d = display.get();
    const Status ok = XIconifyWindow(d, static_cast<Window>(window), DefaultScreen(d));
    XSync(d, False);
    return ok != 0;
}

#else

std::uint64_t FindTopLevelWindow(const QString&) { return 0; }
bool IconifyTopLevelWindow(std::uint64_t) { return false; }

#endif

}  // namespace dv
