#include "serial/PortHolder.h"

#include "platform/FileOpening.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <optional>
#include <sstream>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace qncomm {
namespace {

namespace fs = std::filesystem;

constexpr const char* Proc = "/proc";

constexpr std::uint64_t LargestList = 16U << 20U; ///< bytes of a list that the kernel keeps
constexpr std::uint64_t LargestLockFile = 256;    ///< bytes; it holds a number and maybe two names

/// What the file holds; nothing when it cannot be read, is no file or is larger than that. A folder
/// of lock files is open to everybody, so that anything can stand there.
std::string TextOf(const fs::path& file, std::uint64_t most = LargestList) {
    std::string text;
    static_cast<void>(ReadWholeFile(file, {.limit = most}, text));
    return text;
}

PortHolder HolderFor(pid_t process, const fs::path& proc = Proc) {
    const std::string name = TextOf(proc / std::to_string(process) / "comm");
    return {process, name.substr(0, name.find('\n'))};
}

std::optional<pid_t> ProcessNumber(const std::string& text) {
    pid_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || number <= 0)
        return std::nullopt;
    return number;
}

/// The owner of a lock on the device's node, as the kernel lists it: "… FLOCK ADVISORY WRITE PID
/// MAJOR:MINOR:INODE 0 EOF" with the numbers of the file system that the node is on.
std::optional<pid_t> LockOwner(const struct stat& device, const fs::path& proc) {
    std::ostringstream node;
    node << std::hex;
    for (const unsigned part : {major(device.st_dev), minor(device.st_dev)}) {
        node.width(2);
        node.fill('0');
        node << part << ':';
    }
    node << std::dec << device.st_ino;
    std::istringstream locks(TextOf(proc / "locks"));
    for (std::string line; std::getline(locks, line);) {
        std::istringstream stream(line);
        const std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
        if (words.size() < 6 || words[1] != "FLOCK" || words[5] != node.str()) continue;
        return ProcessNumber(words[4]);
    }
    return std::nullopt;
}

bool IsSameDevice(const struct stat& one, const struct stat& other) {
    if (S_ISCHR(one.st_mode) && S_ISCHR(other.st_mode)) return one.st_rdev == other.st_rdev;
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// Whether a process has the device open; nothing where this user may not see that.
std::optional<bool> HasOpen(const fs::path& process, const struct stat& device) {
    std::error_code error;
    fs::directory_iterator entry(process / "fd", error);
    if (error == std::errc::permission_denied) return std::nullopt;
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        struct stat open {};
        if (::stat(entry->path().c_str(), &open) == 0 && IsSameDevice(open, device)) return true;
    }
    return false;
}

PortUsers UsersOf(const struct stat& device, const fs::path& proc = Proc) {
    PortUsers users;
    const auto owner = LockOwner(device, proc);
    if (owner && *owner != ::getpid()) {
        users.found.push_back(HolderFor(*owner, proc));
        users.found.back().locks = true;
    }
    std::error_code error;
    fs::directory_iterator entry(proc, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const auto process = ProcessNumber(entry->path().filename().string());
        if (!process || *process == ::getpid() || process == owner) continue;
        const auto open = HasOpen(entry->path(), device);
        if (!open) users.everyoneSeen = false;
        if (open.value_or(false)) users.found.push_back(HolderFor(*process, proc));
    }
    return users;
}

PortHolder HolderOf(const struct stat& device) {
    const PortUsers users = UsersOf(device);
    if (!users.found.empty()) return users.found.front();
    const auto owner = LockOwner(device, Proc);
    return owner ? HolderFor(*owner) : PortHolder{};
}

/// The process number in a lock file: text, or a binary number in the oldest form.
std::optional<pid_t> LockFileProcess(const fs::path& file) {
    const std::string text = TextOf(file, LargestLockFile);
    std::istringstream words(text);
    std::string first;
    words >> first;
    if (const auto process = ProcessNumber(first)) return process;
    pid_t binary = 0;
    if (text.size() != sizeof binary) return std::nullopt;
    std::memcpy(&binary, text.data(), sizeof binary);
    return binary > 0 ? std::optional(binary) : std::nullopt;
}

/// The mark of a device: a listening socket that has a name without a place in any folder.
struct ReservedName {
    explicit ReservedName(const struct stat& device) {
        const std::string name = "qncomm-port-" + std::to_string(major(device.st_rdev)) + "-"
                                 + std::to_string(minor(device.st_rdev));
        address.sun_family = AF_UNIX;
        name.copy(address.sun_path + 1, sizeof address.sun_path - 1);
        size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    }
    const sockaddr* Address() const {
        return reinterpret_cast<const sockaddr*>(
            &address); // NOLINT: how the call takes any address
    }
    sockaddr_un address{};
    socklen_t size = 0;
};

Fd LocalSocket() {
    return Fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

bool IsAlive(pid_t process) {
    return ::kill(process, 0) == 0 || errno == EPERM;
}

} // namespace

std::string PortHolder::Text() const {
    if (process == 0) return "held by another program";
    if (process == ::getpid()) return "already open in this program";
    const std::string number = "process " + std::to_string(process);
    return name.empty() ? "held by " + number : "held by " + name + " (" + number + ")";
}

PortUsers FindPortUsers(const std::string& sPath, const std::string& sProc) {
    struct stat device {};
    return ::stat(sPath.c_str(), &device) == 0 ? UsersOf(device, sProc) : PortUsers{};
}

PortHolder FindPortHolder(int fd) {
    struct stat device {};
    return ::fstat(fd, &device) == 0 ? HolderOf(device) : PortHolder{};
}

PortHolder FindPortHolder(const std::string& sPath) {
    struct stat device {};
    return ::stat(sPath.c_str(), &device) == 0 ? HolderOf(device) : PortHolder{};
}

Fd ReservePort(const std::string& sPath) {
    struct stat device {};
    Fd mark = LocalSocket();
    if (!mark || ::stat(sPath.c_str(), &device) != 0) return {};
    const ReservedName name(device);
    if (::bind(mark.Get(), name.Address(), name.size) != 0 || ::listen(mark.Get(), SOMAXCONN) != 0)
        return {};
    return mark;
}

std::optional<PortHolder> FindReserver(const std::string& sPath) {
    struct stat device {};
    const Fd caller = LocalSocket();
    if (!caller || ::stat(sPath.c_str(), &device) != 0) return std::nullopt;
    const ReservedName name(device);
    if (::connect(caller.Get(), name.Address(), name.size) != 0)
        return errno == EAGAIN ? std::optional(PortHolder{}) : std::nullopt; // many have asked it
    ucred owner{};
    socklen_t size = sizeof owner;
    if (::getsockopt(caller.Get(), SOL_SOCKET, SO_PEERCRED, &owner, &size) != 0)
        return PortHolder{};
    return HolderFor(owner.pid);
}

PortHolder FindLockFileOwner(const std::string& sPath, const std::string& sFolder) {
    constexpr std::string_view devices = "/dev/";
    std::error_code error;
    const fs::path resolved = fs::canonical(sPath, error);
    std::string name = error ? sPath : resolved.string();
    if (name.starts_with(devices)) name.erase(0, devices.size());
    std::replace(name.begin(), name.end(), '/', '_');
    const auto process = LockFileProcess(fs::path(sFolder) / ("LCK.." + name));
    if (!process || *process == ::getpid() || !IsAlive(*process)) return {};
    return HolderFor(*process);
}

} // namespace qncomm
