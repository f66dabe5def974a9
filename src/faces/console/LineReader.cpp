#include "console/LineReader.h"

#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/Wait.h"
#include "platform/Suspension.h"
#include "platform/SystemErrors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ostream>

#include <unistd.h>

namespace qncomm {
namespace {

[[noreturn]] void RaiseTooLong() {
    throw QNError(RtInvalidCall, "LineReader",
                  "A line of the input has more than "
                      + std::to_string(LineReader::LongestInputLine) + " bytes.");
}

[[noreturn]] void RaiseUnreadable(int error) {
    throw QNError(RtDeviceIO, "LineReader", "The input cannot be read: " + SystemText(error) + ".");
}

} // namespace

bool LineReader::IsTerminal() const {
    return ::isatty(mFd) == 1;
}

std::optional<std::string> LineReader::ReadLine() {
    bool ended = false;
    int failure = 0;
    const auto watch = mReactor.Watch(mFd, FdEvents{.readable = true}, [&](FdEvents) {
        if (StopInBackground(mFd, SIGTTIN)) return;
        std::array<char, 512> part{};
        const ssize_t got = ::read(mFd, part.data(), part.size());
        if (got > 0) mRest.append(part.data(), static_cast<std::size_t>(got));
        if (got < 0 && errno != EINTR && errno != EAGAIN) failure = errno;
        ended = got == 0 || failure != 0;
    });
    std::size_t end = std::string::npos;
    Wait wait(mReactor, {.wholeMs = WaitBounds::Endless}); // a person's time, or the input's
    wait.UntilIn(mReactor, [&] {
        end = mRest.find('\n', mSought);
        mSought = mRest.size();
        if (std::min(end, mRest.size()) > LongestInputLine) RaiseTooLong();
        return end != std::string::npos || ended;
    });
    mSought = 0;
    // A terminal that fails has hung up, which is its end.
    if (failure != 0 && !IsTerminal()) RaiseUnreadable(failure);
    if (end == std::string::npos && mRest.empty()) return std::nullopt;
    std::string line = mRest.substr(0, end);
    mRest.erase(0, end == std::string::npos ? end : end + 1);
    return line;
}

std::optional<std::string> ReadAnswer(LineReader& input, std::ostream& err) {
    try {
        auto line = input.ReadLine();
        if (!line) err << std::endl;
        return line;
    } catch (...) {
        err << std::endl;
        throw;
    }
}

} // namespace qncomm
