#include "host/display.h"

#include "framework/translate.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace dv::host {

namespace {

// How long a display may take to answer; a server behind an unreachable address would otherwise
// hold the run for the whole TCP time-out.
constexpr std::chrono::seconds kProbeTime{5};

// Connects to the X server of $DISPLAY with the handshake and authorisation that Qt's xcb platform
// makes. libxcb is loaded here only, so that dvrun does not depend on it: without it Qt cannot
// reach an X server either.
bool XServerAnswers()
{
    void* xcb = ::dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!xcb) return false;
    using TConnect = void* (*)(const char*, int*);
    using TConnection = int (*)(void*);
    auto connect = reinterpret_cast<TConnect>(::dlsym(xcb, "xcb_connect"));
    auto hasError = reinterpret_cast<TConnection>(::dlsym(xcb, "xcb_connection_has_error"));
    auto disconnect = reinterpret_cast<void (*)(void*)>(::dlsym(xcb, "xcb_disconnect"));
    bool answers = false;
    if (connect && hasError && disconnect) {
        int screen = 0;
        void* connection = connect(nullptr, &screen);
        answers = connection && hasError(connection) == 0;
        if (connection) disconnect(connection);
    }
    // Left loaded: Qt loads the same library again at once.
    return answers;
}

// A Wayland compositor listens on a local socket: $WAYLAND_DISPLAY, relative to $XDG_RUNTIME_DIR.
bool WaylandAnswers()
{
    QByteArray path = qgetenv("WAYLAND_DISPLAY");
    if (!path.startsWith('/')) path = qgetenv("XDG_RUNTIME_DIR") + '/' + path;
    sockaddr_un address{};
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return false;
    address.sun_family = AF_UNIX;
    std::copy(path.cbegin(), path.cend(), address.sun_path);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return false;
    const bool answers = ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(fd);
    return answers;
}

// probe() on a thread of its own, false when it takes longer than kProbeTime; a probe still
// blocked then is left behind and ends with the process.
bool AnswersInTime(bool (*probe)())
{
    auto result = std::make_shared<std::promise<bool>>();
    std::future<bool> answered = result->get_future();
    std::thread([result, probe] { result->set_value(probe()); }).detach();
    return answered.wait_for(kProbeTime) == std::future_status::ready && answered.get();
}

bool IsWindowlessPlatform(const QString& platform)
{
    return platform.startsWith(QLatin1String("offscreen")) || platform.startsWith(QLatin1String("minimal"));
}

}  // namespace

TDisplayChoice ChooseDisplay()
{
    TDisplayChoice choice;
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        choice.windows = !IsWindowlessPlatform(qEnvironmentVariable("QT_QPA_PLATFORM"));
        return choice;
    }
    const bool x = qEnvironmentVariableIsSet("DISPLAY"), wayland = qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (!x && !wayland) return choice;
    QByteArrayList platforms;
    if (x && AnswersInTime(XServerAnswers)) platforms << "xcb";
    if (wayland && AnswersInTime(WaylandAnswers)) platforms << "wayland";
    if (platforms.isEmpty()) {
        const QString named = x ? QStringLiteral("DISPLAY=") + qEnvironmentVariable("DISPLAY")
                                : QStringLiteral("WAYLAND_DISPLAY=") + qEnvironmentVariable("WAYLAND_DISPLAY");
        choice.warning = Format(_("Die Anzeige %s antwortet nicht; der Lauf geht ohne Oberfläche weiter"), {named});
        return choice;
    }
    // Should the platform plugin itself fail to load (a missing library), Qt falls back to
    // offscreen, and the run is headless after all.
    choice.windows = true;
    choice.platform = platforms.join(';') + ";offscreen";
    return choice;
}

}  // namespace dv::host
