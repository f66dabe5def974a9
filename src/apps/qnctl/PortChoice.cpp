#include "PortChoice.h"

#include "assembly/AllChannelKinds.h"
#include "serial/PortAddress.h"
#include "serial/SerialDevices.h"

namespace qnctl {
namespace {

using qncomm::PortBinding;
using qncomm::PortBindings;

std::string NameOfPort(std::int16_t number) {
    return "COM" + std::to_string(number);
}

/// The ways to name a port, for whoever named none or a wrong one.
std::string Choices(const PortBindings& bindings) {
    std::string text = "Name a port with --port:";
    for (const PortBinding& port : bindings.List()) {
        text += "\n  --port " + port.address.text;
        if (port.number > 0) text += "   (" + NameOfPort(port.number) + ")";
        if (!port.description.empty()) text += "   " + port.description;
    }
    text += "\n  --port /dev/ttyUSB0   a serial device"
            "\n  --port tcp://HOST:PORT   a device server"
            "\n  --port sim:R7G   the virtual printer, in this process"
            "\n\"qnctl connect --port ADDRESS --remember\" makes one the configured port.";
    return text;
}

PortChoice Usage(std::string message) {
    PortChoice choice;
    choice.outcome = Refused(ExitStatus::Usage, std::move(message));
    return choice;
}

PortChoice Bound(std::int16_t number, const PortBindings& bindings) {
    PortChoice choice;
    choice.number = number;
    choice.address = bindings.Find(number)->address.text;
    return choice;
}

PortChoice ChooseNumber(std::int16_t number, PortBindings& bindings) {
    const PortBinding* binding = bindings.Find(number);
    if (binding == nullptr)
        return Usage(NameOfPort(number) + " stands for no address.\n" + Choices(bindings));
    // The system's port numbers begin at 1 where one is chosen, so port 0 works under another.
    if (number > 0) return Bound(number, bindings);
    const std::string address = binding->address.text;
    bindings.Give(PortBindings::Highest, address);
    return Bound(PortBindings::Highest, bindings);
}

PortChoice ChooseAddress(const std::string& address, PortBindings& bindings) {
    const auto known = bindings.NumberOf(address);
    if (known && *known > 0) return Bound(*known, bindings);
    std::int16_t free = PortBindings::Highest;
    while (free > 1 && bindings.Find(free) != nullptr)
        --free;
    if (bindings.Find(free) != nullptr) free = PortBindings::Highest;
    if (const std::string wrong = bindings.Give(free, address); !wrong.empty())
        return Usage("--port " + address + ": " + wrong);
    return Bound(free, bindings);
}

bool LooksLikeNumber(const std::string& text) {
    return text.find_first_not_of("0123456789-") == std::string::npos;
}

/// The port number that the store holds, nothing when it holds none that can be chosen.
std::optional<std::int16_t> StoredPort(const qncomm::RegSettings& settings) {
    const auto number = qncomm::ParsePortNumber(settings.ReadValue("Settings", "Commport", ""));
    return number && *number >= 1 ? number : std::nullopt;
}

PortChoice ChooseNamed(const std::string& named, PortBindings& bindings) {
    const auto number = qncomm::ParsePortNumber(named);
    if (!number && LooksLikeNumber(named))
        return Usage("--port " + named + ": port numbers go from 0 to 16.\n" + Choices(bindings));
    return number ? ChooseNumber(*number, bindings) : ChooseAddress(named, bindings);
}

PortChoice ChooseConfigured(const qncomm::RegSettings& settings, PortBindings& bindings) {
    const auto number = ConfiguredPort(settings, bindings);
    if (!number) return Usage("No port is configured.\n" + Choices(bindings));
    if (bindings.Find(*number) != nullptr) return Bound(*number, bindings);
    PortChoice choice;
    choice.outcome =
        Refused(ExitStatus::PortUnavailable,
                "The configured port " + NameOfPort(*number)
                    + " stands for no address: its device is not there.\n" + Choices(bindings));
    return choice;
}

} // namespace

PortBindings BindPorts(const qncomm::RegSettings& settings, std::string& sWarnings) {
    PortBindings bindings(qncomm::AllChannelKinds());
    for (const std::string& line : bindings.AddSettings(settings))
        sWarnings += line + "\n";
    bindings.AddDevices(qncomm::FindSerialDevices());
    return bindings;
}

std::optional<std::int16_t> ConfiguredPort(const qncomm::RegSettings& settings,
                                           const PortBindings& bindings) {
    if (const auto stored = StoredPort(settings)) return stored;
    for (const PortBinding& port : bindings.List())
        if (port.number > 0 && port.source == qncomm::BindingSource::Settings) return port.number;
    return std::nullopt;
}

PortChoice ChoosePort(const std::string& sNamed, const qncomm::RegSettings& settings,
                      PortBindings& bindings) {
    PortChoice choice =
        sNamed.empty() ? ChooseConfigured(settings, bindings) : ChooseNamed(sNamed, bindings);
    choice.stored = choice.outcome.Ok() && StoredPort(settings) == choice.number;
    return choice;
}

} // namespace qnctl
