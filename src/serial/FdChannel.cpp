#include "FdChannel.h"

#include "platform/SystemErrors.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace qncomm {
namespace {

bool IsNotNow(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

void FdChannel::Attach(Fd fd) {
    mFd = std::move(fd);
    mWatch = mReactor.Watch(mFd.Get(), {}, [this](FdEvents events) {
        if (mHandler) mHandler(events);
    });
}

Fd FdChannel::Detach() {
    mWatch.reset();
    return std::move(mFd);
}

IoCount FdChannel::Read(std::span<char> buffer) {
    const ssize_t count = ::read(mFd.Get(), buffer.data(), buffer.size());
    if (count > 0) return {static_cast<std::size_t>(count), {}};
    if (count < 0 && IsNotNow(errno)) return {};
    return {0, LineFailure(count < 0 ? errno : 0, mLostText)};
}

IoCount FdChannel::Write(std::string_view bytes) {
    const ssize_t count = Put(bytes);
    if (count >= 0) return {static_cast<std::size_t>(count), {}};
    if (IsNotNow(errno)) return {};
    return {0, LineFailure(errno, mLostText)};
}

void FdChannel::Want(FdEvents events) {
    if (mWatch) mWatch->Want(events);
}

FdEvents FdChannel::Wait(FdEvents events, std::int64_t lLimitUs) {
    return mReactor.WaitFor(mFd.Get(), events, lLimitUs);
}

} // namespace qncomm
