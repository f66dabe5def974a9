#include "testing/programs/PeerProcess.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace qncomm::testing {

namespace {

[[noreturn]] void Become(std::vector<char*>& arguments, const char* sDirectory) {
    if (chdir(sDirectory) == 0) {
        const int log = open("log", O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
        if (log >= 0) dup2(log, STDERR_FILENO);
        execvp(arguments[0], arguments.data());
    }
    _exit(127);
}

} // namespace

PeerProcess::PeerProcess(const std::vector<std::string>& arguments, const std::string& directory) {
    std::vector<std::string> copies = arguments;
    std::vector<char*> pointers;
    std::transform(copies.begin(), copies.end(), std::back_inserter(pointers),
                   [](std::string& s) { return s.data(); });
    pointers.push_back(nullptr);
    termios raw{};
    cfmakeraw(&raw);
    raw.c_cflag |= CREAD | CLOCAL;
    raw.c_cc[VMIN] = 1;
    cfsetspeed(&raw, B115200);
    mPid = forkpty(&mMaster, nullptr, &raw, nullptr);
    if (mPid == 0) Become(pointers, directory.c_str());
    if (mPid > 0) fcntl(mMaster, F_SETFL, O_NONBLOCK);
}

PeerProcess::~PeerProcess() {
    if (!HasEnded()) {
        Kill();
        waitpid(mPid, nullptr, 0);
    }
    if (mMaster >= 0) close(mMaster);
}

std::string PeerProcess::Read() {
    std::array<char, 65536> buffer{};
    const ssize_t count = read(mMaster, buffer.data(), buffer.size());
    return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
}

std::size_t PeerProcess::Write(std::string_view bytes) {
    if (bytes.empty()) return 0;
    const ssize_t count = write(mMaster, bytes.data(), bytes.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool PeerProcess::HasEnded() {
    if (mPid <= 0 || mStatus >= 0) return true;
    int status = 0;
    if (waitpid(mPid, &status, WNOHANG) != mPid) return false;
    mStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return true;
}

void PeerProcess::Kill() {
    if (mPid > 0 && mStatus < 0) kill(mPid, SIGKILL);
}

bool PeerProcess::IsInstalled(const std::string& sProgram) {
    const char* path =
        std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe): read before threads exist
    std::string_view rest = path != nullptr ? path : "";
    while (!rest.empty()) {
        const auto end = rest.find(':');
        const auto candidate = std::filesystem::path(rest.substr(0, end)) / sProgram;
        if (access(candidate.c_str(), X_OK) == 0) return true;
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    return false;
}

} // namespace qncomm::testing
