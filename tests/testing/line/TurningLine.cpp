#include "testing/line/TurningLine.h"

#include "testing/line/PtyPair.h"

#include <array>
#include <stdexcept>
#include <string_view>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

constexpr std::string_view Talk = "42\r\n";
constexpr int LookMs = 5; ///< a turn is noticed so late

Fd ConnectTo(const std::string& address) {
    sockaddr_in there{};
    there.sin_family = AF_INET;
    there.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int port = std::stoi(address.substr(address.rfind(':') + 1));
    there.sin_port = htons(static_cast<std::uint16_t>(port));
    Fd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(fd.Get(), reinterpret_cast<const sockaddr*>(&there), sizeof there) != 0)
        throw std::runtime_error("no printer at " + address);
    return fd;
}

/// What came, as much as there is space for; empty when there is none.
std::string_view TakeFrom(int fd, std::array<char, 4096>& space) {
    const ssize_t got = ::read(fd, space.data(), space.size());
    return {space.data(), got > 0 ? static_cast<std::size_t>(got) : 0};
}

} // namespace

TurningLine::TurningLine(const std::string& sAddress) : mPrinter(ConnectTo(sAddress)) {
    PtyPair pair = OpenPty();
    mHost = std::move(pair.master);
    mPath = pair.path;
    mThread = std::thread([this] { Run(); });
}

TurningLine::~TurningLine() {
    mStop = true;
    mThread.join();
}

void TurningLine::Become(FarEnd end, int everyMs) {
    mEveryMs = everyMs;
    mEnd = end;
}

void TurningLine::Run() {
    while (!mStop)
        Turn();
}

void TurningLine::Turn() {
    const FarEnd end = mEnd;
    const int fromHost = end == FarEnd::Deaf ? -1 : mHost.Get();
    const int fromPrinter = end == FarEnd::Printer ? mPrinter.Get() : -1;
    std::array<pollfd, 2> ends{{{fromHost, POLLIN, 0}, {fromPrinter, POLLIN, 0}}};
    ::poll(ends.data(), ends.size(), end == FarEnd::Talking ? 0 : LookMs);
    std::array<char, 4096> space{};
    if ((ends[0].revents & POLLIN) != 0) {
        const std::string_view bytes = TakeFrom(mHost.Get(), space);
        if (end == FarEnd::Printer) static_cast<void>(WriteAll(mPrinter.Get(), bytes));
    }
    if ((ends[1].revents & POLLIN) != 0)
        static_cast<void>(WriteAll(mHost.Get(), TakeFrom(mPrinter.Get(), space)));
    if (end == FarEnd::Talking) {
        // A host that is slow to read gets less of it.
        static_cast<void>(!::write(mHost.Get(), Talk.data(), Talk.size()));
        ::poll(nullptr, 0, mEveryMs);
    }
    // A host that is not there yet, or no longer, shows as a hang-up at once.
    if ((ends[0].revents & POLLHUP) != 0) ::poll(nullptr, 0, LookMs);
}

} // namespace qncomm::testing
