#include "testing/programs/TracedProgram.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <set>
#include <stdexcept>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

constexpr int CallStop = SIGTRAP | 0x80; // how a stop at a system call is told from a signal

/// In the new process: becomes the program.
[[noreturn]] void BecomeTraced(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& text : command)
        arguments.push_back(const_cast<char*>(text.c_str())); // what exec's interface asks for
    arguments.push_back(nullptr);
    const int nowhere = ::open("/dev/null", O_RDWR);
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nowhere, fd);
    // The leak detector traces, too, and there can be only one.
    ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    ::execv(arguments.front(), arguments.data());
    ::_exit(127);
}

/// A process under this one's eyes.
class Tracee {
  public:
    explicit Tracee(const std::vector<std::string>& command) : mPid(::fork()) {
        if (mPid == 0) BecomeTraced(command);
        int status = 0;
        if (mPid < 0 || ::waitpid(mPid, &status, 0) != mPid || !WIFSTOPPED(status))
            throw std::runtime_error("the program does not start traced");
        const long options = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_EXITKILL;
        if (::ptrace(PTRACE_SETOPTIONS, mPid, nullptr, options) != 0)
            throw std::runtime_error("the system does not trace");
    }

    TracedEnd Run(const BeforeCall& before) {
        GoOn(mPid, 0);
        for (;;) {
            int status = 0;
            const pid_t thread = ::waitpid(-1, &status, __WALL);
            if (thread < 0 && errno != EINTR) throw std::runtime_error("the program has gone");
            if (thread < 0) continue;
            if (!WIFSTOPPED(status)) {
                if (thread == mPid) return Ended(status);
                continue;
            }
            const int stop = WSTOPSIG(status);
            if (stop == CallStop && IsBegin(thread) && before(++mEnd.calls)) {
                mEnd.killed = true;
                ::kill(mPid, SIGKILL);
            }
            GoOn(thread, stop == CallStop || IsEvent(status) ? 0 : stop);
        }
    }

  private:
    /// Whether this stop of the thread is that before a call; the one behind it comes next.
    bool IsBegin(pid_t thread) {
        if (mInCall.insert(thread).second) return true;
        mInCall.erase(thread);
        return false;
    }
    /// A thread that begins, and the stop that it begins with.
    static bool IsEvent(int status) {
        const int stop = WSTOPSIG(status);
        return stop == SIGTRAP || stop == SIGSTOP || status >> 16 != 0;
    }
    static void GoOn(pid_t thread, int signal) {
        ::ptrace(PTRACE_SYSCALL, thread, nullptr, static_cast<long>(signal));
    }
    TracedEnd Ended(int status) {
        mEnd.status = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
        return mEnd;
    }

    pid_t mPid;
    std::set<pid_t> mInCall;
    TracedEnd mEnd;
};

} // namespace

TracedEnd RunTraced(const std::vector<std::string>& command, const BeforeCall& before) {
    return Tracee(command).Run(before);
}

} // namespace qncomm::testing
