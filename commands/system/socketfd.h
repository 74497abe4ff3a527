#pragma once
// Owns one socket descriptor and closes it however the call that opened it ends.
#include <unistd.h>

#include <utility>

namespace dv {

class TSocketFd {
public:
    TSocketFd() = default;
    explicit TSocketFd(int fd) : fd_(fd) {}
    ~TSocketFd() { Reset(); }
    TSocketFd(TSocketFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    TSocketFd& operator=(TSocketFd&& other) noexcept
    {
        if (this != &other) {
            Reset();
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    TSocketFd(const TSocketFd&) = delete;
    TSocketFd& operator=(const TSocketFd&) = delete;

    int Get() const { return fd_; }
    bool Valid() const { return fd_ >= 0; }
    void Reset()
    {
        if (fd_ >= 0) ::close(fd_);
        fd_ = -1;
    }

private:
    int fd_ = -1;
};

}  // namespace dv
