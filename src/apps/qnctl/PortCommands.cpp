#include "Command.h"
#include "Session.h"

#include "serial/PortAddress.h"
#include "serial/PortListing.h"

namespace qnctl {
namespace {

using qncomm::PortListing;

Json DocumentOf(const PortListing& port, bool configured) {
    return {{"number", port.binding.number},
            {"address", port.binding.address.text},
            {"source", NameOf(port.binding.source)},
            {"state", NameOf(port.state)},
            {"detail", port.detail},
            {"description", port.binding.description},
            {"configured", configured}};
}

Output::Row RowOf(const PortListing& port, bool configured) {
    std::string detail = port.detail;
    if (detail.empty()) detail = port.binding.description;
    return {(configured ? "* " : "  ") + qncomm::NameOfPort(port.binding.number),
            port.binding.address.text, NameOf(port.state), NameOf(port.binding.source), detail};
}

Outcome ListThePorts(Session& session) {
    const auto configured = session.Ports().ConfiguredNumber();
    const auto ports = qncomm::ListPorts(session.Ports().Bindings());
    const Output& out = session.Out();
    if (out.IsJson()) {
        Json list = Json::array();
        for (const PortListing& port : ports)
            list.push_back(DocumentOf(port, configured == port.binding.number));
        out.Document({{"ports", list}, {"settings", session.Store().Path()}});
        return {};
    }
    if (ports.empty()) out.Line("This machine has no serial ports, and the settings bind none.");
    std::vector<Output::Row> rows{{"  PORT", "ADDRESS", "STATE", "FROM", "DEVICE"}};
    for (const PortListing& port : ports)
        rows.push_back(RowOf(port, configured == port.binding.number));
    if (!ports.empty())
        out.Table(std::vector<Output::Align>(rows.front().size(), Output::Align::Left), rows);
    out.Line("");
    out.Line(configured ? "* is the configured port; --port ADDRESS names another for one run."
                        : "No port is configured: name one with --port ADDRESS.");
    out.Line("The virtual printer is always there: --port sim:R7G");
    return {};
}

} // namespace

CommandTable PortCommands() {
    return {{"ports",
             "List the serial ports and what they stand for",
             Needs::Nothing,
             {},
             ListThePorts}};
}

} // namespace qnctl
