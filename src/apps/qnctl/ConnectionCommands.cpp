#include "Command.h"
#include "Session.h"

#include "common/Numbers.h"
#include "common/QNError.h"
#include "console/Charset.h"
#include "serial/PortAddress.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

namespace qnctl {
namespace {

using qncomm::clsDataLink;

struct ConnectArguments {
    bool allPorts = false;
    bool remember = false;
};

/// A whole number of the link's settings, which are texts.
std::int32_t NumberOf(const std::string& setting) {
    return qncomm::ToInt32(qncomm::Val(setting));
}

std::string FlowText(const clsDataLink& link) {
    static constexpr std::array<const char*, 4> names{"none", "Xon/Xoff", "RTS/CTS",
                                                      "RTS/CTS, Xon/Xoff"};
    return names[static_cast<std::size_t>(NumberOf(link.Flowcontrol())) & 3U];
}

void ShowConnection(Session& session) {
    const clsDataLink& link = session.Link();
    const std::string channel = "UART" + std::to_string(link.Stdio());
    if (session.Out().IsJson()) {
        session.Out().Document(
            {{"port", session.Port().lent ? Json() : Json(session.Port().number)},
             {"address", session.Port().address},
             {"channel", link.Stdio()},
             {"baudrate", NumberOf(link.Baudrate())},
             {"parity", link.Parity()},
             {"databits", NumberOf(link.Databits())},
             {"stopbits", NumberOf(link.Stopbits())},
             {"flowcontrol", NumberOf(link.Flowcontrol())}});
        return;
    }
    session.Out().Table({Output::Align::Left, Output::Align::Left},
                        {{"Port", session.PortName()},
                         {"Channel", channel},
                         {"Settings", link.SettingsText()},
                         {"Flow control", FlowText(link)}});
}

/// The serial devices and sockets that a search may try, nearest to the configured port first. A
/// virtual printer is never among them: it is used only when it is named.
std::vector<std::int16_t> SearchablePorts(Session& session) {
    std::vector<std::int16_t> numbers;
    for (const qncomm::PortBinding& port : session.Ports().Bindings().List())
        if (port.number > 0 && port.address.kind->searched) numbers.push_back(port.number);
    const int start = session.Ports().ConfiguredNumber().value_or(1);
    std::stable_sort(numbers.begin(), numbers.end(), [start](std::int16_t a, std::int16_t b) {
        return std::abs(a - start) < std::abs(b - start);
    });
    return numbers;
}

Outcome TryPort(Session& session) {
    try {
        return session.Connect();
    } catch (const qncomm::QNError& error) {
        return {ExitStatus::PortUnavailable, error.Number(), error.Source(), error.Description()};
    }
}

Outcome SearchAllPorts(Session& session) {
    Outcome last = Refused(ExitStatus::Usage, "There is no serial port to search.");
    std::optional<Outcome> talking; // the most that can be said where no printer answers
    for (const std::int16_t number : SearchablePorts(session)) {
        if (Outcome chosen = session.ChooseThePort(qncomm::NameOfPort(number)); !chosen.Ok())
            return chosen;
        session.Status().Show("Searching on " + session.PortName());
        last = TryPort(session);
        if (last.Ok() || last.status == ExitStatus::Cancelled) return last;
        session.Status().Show(last.message);
        if (!last.line.state.empty() && !talking) talking = last;
    }
    if (talking) return *talking;
    // Ports that could not be opened are no answer to where the printer is.
    if (last.status != ExitStatus::Usage)
        return Refused(ExitStatus::NoPrinter, "No printer answered on any port.");
    return last;
}

Outcome Connect(Session& session, const ConnectArguments& arguments) {
    session.ShowEveryStatus();
    Outcome found;
    if (arguments.allPorts) {
        found = SearchAllPorts(session);
    } else {
        found = session.ChooseThePort(session.Options().port);
        if (found.Ok()) found = session.Connect();
    }
    if (!found.Ok()) return found;
    if (arguments.allPorts || arguments.remember) session.Remember();
    ShowConnection(session);
    return {};
}

Outcome ShowIdentity(Session& session) {
    const std::string model = qncomm::Utf8FromPrinter(session.Control().PrinterType());
    const std::string firmware = qncomm::Utf8FromPrinter(session.Control().FirmwareVersion());
    const std::string number = session.Printer().FirmwareVersionNumber();
    const std::int16_t channel = session.Link().Stdio();
    if (session.Out().IsJson()) {
        session.Out().Document({{"model", model},
                                {"firmware", firmware},
                                {"firmwareNumber", number},
                                {"channel", channel},
                                {"address", session.Port().address},
                                {"settings", session.Link().SettingsText()}});
        return {};
    }
    session.Out().Table({Output::Align::Left, Output::Align::Left},
                        {{"Model", model},
                         {"Firmware", firmware},
                         {"Version", number},
                         {"Channel", "UART" + std::to_string(channel)},
                         {"Port", session.PortName() + " at " + session.Link().SettingsText()}});
    return {};
}

Outcome Reboot(Session& session) {
    session.Disconnect(); // the restart claims the port for itself
    session.Control().Reboot();
    if (session.Out().IsJson())
        session.Out().Document({{"rebooted", true}});
    else
        session.Out().Line("The printer has restarted and answers.");
    return {};
}

Command ConnectCommand() {
    const auto arguments = std::make_shared<ConnectArguments>();
    return {"connect", "Find the printer's settings on the port", Needs::Nothing,
            [arguments](CLI::App& app) {
                app.add_flag("--all-ports", arguments->allPorts,
                             "Search every serial port; the one found becomes the configured port");
                app.add_flag("--remember", arguments->remember,
                             "Make the port the configured port");
            },
            [arguments](Session& session) { return Connect(session, *arguments); }};
}

} // namespace

CommandTable ConnectionCommands() {
    return {
        ConnectCommand(),
        {"info", "Show the printer's model and firmware", Needs::Printer, {}, ShowIdentity},
        {"reboot", "Restart the printer and wait until it answers", Needs::Printer, {}, Reboot}};
}

} // namespace qnctl
