#include "serial/PortBindings.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace qncomm {
namespace {

/// Whether the address is this device, under its own name or by a link such as those in
/// /dev/serial/by-id.
bool IsDevice(const PortAddress& address, const std::string& path) {
    if (address.kind != &TtyKind) return false;
    if (address.text == path) return true;
    std::error_code error;
    const std::filesystem::path target = std::filesystem::canonical(address.text, error);
    return !error && target == path;
}

bool InRange(std::int16_t port) {
    return port >= 0 && port <= PortBindings::Highest;
}

} // namespace

std::string PortBindings::Give(std::int16_t iPort, std::string_view sAddress) {
    if (!InRange(iPort))
        return "port " + std::to_string(iPort) + " is out of range: 0 to "
               + std::to_string(Highest);
    PortAddressResult parsed = ParsePortAddress(sAddress, mKinds);
    if (!parsed.address) return parsed.error;
    Bind({iPort, std::move(*parsed.address), BindingSource::Given, {}});
    return {};
}

std::vector<std::string> PortBindings::AddSettings(const RegSettings& settings) {
    std::vector<std::string> warnings;
    for (std::int16_t port = 0; port <= Highest; ++port) {
        const std::string text = settings.ReadValue(Section, NameOfPort(port), "");
        if (text.empty()) continue;
        PortAddressResult parsed = ParsePortAddress(text, mKinds);
        if (parsed.address)
            Bind({port, std::move(*parsed.address), BindingSource::Settings, {}});
        else
            warnings.push_back(NameOfPort(port) + " in the settings: " + parsed.error);
    }
    return warnings;
}

void PortBindings::AddDevices(const std::vector<SerialDevice>& devices) {
    std::int16_t port = 1;
    for (const SerialDevice& device : devices) {
        const auto known = std::find_if(mBindings.begin(), mBindings.end(), [&](const auto& place) {
            return place && IsDevice(place->address, device.path);
        });
        if (known != mBindings.end()) {
            (*known)->description = device.description;
            continue;
        }
        while (port <= Highest && Find(port) != nullptr)
            ++port;
        if (port > Highest) return;
        PortAddress address{device.path, &TtyKind};
        Bind({port, std::move(address), BindingSource::Machine, device.description});
    }
}

bool PortBindings::Bind(PortBinding binding) {
    auto& place = mBindings[static_cast<std::size_t>(binding.number)];
    if (place && place->source < binding.source) return false;
    place = std::move(binding);
    return true;
}

void PortBindings::Forget(std::int16_t iPort) {
    if (InRange(iPort)) mBindings[static_cast<std::size_t>(iPort)].reset();
}

const PortBinding* PortBindings::Find(std::int16_t iPort) const {
    if (!InRange(iPort)) return nullptr;
    const auto& place = mBindings[static_cast<std::size_t>(iPort)];
    return place ? &*place : nullptr;
}

std::optional<std::int16_t> PortBindings::NumberOf(std::string_view sAddress) const {
    const auto found = std::find_if(mBindings.begin(), mBindings.end(), [&](const auto& place) {
        return place && place->address.text == sAddress;
    });
    if (found == mBindings.end()) return std::nullopt;
    return (*found)->number;
}

std::vector<PortBinding> PortBindings::List() const {
    std::vector<PortBinding> list;
    for (const auto& place : mBindings)
        if (place) list.push_back(*place);
    return list;
}

} // namespace qncomm
