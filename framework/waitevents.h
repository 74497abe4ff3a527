#pragma once
// Waits on several descriptors and the run's stop event at once, without polling a CPU core.
#include <poll.h>

#include <initializer_list>

namespace dv {

class TRunControl;

enum class TWaitResult {
    Ready,    // a watched descriptor is ready
    Stopped,  // the run's stop event was signalled
    TimedOut,
};

struct TWaitFd {
    int fd;
    short events;  // POLLIN, POLLOUT ...
};

// Waits until one descriptor is ready, the stop event fires or timeoutMs passes (negative: no
// limit). The stop event wins when both happen. Restarts after signals with the time left.
TWaitResult WaitForEvents(std::initializer_list<TWaitFd> fds, const TRunControl* stop, int timeoutMs);

}  // namespace dv
