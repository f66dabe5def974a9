#pragma once

#include <string_view>
#include <utility>

namespace qncomm {

/// Owns a file descriptor and closes it.
class Fd {
  public:
    Fd() = default;
    /// Owns fd from now on; a negative one is none, as failed calls return it.
    explicit Fd(int fd) : mFd(fd) {}
    ~Fd() { Reset(); }
    /// Takes over what other owns, which then owns nothing.
    Fd(Fd&& other) noexcept : mFd(std::exchange(other.mFd, -1)) {}
    Fd& operator=(Fd&& other) noexcept {
        if (this != &other) Reset(std::exchange(other.mFd, -1));
        return *this;
    }

    /// The descriptor, -1 when there is none.
    int Get() const { return mFd; }
    /// Whether there is one.
    explicit operator bool() const { return mFd >= 0; }

    /// Closes what is owned and owns fd instead.
    void Reset(int fd = -1);

  private:
    int mFd = -1;
};

/// Writes all bytes, whatever signals interrupt it. A descriptor that does not wait (O_NONBLOCK) is
/// waited for, but no longer than 5 s at a time in which nothing is taken (ETIMEDOUT). Returns 0,
/// or errno with a part of the bytes maybe written.
[[nodiscard]] int WriteAll(int fd, std::string_view sBytes);

} // namespace qncomm
