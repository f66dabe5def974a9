#pragma once

#include <utility>

namespace qncomm {

/// Owns a file descriptor and closes it.
class Fd {
  public:
    Fd() = default;
    explicit Fd(int fd) : mFd(fd) {}
    ~Fd() { Reset(); }
    Fd(Fd&& other) noexcept : mFd(std::exchange(other.mFd, -1)) {}
    Fd& operator=(Fd&& other) noexcept {
        if (this != &other) Reset(std::exchange(other.mFd, -1));
        return *this;
    }

    /// The descriptor, -1 when there is none.
    int Get() const { return mFd; }
    explicit operator bool() const { return mFd >= 0; }

    /// Closes what is owned and owns fd instead.
    void Reset(int fd = -1);

  private:
    int mFd = -1;
};

} // namespace qncomm
