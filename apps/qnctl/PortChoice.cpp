#include "PortChoice.h"

#include "common/Numbers.h"
#include "common/QNError.h"
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

PortChoice Bound(std::int16_t number, const PortBindings& bindings, bool configured) {
    PortChoice choice;
    choice.number = number;
    choice.configured = configured;
    choice.address = bindings.Find(number)->address.text;
    return choice;
}

PortChoice ChooseNumber(std::int16_t number, PortBindings& bindings) {
    const PortBinding* binding = bindings.Find(number);
    if (binding == nullptr)
        return Usage(NameOfPort(number) + " stands for no address.\n" + Choices(bindings));
    // The system's port numbers begin at 1 where one is chosen, so port 0 works under another.
    if (number > 0) return Bound(number, bindings, false);
    const std::string address = binding->address.text;
    bindings.Give(PortBindings::Highest, address);
    return Bound(PortBindings::Highest, bindings, false);
}

PortChoice ChooseAddress(const std::string& address, PortBindings& bindings) {
    const auto known = bindings.NumberOf(address);
    if (known && *known > 0) return Bound(*known, bindings, false);
    std::int16_t free = PortBindings::Highest;
    while (free > 1 && bindings.Find(free) != nullptr)
        --free;
    if (bindings.Find(free) != nullptr) free = PortBindings::Highest;
    if (const std::string wrong = bindings.Give(free, address); !wrong.empty())
        return Usage("--port " + address + ": " + wrong);
    return Bound(free, bindings, false);
}

bool LooksLikeNumber(const std::string& text) {
    return text.find_first_not_of("0123456789-") == std::string::npos;
}

} // namespace

PortBindings BindPorts(const qncomm::RegSettings& settings, std::string& sWarnings) {
    PortBindings bindings;
    for (const std::string& line : bindings.AddSettings(settings))
        sWarnings += line + "\n";
    bindings.AddDevices(qncomm::FindSerialDevices());
    return bindings;
}

std::optional<std::int16_t> ConfiguredPort(const qncomm::RegSettings& settings,
                                           const PortBindings& bindings) {
    try {
        const std::string stored = settings.ReadValue("Settings", "Commport", "");
        const std::int16_t number = qncomm::ToInt16(qncomm::Val(stored));
        if (number >= 1 && number <= PortBindings::Highest) return number;
    } catch (const qncomm::QNError&) { // NOLINT(bugprone-empty-catch): no number, so none is stored
    }
    for (const PortBinding& port : bindings.List())
        if (port.number > 0 && port.source == qncomm::BindingSource::Settings) return port.number;
    return std::nullopt;
}

PortChoice ChoosePort(const std::string& sNamed, const qncomm::RegSettings& settings,
                      PortBindings& bindings) {
    const auto configured = ConfiguredPort(settings, bindings);
    if (!sNamed.empty()) {
        const auto number = qncomm::ParsePortNumber(sNamed);
        if (!number && LooksLikeNumber(sNamed))
            return Usage("--port " + sNamed + ": port numbers go from 0 to 16.\n"
                         + Choices(bindings));
        PortChoice choice =
            number ? ChooseNumber(*number, bindings) : ChooseAddress(sNamed, bindings);
        choice.configured = choice.outcome.Ok() && configured == choice.number;
        return choice;
    }
    if (!configured) return Usage("No port is configured.\n" + Choices(bindings));
    if (bindings.Find(*configured) == nullptr) {
        PortChoice choice;
        choice.outcome =
            Refused(ExitStatus::PortUnavailable, "The configured port " + NameOfPort(*configured)
                                                     + " stands for no address: its device is not "
                                                       "there.\n"
                                                     + Choices(bindings));
        return choice;
    }
    return Bound(*configured, bindings, true);
}

} // namespace qnctl
