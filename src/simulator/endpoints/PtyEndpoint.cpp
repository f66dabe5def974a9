#include "endpoints/PtyEndpoint.h"

#include "EndpointCalls.h"
#include "platform/FdWait.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace qnsim {
namespace {

/// A host that puts the device's settings back before it closes it does so at most so long before.
constexpr int LeavingMs = 10;
constexpr std::size_t MostAtOnce = 4096;

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
    qncomm::Fd notices(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!notices) return SystemFailure("cannot watch " + device);
    if (!MakeRaw(device)) return SystemFailure("cannot set up " + device);
    if (::inotify_add_watch(notices.Get(), device.c_str(), IN_OPEN | IN_MODIFY | IN_CLOSE) < 0)
        return SystemFailure("cannot watch " + device);
    std::unique_ptr<PtyEndpoint> endpoint(
        new PtyEndpoint(loop, std::move(master), std::move(notices), device));
    if (!link.empty() && !endpoint->MakeLink(link))
        return SystemFailure("cannot make the link " + link);
    endpoint->Refresh();
    return {std::move(endpoint), 0, {}};
}

PtyEndpoint::PtyEndpoint(qncomm::Reactor& loop, qncomm::Fd master, qncomm::Fd notices,
                         std::string device)
    : mMaster(std::move(master)),
      mNotices(std::move(notices)),
      mComings(WakeFor(loop, mNotices.Get(), {.readable = true})),
      mTraffic(WakeFor(loop, mMaster.Get(), {})),
      mDevice(std::move(device)),
      mStanding(CurrentFormat()),
      mFormat(mStanding) {}

PtyEndpoint::~PtyEndpoint() {
    std::error_code error;
    if (!mLink.empty() && std::filesystem::read_symlink(mLink, error) == mDevice)
        std::filesystem::remove(mLink, error);
}

bool PtyEndpoint::MakeLink(const std::string& link) {
    // Made beside its place and moved there: a host that opens the name gets the old device or the
    // new one, never nothing.
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
    mTraffic->Want({.readable = Connected() && input, .writable = Connected() && output});
}

void PtyEndpoint::HearOfHosts() {
    alignas(inotify_event) std::array<char, 4096> notices{};
    ssize_t size = 0;
    while ((size = ::read(mNotices.Get(), notices.data(), notices.size())) > 0) {
        inotify_event notice{};
        for (ssize_t at = 0; at < size; at += static_cast<ssize_t>(sizeof notice + notice.len)) {
            std::memcpy(&notice, notices.data() + at, sizeof notice);
            if ((notice.mask & IN_OPEN) != 0) mCame = mCame || mLeft || !mHost;
            if ((notice.mask & IN_MODIFY) != 0 && !mLeft) mWrote = true;
            if ((notice.mask & IN_CLOSE) != 0) mLeft = true;
        }
    }
}

void PtyEndpoint::Refresh() {
    // Their settings are the host's until here.
    if (!mLastWords.empty() && mLastWords.front().bytes.empty()) mLastWords.pop_front();
    HearOfHosts();
    do
        FollowHosts();
    while (mCame); // another host opened it meanwhile
}

void PtyEndpoint::FollowHosts() {
    const bool came = std::exchange(mCame, false);
    mLeft = false;
    // When one host has come in the place of another, the bytes at hand are the former one's last
    // words if the notices tell of a write before the close; otherwise they are the new one's.
    if (came && mHost && mWrote) KeepLastWords(ReadAll());
    if (came) mFormat = mStanding;
    mHost = !HungUp(0);
    if (mHost) return LookAtHost();
    std::string words = ReadAll();
    mWrote = false;
    const LineFormat seen = CurrentFormat();
    HearOfHosts();
    // Otherwise the settings that were seen may be the next host's.
    if (!mCame) {
        if (seen != mStanding) mFormat = seen;
        mStanding = seen;
    }
    KeepLastWords(std::move(words));
}

void PtyEndpoint::KeepLastWords(std::string words) {
    if (!words.empty()) mLastWords.push_back({mFormat, std::move(words)});
}

// Nothing wakes up when a host sets the line: one that only listens is looked at before anything is
// said to it, and one whose bytes there is no room for before it leaves. Where bytes wait, they may
// have been sent with its settings before these.
void PtyEndpoint::LookAtHost() {
    const LineFormat seen = CurrentFormat();
    const bool silent = !qncomm::WaitForFd(mMaster.Get(), {.readable = true}, 0).readable;
    HearOfHosts();
    // The standing settings may be what a host that leaves has just put back.
    if (!mCame && seen != mStanding && (silent || mFormat == mStanding)) mFormat = seen;
}

bool PtyEndpoint::Leaves() {
    if (HungUp(LeavingMs)) return true;
    HearOfHosts();
    return mLeft;
}

bool PtyEndpoint::HungUp(int limitMs) const {
    return qncomm::WaitForFd(mMaster.Get(), {}, std::int64_t{limitMs} * 1000).hungUp;
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

std::string PtyEndpoint::ReadAll() {
    std::string all;
    for (std::string piece = ReadPiece(MostAtOnce); !piece.empty(); piece = ReadPiece(MostAtOnce))
        all += piece;
    return all;
}

std::string PtyEndpoint::ReadPiece(std::size_t max) const {
    bool closed = false; // HungUp tells
    return ReadSome(mMaster.Get(), max, closed);
}

std::vector<HostAction> PtyEndpoint::Receive(std::size_t max) {
    if (!mLastWords.empty()) {
        std::string& left = mLastWords.front().bytes;
        std::string words = left.substr(0, max);
        left.erase(0, max);
        return Sending(std::move(words));
    }
    std::string bytes = ReadPiece(max);
    // Looked at after the bytes were read, so the bytes were sent with these settings or with those
    // before, never with later ones. Another host may have set its own meanwhile.
    const LineFormat seen = CurrentFormat();
    HearOfHosts();
    const bool others = mCame && mWrote;
    if (bytes.size() < max) mWrote = false;
    std::vector<HostAction> actions = Sending(std::move(bytes));
    if (others || seen == mFormat || (seen == mStanding && Leaves())) return actions;
    mFormat = seen;
    HostAction set;
    set.kind = HostAction::Kind::Format;
    set.format = seen;
    actions.insert(actions.begin(), std::move(set));
    return actions;
}

std::size_t PtyEndpoint::Write(std::string_view bytes) {
    const ssize_t count = ::write(mMaster.Get(), bytes.data(), bytes.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0; // Refresh sees that a host left
}

} // namespace qnsim
