#include "PortRefusal.h"

#include "serial/PortAddress.h"

namespace qnctl {
namespace {

using qncomm::PortProblem;

/// The ways to name a port, for a command line that named none or a wrong one.
std::string Choices(const qncomm::PortBindings& bindings) {
    std::string text = "\nName a port with --port:";
    for (const qncomm::PortBinding& port : bindings.List()) {
        text += "\n  --port " + port.address.text;
        if (port.number > 0) text += "   (" + qncomm::NameOfPort(port.number) + ")";
        if (!port.description.empty()) text += "   " + port.description;
    }
    text += "\n  --port /dev/ttyUSB0   a serial device"
            "\n  --port tcp://HOST:PORT   a device server"
            "\n  --port sim:R7G   the virtual printer, in this process"
            "\n\"qnctl connect --port ADDRESS --remember\" makes one the configured port.";
    return text;
}

} // namespace

Outcome WhyNot(const qncomm::ChosenPort& none, const std::string& sNamed,
               const qncomm::PortBindings& bindings) {
    switch (none.problem) {
    case PortProblem::NoAddress:
        return Refused(ExitStatus::Usage, "--port " + none.message);
    case PortProblem::NoSuchNumber:
        return Refused(ExitStatus::Usage, "--port " + none.message + Choices(bindings));
    case PortProblem::Unbound:
        if (!sNamed.empty()) return Refused(ExitStatus::Usage, none.message + Choices(bindings));
        return Refused(ExitStatus::PortUnavailable,
                       "The configured port " + none.message + Choices(bindings));
    default:
        return Refused(ExitStatus::Usage, "No port is configured." + Choices(bindings));
    }
}

} // namespace qnctl
