#include "endpoints/PtyEndpoint.h"

#include "EndpointCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace qnsim {
namespace {

/// How soon after a host has put the device's settings back it has closed it.
constexpr int LeavingMs = 2;

constexpr std::array<std::pair<speed_t, int>, 10> Speeds{{{B300, 300},
                                                          {B600, 600},
                                                          {B1200, 1200},
                                                          {B2400, 2400},
                                                          {B4800, 4800},
                                                          {B9600, 9600},
                                                          {B19200, 19200},
                                                          {B38400, 38400},
                                                          {B57600, 57600},
                                                          {B115200, 115200}}};

bool IsLink(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

/// Sets the device up as a plain byte pipe, so that a host that sets nothing gets no second echo.
bool MakeRaw(const std::string& device) {
    const qncomm::Fd slave(::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios settings{};
    if (!slave || ::tcgetattr(slave.Get(), &settings) != 0) return false;
    ::cfmakeraw(&settings);
    settings.c_cflag |= CREAD | CLOCAL;
    return ::tcsetattr(slave.Get(), TCSANOW, &settings) == 0;
}

} // namespace

OpenedEndpoint PtyEndpoint::Open(qncomm::Reactor& loop, const std::string& link) {
    qncomm::Fd master(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!master || ::grantpt(master.Get()) != 0 || ::unlockpt(master.Get()) != 0)
        return SystemFailure("cannot open a pseudo-terminal");
    std::array<char, 128> name{};
    if (::ptsname_r(master.Get(), name.data(), name.size()) != 0)
        return SystemFailure("cannot name the pseudo-terminal");
    const std::string device = name.data();
    qncomm::Fd openings(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!openings) return SystemFailure("cannot watch " + device);
    if (!MakeRaw(device)) return SystemFailure("cannot set up " + device);
    if (::inotify_add_watch(openings.Get(), device.c_str(), IN_OPEN) < 0)
        return SystemFailure("cannot watch " + device);
    std::unique_ptr<PtyEndpoint> endpoint(
        new PtyEndpoint(loop, std::move(master), std::move(openings), device));
    if (!link.empty() && !endpoint->MakeLink(link))
        return SystemFailure("cannot make the link " + link);
    endpoint->Refresh();
    return {std::move(endpoint), 0, {}};
}

PtyEndpoint::PtyEndpoint(qncomm::Reactor& loop, qncomm::Fd master, qncomm::Fd openings,
                         std::string device)
    : mMaster(std::move(master)),
      mOpenings(std::move(openings)),
      mArrivals(WakeFor(loop, mOpenings.Get(), {.readable = true})),
      mTraffic(WakeFor(loop, mMaster.Get(), {})),
      mDevice(std::move(device)) {}

PtyEndpoint::~PtyEndpoint() {
    std::error_code error;
    if (!mLink.empty() && std::filesystem::read_symlink(mLink, error) == mDevice)
        std::filesystem::remove(mLink, error);
}

bool PtyEndpoint::MakeLink(const std::string& link) {
    // Made beside its place and moved there: whoever opens the name meets the old device or the new
    // one.
    const std::string beside = link + ".new";
    if (IsLink(beside)) ::unlink(beside.c_str());
    if (!IsLink(link) && ::access(link.c_str(), F_OK) == 0) {
        errno = EEXIST;
        return false;
    }
    if (::symlink(mDevice.c_str(), beside.c_str()) != 0) return false;
    if (::rename(beside.c_str(), link.c_str()) != 0) return false;
    mLink = link;
    return true;
}

void PtyEndpoint::Want(bool input, bool output) {
    // With no host the device reports its hang-up all the time: then only an opening wakes up.
    mTraffic->Want({.readable = mConnected && input, .writable = mConnected && output});
}

void PtyEndpoint::Refresh() {
    alignas(inotify_event) std::array<char, 4096> events{};
    bool opened = false;
    while (::read(mOpenings.Get(), events.data(), events.size()) > 0)
        opened = true;
    // Settings that change under an open device are a host's last act or a change for what it
    // sends next; which of them, its leaving tells.
    const bool changed = !opened && mConnected && CurrentFormat() != mFormat;
    const bool left = HungUp(changed ? LeavingMs : 0);
    // A host that left may have left bytes behind; they are read first, as it sent them.
    pollfd state{mMaster.Get(), POLLIN, 0};
    const bool bytes = ::poll(&state, 1, 0) > 0 && (state.revents & POLLIN) != 0;
    mConnected = !left || bytes;
    // Read anew: while one host was leaving the next may have come with settings of its own.
    if (!left) mFormat = CurrentFormat();
}

bool PtyEndpoint::HungUp(int limitMs) const {
    pollfd state{mMaster.Get(), 0, 0};
    return ::poll(&state, 1, limitMs) > 0 && (state.revents & POLLHUP) != 0;
}

LineFormat PtyEndpoint::CurrentFormat() const {
    LineFormat format;
    termios settings{};
    if (::tcgetattr(mMaster.Get(), &settings) != 0) return format;
    const speed_t speed = ::cfgetospeed(&settings);
    const auto* found = std::find_if(Speeds.begin(), Speeds.end(),
                                     [speed](const auto& entry) { return entry.first == speed; });
    format.baud = found == Speeds.end() ? 0 : found->second;
    format.stopBits = (settings.c_cflag & CSTOPB) != 0 ? 2 : 1;
    return format;
}

std::vector<HostAction> PtyEndpoint::Receive(std::size_t max) {
    bool closed = false;
    std::string bytes = ReadSome(mMaster.Get(), max, closed);
    if (closed) mConnected = false;
    return Sending(std::move(bytes));
}

std::size_t PtyEndpoint::Write(std::string_view bytes) {
    bool closed = false;
    return WriteSome(mMaster.Get(), bytes, closed);
}

} // namespace qnsim
