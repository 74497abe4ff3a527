#include "framework/waitevents.h"

#include "framework/services.h"

#include <poll.h>

#include <cerrno>
#include <chrono>
#include <vector>

namespace dv {

TWaitResult WaitForEvents(std::initializer_list<TWaitFd> fds, const TRunControl* stop, int timeoutMs)
{
    std::vector<pollfd> polls;
    polls.reserve(fds.size() + 1);
    if (stop) polls.push_back({stop->StopHandle(), POLLIN, 0});
    for (const TWaitFd& f : fds) polls.push_back({f.fd, f.events, 0});
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs < 0 ? 0 : timeoutMs);
    for (;;) {
        int wait = timeoutMs;
        if (timeoutMs >= 0) {
            // Rounded up: poll's whole milliseconds must not end the wait before its time.
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
            wait = left > 0 ? static_cast<int>(left) : 0;
        }
        const int r = ::poll(polls.data(), polls.size(), wait);
        if (r < 0 && errno == EINTR) continue;
        if (stop && (stop->StopRequested() || (polls[0].revents & POLLIN))) return TWaitResult::Stopped;
        if (r > 0) return TWaitResult::Ready;
        return TWaitResult::TimedOut;
    }
}

}  // namespace dv
