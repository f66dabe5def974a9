#include "serial/SerialDevices.h"

#include "platform/FileOpening.h"
#include "serial/ChannelKind.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <tuple>

namespace qncomm {
namespace {

namespace fs = std::filesystem;

/// Families in the order in which they get their numbers; any other comes behind them.
constexpr std::array<std::string_view, 3> Families{"ttyUSB", "ttyACM", "ttyS"};

std::string FirstLine(const fs::path& file) {
    constexpr std::uint64_t most = 4096; // bytes of an attribute
    std::string text;
    static_cast<void>(ReadWholeFile(file, {.limit = most}, text));
    return text.substr(0, text.find('\n'));
}

struct DeviceName {
    std::size_t rank = 0;
    std::string family;
    unsigned number = 0;
    std::string whole;

    auto Key() const { return std::tie(rank, family, number, whole); }
};

/// "ttyUSB12" cut into family and number; nothing for the consoles "tty1" and for other things.
std::optional<DeviceName> CutName(const std::string& name) {
    const std::size_t digits = name.find_last_not_of("0123456789") + 1;
    DeviceName cut{0, name.substr(0, digits), 0, name};
    if (!name.starts_with("tty") || digits == name.size() || digits == 3) return std::nullopt;
    std::from_chars(name.data() + digits, name.data() + name.size(), cut.number);
    const auto* const family = std::find(Families.begin(), Families.end(), cut.family);
    cut.rank = static_cast<std::size_t>(family - Families.begin());
    return cut;
}

/// A driver creates entries for places where no hardware was found; those have no device behind
/// them, or the type 0 of an absent UART.
bool HasHardware(const fs::path& entry) {
    std::error_code error;
    if (!fs::exists(entry / "device", error)) return false;
    return !fs::exists(entry / "type", error) || FirstLine(entry / "type") != "0";
}

/// What a USB adapter calls itself, its maker before it.
std::string Description(const std::optional<UsbAdapter>& adapter) {
    if (!adapter || adapter->maker.empty() || adapter->product.starts_with(adapter->maker))
        return adapter ? adapter->product : std::string();
    return adapter->maker + " " + adapter->product;
}

} // namespace

std::vector<SerialDevice> FindSerialDevices(const DeviceFolders& folders) {
    std::vector<DeviceName> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folders.tty, error)) {
        const auto name = CutName(entry.path().filename().string());
        if (name && HasHardware(entry.path())) names.push_back(*name);
    }
    std::sort(names.begin(), names.end(), [](const DeviceName& left, const DeviceName& right) {
        return left.Key() < right.Key();
    });
    std::vector<SerialDevice> devices;
    devices.reserve(names.size());
    for (const DeviceName& name : names)
        devices.push_back({(fs::path(folders.dev) / name.whole).string(),
                           Description(FindUsbAdapter(name.whole, folders))});
    return devices;
}

std::optional<UsbAdapter> FindUsbAdapter(const std::string& sName, const DeviceFolders& folders) {
    std::error_code error;
    fs::path folder = fs::canonical(fs::path(folders.tty) / sName / "device", error);
    // USB devices tell about themselves some folders above the port's own.
    for (int level = 0; level < 4 && !error && folder.has_relative_path(); ++level) {
        UsbAdapter adapter{FirstLine(folder / "idVendor"), FirstLine(folder / "idProduct"),
                           FirstLine(folder / "manufacturer"), FirstLine(folder / "product"),
                           FirstLine(folder / "serial")};
        if (!adapter.product.empty() || !adapter.vendorId.empty()) return adapter;
        folder = folder.parent_path();
    }
    return std::nullopt;
}

std::string FindUsbDevice(const std::string& sSerial, const DeviceFolders& folders) {
    if (sSerial.empty()) return {};
    for (const SerialDevice& device : FindSerialDevices(folders)) {
        const auto adapter = FindUsbAdapter(fs::path(device.path).filename().string(), folders);
        if (adapter && adapter->serial == sSerial) return device.path;
    }
    return {};
}

std::string DevicePathOf(const std::string& sAddress) {
    if (sAddress.starts_with(TtyKind.scheme)) return sAddress;
    if (!sAddress.starts_with(UsbKind.scheme)) return {};
    return FindUsbDevice(sAddress.substr(UsbKind.scheme.size()));
}

} // namespace qncomm
