#include "StateFolder.h"

#include "platform/DurableFile.h"
#include "platform/FileOpening.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

namespace qnsim {
namespace {

constexpr char PlainMark = 'f';
constexpr char SystemMark = 's';
/// Bytes; beyond the memory of any model.
constexpr std::uint64_t LargestStateFile = 256U << 20U;
constexpr std::string_view SetupName = "setup.txt";

bool IsPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.'
           || c == '_' || c == '-';
}

/// A printer's file name as a name that any file system takes: a mark, then the name with every
/// unusual character as %XX.
std::string HostName(const std::string& name, bool system) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result{system ? SystemMark : PlainMark, '-'};
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsPlain(c)) {
            result += c;
        } else {
            result += {'%', digits[byte / 16U], digits[byte % 16U]};
        }
    }
    return result;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

struct PrinterName {
    std::string name;
    bool system;
};

std::optional<PrinterName> ReadHostName(const std::string& hostName) {
    if (hostName.size() < 3 || hostName[1] != '-') return std::nullopt;
    if (hostName[0] != PlainMark && hostName[0] != SystemMark) return std::nullopt;
    PrinterName result{{}, hostName[0] == SystemMark};
    for (std::size_t i = 2; i < hostName.size(); ++i) {
        if (hostName[i] != '%') {
            if (!IsPlain(hostName[i])) return std::nullopt;
            result.name += hostName[i];
            continue;
        }
        if (i + 2 >= hostName.size()) return std::nullopt;
        const int high = HexDigit(hostName[i + 1]);
        const int low = HexDigit(hostName[i + 2]);
        if (high < 0 || low < 0) return std::nullopt;
        result.name += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return result;
}

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
    std::string content;
    if (!qncomm::ReadWholeFile(path, {.limit = LargestStateFile}, content).Ok())
        return std::nullopt;
    return content;
}

} // namespace

std::string StateFolder::DeviceFolder(const Device& device) const {
    return mFolder + "/" + device.name.substr(0, device.name.size() - 1);
}

bool StateFolder::WriteFile(const std::string& path, const std::string& content) {
    // Until it is in place the file has a name that ReadHostName does not take for a printer's.
    const bool written = qncomm::ReplaceFile(path, content).Ok();
    mSound = mSound && written;
    return written;
}

bool StateFolder::SaveSetup(const SetupTree& setup) {
    return WriteFile(mFolder + "/" + std::string(SetupName), setup.Write());
}

bool StateFolder::Attach(Storage& storage, SetupTree& setup) {
    std::error_code unknown;
    const bool known = std::filesystem::exists(mFolder + "/" + std::string(SetupName), unknown);
    if (known && !Load(storage, setup)) return mSound = false;
    storage.OnChanged(
        [this](const Device& device, const std::string& name) { return Keep(device, name); });
    if (known) return true;
    for (const Device* device : storage.Devices()) {
        if (device->readOnly || device->isVolatile) continue;
        std::error_code error;
        std::filesystem::create_directories(DeviceFolder(*device), error);
        if (error) return mSound = false;
        for (const auto& [name, file] : device->files)
            Keep(*device, name);
    }
    // The setup is written last: a folder that has it is complete.
    return SaveSetup(setup) && mSound;
}

bool StateFolder::Load(Storage& storage, SetupTree& setup) {
    const auto text = ReadFile(mFolder + "/" + std::string(SetupName));
    if (!text || setup.Load(*text) != Error::None) return false;
    for (Device* device : storage.Devices()) {
        if (!device->readOnly && !device->isVolatile && !LoadDevice(storage, *device)) return false;
    }
    return true;
}

bool StateFolder::LoadDevice(Storage& storage, Device& device) {
    std::error_code error;
    std::filesystem::directory_iterator entry(DeviceFolder(device), error);
    if (error) return false;
    device.files.clear();
    device.used = 0;
    for (; entry != std::filesystem::directory_iterator() && !error; entry.increment(error)) {
        const auto name = ReadHostName(entry->path().filename().string());
        if (!name) continue;
        auto content = ReadFile(entry->path());
        if (!content) return false;
        storage.Install(device, name->name, {std::move(*content), name->system, true});
    }
    return !error;
}

bool StateFolder::Keep(const Device& device, const std::string& name) {
    if (device.readOnly || device.isVolatile) return true;
    const std::string folder = DeviceFolder(device) + "/";
    const auto file = device.files.find(name);
    const bool there = file != device.files.end();
    if (there && file->second.hidden) return true; // the permanent file stays as it is kept
    const bool permanent = there && file->second.permanent;
    bool kept = true;
    for (const bool system : {false, true}) {
        const std::string path = folder + HostName(name, system);
        std::error_code error;
        if (permanent && file->second.system == system)
            kept = WriteFile(path, file->second.content) && kept;
        else if (!std::filesystem::remove(path, error) && error)
            kept = false;
    }
    mSound = mSound && kept;
    return kept;
}

} // namespace qnsim
