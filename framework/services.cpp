#include "framework/services.h"

#include "framework/exceptions.h"
#include "framework/translate.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <stdexcept>

namespace dv {

namespace {
std::mutex g_servicesMutex;
THostServices g_services;

[[noreturn]] void Missing(const char* service)
{
    throw TDravikException(Format(_("Der Host-Dienst %s ist nicht eingerichtet"), {QString::fromLatin1(service)}));
}
}  // namespace

TRunControl::TRunControl() : fd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (fd_ < 0) throw std::runtime_error(std::string("eventfd: ") + std::strerror(errno));
}

TRunControl::~TRunControl() { ::close(fd_); }

void TRunControl::SignalStop()
{
    stopped_.store(true);
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t n = ::write(fd_, &one, sizeof one);
}

void TRunControl::Reset()
{
    std::uint64_t value = 0;
    while (::read(fd_, &value, sizeof value) > 0) {
    }
    stopped_.store(false);
}

bool TRunControl::WaitForStop(int timeoutMs) const
{
    pollfd p{fd_, POLLIN, 0};
    for (;;) {
        const int r = ::poll(&p, 1, timeoutMs);
        if (r >= 0 || errno != EINTR) return r > 0 || StopRequested();
    }
}

void SetHostServices(const THostServices& services)
{
    std::lock_guard lock(g_servicesMutex);
    g_services = services;
}

THostServices HostServices()
{
    std::lock_guard lock(g_servicesMutex);
    return g_services;
}

IDVGetParser& GetParser()
{
    IDVGetParser* p = HostServices().parser;
    if (!p) Missing("GetParser");
    return *p;
}

IDVVarAccess& VarAccess()
{
    IDVVarAccess* v = HostServices().varAccess;
    if (!v) Missing("VarAccess");
    return *v;
}

IDVTestEnvironment& TestEnvironment()
{
    IDVTestEnvironment* t = HostServices().testEnvironment;
    if (!t) Missing("TestEnvironment");
    return *t;
}

TDVParser* CurrentParser()
{
    IDVGetParser* p = HostServices().parser;
    return p ? p->GetParser() : nullptr;
}

}  // namespace dv
