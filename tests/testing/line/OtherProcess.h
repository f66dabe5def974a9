#pragma once

#include "platform/Fd.h"

#include <array>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace qncomm::testing {

/// Another process that does something with a device and keeps it until the object goes away.
class OtherProcess {
  public:
    explicit OtherProcess(const std::function<bool()>& action) {
        std::array<int, 2> ready{};
        std::array<int, 2> end{};
        if (::pipe2(ready.data(), O_CLOEXEC) != 0 || ::pipe2(end.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        mProcess = ::fork();
        if (mProcess == 0) {
            ::close(end[1]);
            const char done = action() ? '+' : '-';
            char last = 0;
            const bool told = ::write(ready[1], &done, 1) == 1;
            // The read ends when the parent closes its side.
            ::_exit(told && ::read(end[0], &last, 1) == 0 ? 0 : 1);
        }
        ::close(end[0]);
        ::close(ready[1]);
        mEnd.Reset(end[1]);
        const Fd wait(ready[0]);
        char done = 0;
        EXPECT_EQ(::read(wait.Get(), &done, 1), 1);
        EXPECT_EQ(done, '+');
    }
    ~OtherProcess() {
        mEnd.Reset();
        int status = 0;
        ::waitpid(mProcess, &status, 0);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    pid_t Process() const { return mProcess; }
    std::string Text() const { return "(process " + std::to_string(mProcess) + ")"; }

  private:
    pid_t mProcess = 0;
    Fd mEnd;
};

} // namespace qncomm::testing
