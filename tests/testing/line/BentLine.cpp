#include "testing/line/BentLine.h"

#include <gtest/gtest.h>

#include <array>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

/// Raw, at the settings of a virtual printer that was given none.
Fd OpenRaw(const std::string& path) {
    Fd fd(::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios line{};
    EXPECT_EQ(::tcgetattr(fd.Get(), &line), 0) << path;
    ::cfmakeraw(&line);
    ::cfsetspeed(&line, B9600);
    line.c_cflag |= CSTOPB;
    ::tcsetattr(fd.Get(), TCSANOW, &line);
    return fd;
}

std::string ReadFrom(const Fd& fd) {
    std::array<char, 65536> piece{};
    const ssize_t got = ::read(fd.Get(), piece.data(), piece.size());
    return {piece.data(), got > 0 ? static_cast<std::size_t>(got) : 0};
}

/// A side that takes nothing is waited for.
void WriteTo(const Fd& fd, std::string_view text) {
    while (!text.empty()) {
        pollfd ready{fd.Get(), POLLOUT, 0};
        ::poll(&ready, 1, -1);
        const ssize_t put = ::write(fd.Get(), text.data(), text.size());
        if (put > 0) text.remove_prefix(static_cast<std::size_t>(put));
    }
}

} // namespace

BentLine::BentLine(const std::string& sDevice, std::vector<Bend> bends)
    : mHost(OpenPty()),
      mHeld(OpenRaw(mHost.path)),
      mDevice(OpenRaw(sDevice)),
      mStop(::eventfd(0, EFD_CLOEXEC)),
      mBends(std::move(bends)) {
    for (const auto& [said, heard] : mBends)
        EXPECT_EQ(said.size(), heard.size()) << said;
    mThread = std::thread([this] { Run(); });
}

BentLine::~BentLine() {
    ::eventfd_write(mStop.Get(), 1);
    mThread.join();
}

std::string BentLine::Bent(std::string text) const {
    for (const auto& [said, heard] : mBends)
        for (std::size_t at = text.find(said); at != std::string::npos;
             at = text.find(said, at + said.size()))
            text.replace(at, said.size(), heard);
    return text;
}

void BentLine::Run() const {
    for (;;) {
        std::array<pollfd, 3> ready{pollfd{mStop.Get(), POLLIN, 0},
                                    pollfd{mHost.master.Get(), POLLIN, 0},
                                    pollfd{mDevice.Get(), POLLIN, 0}};
        ::poll(ready.data(), ready.size(), -1);
        if (ready[0].revents != 0) return;
        if ((ready[1].revents & POLLIN) != 0) WriteTo(mDevice, ReadFrom(mHost.master));
        if ((ready[2].revents & POLLIN) != 0) WriteTo(mHost.master, Bent(ReadFrom(mDevice)));
    }
}

} // namespace qncomm::testing
