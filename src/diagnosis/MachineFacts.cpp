#include "diagnosis/MachineFacts.h"

#include "KernelMessages.h"
#include "platform/FileOpening.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <sys/stat.h>
#include <system_error>

namespace qncomm {
namespace {

namespace fs = std::filesystem;

using Strings = std::vector<std::string>;
using Number = unsigned long;

std::string ContentOf(const fs::path& file) {
    constexpr std::uint64_t most = 16U << 20U;
    std::string content;
    static_cast<void>(ReadWholeFile(file, {.limit = most}, content));
    return content;
}

Strings Split(const std::string& text, char at) {
    Strings parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, at);)
        parts.push_back(part);
    return parts;
}

std::optional<Number> NumberOf(std::string_view text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// Who runs this program, as the system keeps it for the process.
struct Identity {
    Number user = 0;
    std::vector<Number> groups;

    bool Holds(Number group) const { return std::ranges::find(groups, group) != groups.end(); }
};

Identity ReadIdentity(const fs::path& root) {
    Identity identity;
    std::istringstream status(ContentOf(root / "proc/self/status"));
    for (std::string line; std::getline(status, line);) {
        std::istringstream words(line);
        std::string name;
        words >> name;
        std::vector<Number> numbers{std::istream_iterator<Number>(words), {}};
        const bool whole = numbers.size() > 1; // real and effective one, and two more
        if (name == "Uid:" && whole) identity.user = numbers[1];
        if (name == "Gid:" && whole) identity.groups.push_back(numbers[1]);
        if (name == "Groups:")
            identity.groups.insert(identity.groups.end(), numbers.begin(), numbers.end());
    }
    return identity;
}

/// The entry of that number in passwd or group, whose lines have the number in their third field.
Strings EntryOf(const fs::path& file, Number number) {
    for (const std::string& line : Split(ContentOf(file), '\n')) {
        Strings fields = Split(line, ':');
        if (fields.size() > 2 && NumberOf(fields[2]) == number) return fields;
    }
    return {std::to_string(number)};
}

bool Lists(const Strings& groupEntry, const std::string& user) {
    if (groupEntry.size() < 4) return false;
    const Strings members = Split(groupEntry[3], ',');
    return std::ranges::find(members, user) != members.end();
}

void ReadAccess(const fs::path& root, const struct stat& device, MachineFacts& facts) {
    const Identity identity = ReadIdentity(root);
    const Strings group = EntryOf(root / "etc/group", device.st_gid);
    facts.user = EntryOf(root / "etc/passwd", identity.user).front();
    facts.group = group.front();
    const auto may = [&](mode_t read, mode_t write) {
        return (device.st_mode & read) != 0 && (device.st_mode & write) != 0;
    };
    const bool granted = identity.user == 0
                         || (identity.user == device.st_uid  ? may(S_IRUSR, S_IWUSR)
                             : identity.Holds(device.st_gid) ? may(S_IRGRP, S_IWGRP)
                                                             : may(S_IROTH, S_IWOTH));
    if (granted)
        facts.access = DeviceAccess::Granted;
    else if (!may(S_IRGRP, S_IWGRP) || identity.Holds(device.st_gid))
        facts.access = DeviceAccess::NobodyOfGroup;
    else
        facts.access =
            Lists(group, facts.user) ? DeviceAccess::NotYetInGroup : DeviceAccess::NotInGroup;
}

/// A kind of service: the processes' names that it is known by, and what it does to a port.
struct ServiceKind {
    std::string_view process;
    bool onlyNamed; ///< concerns the port alone that its command line names
    const char* does;
    const char* cure; ///< "%" stands for the device's name
};

constexpr std::array ServiceKinds{
    ServiceKind{"ModemManager", false, "types on new USB serial ports to find modems",
                "sudo systemctl stop ModemManager"},
    ServiceKind{"brltty", false, "takes USB serial adapters for braille displays",
                "sudo systemctl mask --now brltty brltty-udev"},
    ServiceKind{"agetty", true, "asks for a login on this port",
                "sudo systemctl stop serial-getty@%"},
    ServiceKind{"getty", true, "asks for a login on this port",
                "sudo systemctl stop serial-getty@%"},
    ServiceKind{"mgetty", true, "waits for calls on this port", "sudo systemctl stop mgetty@%"},
    ServiceKind{"pppd", true, "keeps a connection on this port", "sudo killall pppd"},
    ServiceKind{"gpsd", true, "reads this port for a satellite receiver",
                "sudo systemctl stop gpsd.socket gpsd"},
};

std::string Filled(std::string pattern, const std::string& name) {
    const std::size_t at = pattern.find('%');
    return at == std::string::npos ? pattern : pattern.replace(at, 1, name);
}

bool Names(const fs::path& process, const std::string& device) {
    const Strings words = Split(ContentOf(process / "cmdline"), '\0');
    return std::ranges::any_of(
        words, [&](const std::string& word) { return word == device || word == "/dev/" + device; });
}

std::optional<PortService> ServiceOf(const fs::path& process, const std::string& device) {
    const Strings comm = Split(ContentOf(process / "comm"), '\n');
    if (comm.empty()) return std::nullopt;
    const auto* const kind = std::ranges::find_if(
        ServiceKinds, [&](const ServiceKind& known) { return known.process == comm.front(); });
    if (kind == ServiceKinds.end()) return std::nullopt;
    const bool usb = device.starts_with("ttyUSB") || device.starts_with("ttyACM");
    if (kind->onlyNamed ? !Names(process, device) : !usb) return std::nullopt;
    return PortService{comm.front(), kind->does, Filled(kind->cure, device), kind->onlyNamed};
}

void ReadServices(const fs::path& proc, MachineFacts& facts) {
    std::error_code error;
    fs::directory_iterator entry(proc, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        if (NumberOf(entry->path().filename().string()))
            if (auto service = ServiceOf(entry->path(), facts.name))
                facts.services.push_back(std::move(*service));
    // The first process is seen by whoever sees the others' at all.
    facts.servicesSeen = !ContentOf(proc / "1/comm").empty();
}

/// The device's name behind all links, without the folder of devices.
std::string NameBehind(const fs::path& path, const fs::path& dev) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    const std::string text = (error ? path : real).string();
    const std::string folder = (error ? dev : fs::canonical(dev, error)).string() + "/";
    return text.starts_with(folder) ? text.substr(folder.size()) : text;
}

} // namespace

MachineFacts ReadMachine(const std::string& sPath, const std::string& sRoot) {
    const fs::path root = sRoot.empty() ? fs::path("/") : fs::path(sRoot);
    const fs::path path = sRoot.empty() ? fs::path(sPath) : fs::path(sRoot + sPath);
    const DeviceFolders folders{(root / "sys/class/tty").string(), (root / "dev").string()};
    MachineFacts facts;
    facts.path = sPath;
    facts.name = NameBehind(path, folders.dev);
    struct stat device {};
    facts.exists = ::stat(path.c_str(), &device) == 0;
    if (facts.exists) {
        ReadAccess(root, device, facts);
        facts.users = FindPortUsers(path.string(), (root / "proc").string());
        facts.adapter = FindUsbAdapter(facts.name, folders);
    }
    ReadServices(root / "proc", facts);
    facts.messages = ReadKernelMessages((root / "dev/kmsg").string(), facts.name);
    facts.devices = FindSerialDevices(folders);
    return facts;
}

} // namespace qncomm
