#include "TtyChannel.h"

#include "TtyLine.h"
#include "TtyProbe.h"
#include "platform/SystemErrors.h"
#include "serial/ChannelKind.h"
#include "serial/PortHolder.h"
#include "serial/SerialDevices.h"

#include <cerrno>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace qncomm {
namespace {

PortState StateOf(IoStatus status) {
    switch (status) {
    case IoStatus::Done:
        return PortState::Free;
    case IoStatus::Busy:
        return PortState::Busy;
    case IoStatus::Missing:
        return PortState::Missing;
    default:
        return PortState::Unusable;
    }
}

/// "A50285BI" of "usb:A50285BI".
std::string SerialNumberIn(std::string_view address) {
    return std::string(address.substr(UsbKind.scheme.size()));
}

IoResult NotPluggedIn() {
    return {IoStatus::Missing, 0, "no USB adapter with that serial number is plugged in"};
}

} // namespace

constinit const ChannelKind TtyKind{
    .scheme = "/",
    .form = "a device such as /dev/ttyUSB0",
    .check = [](std::string_view address) -> std::string {
        return address.ends_with('/') ? "this is a folder, not a device" : "";
    },
    .make = [](std::string_view address, Reactor& reactor) -> std::unique_ptr<ByteChannel> {
        return std::make_unique<TtyChannel>(reactor, std::string(address));
    },
    .look = [](std::string_view address) -> PortStatus {
        IoResult probed = ProbeTty(std::string(address));
        return {StateOf(probed.status), std::move(probed.text)};
    },
};

constinit const ChannelKind UsbKind{
    .scheme = "usb:",
    .form = "usb:SERIAL of an adapter",
    .check = [](std::string_view address) -> std::string {
        return SerialNumberIn(address).empty() ? "the adapter's serial number is missing" : "";
    },
    .make = [](std::string_view address, Reactor& reactor) -> std::unique_ptr<ByteChannel> {
        return std::make_unique<TtyChannel>(
            reactor, [serial = SerialNumberIn(address)] { return FindUsbDevice(serial); });
    },
    .look = [](std::string_view address) -> PortStatus {
        const std::string path = FindUsbDevice(SerialNumberIn(address));
        return path.empty() ? PortStatus{PortState::Missing, NotPluggedIn().text}
                            : TtyKind.look(path);
    },
};

TtyChannel::TtyChannel(Reactor& reactor, std::string sPath, CountErrors count)
    : TtyChannel(
        reactor, [path = std::move(sPath)] { return path; }, std::move(count)) {}

TtyChannel::TtyChannel(Reactor& reactor, Locate locate, CountErrors count)
    : FdChannel(reactor, "the device went away"),
      mLocate(std::move(locate)),
      mCountErrors(std::move(count)) {}

IoResult TtyChannel::Open(const LineSettings& settings) {
    std::string path = mLocate();
    if (path.empty()) return NotPluggedIn();
    if (path != mPath) mReserved.Reset(); // the mark is on the device of the former name
    mPath = std::move(path);
    Fd fd;
    if (IoResult claimed = ClaimTty(mPath, fd, static_cast<bool>(mReserved)); !claimed.Ok())
        return claimed;
    if (mKeeps && !mReserved) mReserved = ReservePort(mPath);
    int lines = 0;
    mHasLines = ::ioctl(fd.Get(), TIOCMGET, &lines) == 0;
    ::tcgetattr(fd.Get(), &mFormer);
    ::ioctl(fd.Get(), TIOCEXCL);
    if (IoResult applied = Apply(fd.Get(), settings); !applied.Ok()) {
        ::tcsetattr(fd.Get(), TCSANOW, &mFormer);
        ::ioctl(fd.Get(), TIOCNXCL);
        return applied;
    }
    ::tcflush(fd.Get(), TCIFLUSH); // what came before belongs to nobody
    mErrorCounts = mCountErrors(fd.Get());
    Attach(std::move(fd));
    return {};
}

void TtyChannel::Close() {
    const Fd fd = Detach();
    if (!fd) return;
    if (mHasLines) ::tcflush(fd.Get(), TCOFLUSH); // else the close waits until all of it was sent
    ::tcsetattr(fd.Get(), TCSANOW, &mFormer);
    ::ioctl(fd.Get(), TIOCNXCL);
}

IoResult TtyChannel::Probe() {
    if (Handle() >= 0) return {};
    const std::string path = mLocate();
    if (path.empty()) return NotPluggedIn();
    return ProbeTty(path, path == mPath && static_cast<bool>(mReserved));
}

void TtyChannel::Keep(bool bOn) {
    mKeeps = bOn;
    if (!bOn)
        mReserved.Reset();
    else if (Handle() >= 0 && !mReserved)
        mReserved = ReservePort(mPath);
}

IoResult TtyChannel::Configure(const LineSettings& settings) {
    return Apply(Handle(), settings);
}

IoResult TtyChannel::SetBreak(bool bOn) {
    if (::ioctl(Handle(), bOn ? TIOCSBRK : TIOCCBRK) == 0) return {};
    return OpenFailure(errno);
}

IoResult TtyChannel::Apply(int fd, const LineSettings& settings) const {
    const termios wanted = AttributesFor(settings);
    // The C library answers EINVAL where the device has not taken some of it, also when that is
    // what a pseudo-terminal never takes: it then stands as it is wanted.
    const int error = ::tcsetattr(fd, TCSANOW, &wanted) != 0 ? errno : 0;
    if (error != 0 && error != EINVAL) return OpenFailure(error);
    termios got{};
    if (::tcgetattr(fd, &got) != 0) return OpenFailure(errno);
    if (!mHasLines) return {};
    // The call succeeds as soon as the device took any of it.
    const std::string refused = RefusedPart(wanted, got);
    if (!refused.empty())
        return {IoStatus::Unsupported, 0,
                "the device does not take " + refused + " of " + TextOf(settings)};
    return error == 0 ? IoResult{} : OpenFailure(error);
}

LineErrors TtyChannel::TakeLineErrors() {
    if (!mErrorCounts) return {};
    const std::optional<TtyErrorCounts> before =
        std::exchange(mErrorCounts, mCountErrors(Handle()));
    return mErrorCounts ? ErrorsBetween(*before, *mErrorCounts) : LineErrors{};
}

std::size_t TtyChannel::OutputPending() {
    int pending = 0;
    if (!mHasLines || ::ioctl(Handle(), TIOCOUTQ, &pending) != 0 || pending < 0) return 0;
    return static_cast<std::size_t>(pending);
}

void TtyChannel::DiscardInput() {
    ::tcflush(Handle(), TCIFLUSH);
}

void TtyChannel::DiscardOutput() {
    ::tcflush(Handle(), TCOFLUSH); // of a pseudo-terminal: what its other side has not read
}

std::optional<bool> TtyChannel::Dsr() {
    int lines = 0;
    if (!mHasLines || ::ioctl(Handle(), TIOCMGET, &lines) != 0) return std::nullopt;
    return (lines & TIOCM_DSR) != 0;
}

ssize_t TtyChannel::Put(std::string_view bytes) {
    return ::write(Handle(), bytes.data(), bytes.size());
}

} // namespace qncomm
