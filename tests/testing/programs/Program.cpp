#include "testing/programs/Program.h"

#include "platform/FdWait.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

constexpr int HangMs = 50'000; // nothing that works takes so long

std::array<qncomm::Fd, 2> MakePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    return {qncomm::Fd(ends[0]), qncomm::Fd(ends[1])};
}

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str())); // what exec's interface asks for
    pointers.push_back(nullptr);
    return pointers;
}

/// Moves what has come into the text. False at the stream's end.
bool Drain(qncomm::Fd& from, std::string& text) {
    std::array<char, 4096> part{};
    const ssize_t got = ::read(from.Get(), part.data(), part.size());
    if (got > 0) text.append(part.data(), static_cast<std::size_t>(got));
    if (got > 0 || (got < 0 && errno == EINTR)) return true;
    from.Reset();
    return false;
}

} // namespace

Program::Program(std::vector<std::string> command, Stdio stdio,
                 std::vector<std::string> variables) {
    if (stdio == Stdio::Terminal) {
        int mine = -1;
        int theirs = -1;
        if (::openpty(&mine, &theirs, nullptr, nullptr, nullptr) != 0)
            throw std::runtime_error("no pseudo-terminal");
        const qncomm::Fd other(theirs);
        for (const int end : {mine, theirs})
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
        mInput = qncomm::Fd(mine);
        mOutEnd = qncomm::Fd(::fcntl(mine, F_DUPFD_CLOEXEC, 0));
        StartChild(command, variables, theirs, theirs, theirs, true);
        return;
    }
    auto in = MakePipe();
    auto out = MakePipe();
    auto err = MakePipe();
    mInput = std::move(in[1]);
    mOutEnd = std::move(out[0]);
    mErrEnd = std::move(err[0]);
    StartChild(command, variables, in[0].Get(), out[1].Get(), err[1].Get(), false);
}

Program::~Program() {
    if (mPid < 0) return;
    ::kill(mPid, SIGKILL);
    ::waitpid(mPid, nullptr, 0);
}

void Program::StartChild(const std::vector<std::string>& command,
                         const std::vector<std::string>& variables, int in, int out, int err,
                         bool terminal) {
    const std::vector<char*> arguments = Pointers(command);
    mPid = ::fork();
    if (mPid < 0) throw std::runtime_error("no process");
    if (mPid > 0) return;
    ::setsid();
    // A printer answers within the 50 ms that a search gives it, whatever else this machine does;
    // where the system allows it, neither side waits for its turn.
    const sched_param first{1};
    ::sched_setscheduler(0, SCHED_RR, &first);
    if (terminal) ::ioctl(in, TIOCSCTTY, 0);
    ::dup2(in, STDIN_FILENO);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    for (const std::string& variable : variables)
        ::putenv(const_cast<char*>(variable.c_str()));
    ::execvp(arguments.front(), arguments.data());
    ::_exit(127);
}

void Program::Type(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(mInput.Get(), text.data(), text.size());
        if (written <= 0) throw std::runtime_error("the program takes no input");
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void Program::Signal(int signal) const {
    ::kill(mPid, signal);
}

bool Program::WaitFor(const std::string& stream, std::string_view text) {
    while (stream.find(text) == std::string::npos)
        if (!ReadMore(HangMs)) return false;
    return true;
}

bool Program::WaitForOut(std::string_view before, std::string_view text) {
    if (!WaitForOut(before)) return false;
    const std::size_t behind = mOut.find(before) + before.size();
    while (mOut.find(text, behind) == std::string::npos)
        if (!ReadMore(HangMs)) return false;
    return true;
}

int Program::Wait(int mostMs) {
    const std::int64_t until = qncomm::MonotonicUs() / 1000 + mostMs;
    const auto limit = [&] {
        if (mostMs == AnyTime) return HangMs;
        return static_cast<int>(std::max<std::int64_t>(until - qncomm::MonotonicUs() / 1000, 0));
    };
    while (ReadMore(limit())) {
    }
    int status = 0;
    rusage usage{};
    while (::wait4(mPid, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    mPid = -1;
    mPeakKb = usage.ru_maxrss;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

bool Program::ReadMore(int limitMs) {
    std::array<pollfd, 2> ends{
        {{mOutEnd.Get(), POLLIN, 0}, {mErrEnd.Get(), POLLIN, 0}}}; // -1 is left alone by poll
    if (!mOutEnd && !mErrEnd) return false;
    const int ready = ::poll(ends.data(), ends.size(), limitMs);
    if (ready < 0 && errno == EINTR) return true;
    if (ready <= 0) {
        ::kill(mPid, SIGKILL);
        throw std::runtime_error("the program hangs; output: " + mOut + "; errors: " + mErr);
    }
    if (ends[0].revents != 0) Drain(mOutEnd, mOut);
    if (ends[1].revents != 0) Drain(mErrEnd, mErr);
    return mOutEnd || mErrEnd;
}

} // namespace qncomm::testing
