#include "platform/ProcessLauncher.h"

#include "common/HostPath.h"
#include "common/Text.h"
#include "platform/Fd.h"
#include "platform/FdWait.h"
#include "platform/SystemFiles.h"

#include <cerrno>
#include <csignal>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qncomm {
namespace {

/// A program on a disk that does not answer is not waited for.
constexpr std::int64_t LongestStartUs = 10'000'000;

/// What the new process reports when it cannot become the program; when it can, it reports nothing.
struct Hindrance {
    enum Step : int { Fork, Folder, Program };
    int step = Fork;
    int error = 0;
};

/// The request with paths that this system can use.
LaunchRequest ForThisMachine(LaunchRequest request) {
    if (request.program.find('\\') != std::string::npos && !SystemFiles().Exists(request.program)) {
        request.program = ReplaceAll(request.program, "\\", "/");
        request.folder = ReplaceAll(request.folder, "\\", "/");
    }
    // The folder is entered first, so a relative path would be looked for in there.
    if (request.program.find('/') != std::string::npos)
        request.program = PathIn(SystemFiles().CurrentFolder(), request.program);
    return request;
}

/// The program starts without this process's signal handlers, signal masks, terminal and streams.
void ForgetThisProcess() {
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int ignored : {SIGPIPE, SIGXFSZ, SIGINT, SIGTERM, SIGHUP, SIGCHLD})
        ::signal(ignored, SIG_DFL);
    ::setsid();
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nowhere, stream);
}

[[noreturn]] void Tell(int report, Hindrance::Step step) {
    const Hindrance hindrance{step, errno};
    const ssize_t written = ::write(report, &hindrance, sizeof hindrance);
    ::_exit(written == sizeof hindrance ? 126 : 127);
}

/// The new process; between fork and exec it calls nothing that needs memory.
[[noreturn]] void BecomeProgram(const LaunchRequest& request, char* const* arguments, int report) {
    const pid_t second = ::fork(); // its parent ends at once, so the system collects it
    if (second < 0) Tell(report, Hindrance::Fork);
    if (second > 0) ::_exit(0);
    ForgetThisProcess();
    if (!request.folder.empty() && ::chdir(request.folder.c_str()) != 0)
        Tell(report, Hindrance::Folder);
    ::execvp(request.program.c_str(), arguments);
    Tell(report, Hindrance::Program);
}

LaunchResult ResultOf(const Hindrance& hindrance, const LaunchRequest& request) {
    const bool missing = hindrance.step == Hindrance::Program && hindrance.error == ENOENT;
    const std::string& what =
        hindrance.step == Hindrance::Folder ? request.folder : request.program;
    return {missing ? LaunchResult::Kind::NotFound : LaunchResult::Kind::Refused, hindrance.error,
            what + ": " + std::generic_category().message(hindrance.error)};
}

/// Reads the new process's report. False when there is none: it has become the program.
bool ReadHindrance(int report, Hindrance& hindrance) {
    ssize_t got = 0;
    do
        got = ::read(report, &hindrance, sizeof hindrance);
    while (got < 0 && errno == EINTR);
    return got == sizeof hindrance;
}

} // namespace

LaunchResult ProcessLauncher::Launch(const LaunchRequest& request) {
    LaunchRequest own = ForThisMachine(request);
    std::vector<char*> arguments{own.program.data()};
    for (std::string& argument : own.arguments)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) return ResultOf({Hindrance::Fork, errno}, own);
    const Fd reading(ends[0]);
    Fd writing(ends[1]);
    const pid_t first = ::fork();
    if (first < 0) return ResultOf({Hindrance::Fork, errno}, own);
    if (first == 0) BecomeProgram(own, arguments.data(), writing.Get());
    writing.Reset();
    const bool begun = WaitForFd(reading.Get(), {.readable = true}, LongestStartUs).Any();
    if (!begun) ::kill(first, SIGKILL); // it waits for a second process that it does not get
    Hindrance hindrance{Hindrance::Program, ETIMEDOUT};
    const bool hindered = !begun || ReadHindrance(reading.Get(), hindrance);
    while (::waitpid(first, nullptr, 0) < 0 && errno == EINTR)
        continue;
    return hindered ? ResultOf(hindrance, own) : LaunchResult{};
}

} // namespace qncomm
