#pragma once

// Where a host reaches the printer from outside the process.

#include "endpoints/HostAction.h"
#include "platform/Reactor.h"
#include "simulator/VirtualPrinter.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

/// One place that hosts come to, one after the other. Failures are values: an endpoint that cannot
/// be opened says so once, and a host that goes away is a state, not an error. It watches its
/// descriptors on the loop that it was opened with and ends before that.
class Endpoint {
  public:
    virtual ~Endpoint() = default;

    /// How a host names it: a device path or an address.
    virtual std::string Address() const = 0;

    /// What is to end the loop's next sleep besides a host that comes or goes. input: bytes from
    /// the host are welcome; output: bytes for it are waiting.
    virtual void Want(bool input, bool output) = 0;

    /// Looks whether a host is there now; called after each sleep.
    virtual void Refresh() = 0;
    /// Whether a host is there, or has left bytes behind that Receive still gives out; as of the
    /// last Refresh, Receive or Write.
    virtual bool Connected() const = 0;

    /// What is known of the host's line settings.
    virtual LineFormat HostFormat() const = 0;

    /// What the host has done by now, in its order, from at most max bytes of the connection; empty
    /// when there is nothing or it left. All of it is carried out before the next Write.
    virtual std::vector<HostAction> Receive(std::size_t max) = 0;

    /// The modem lines as the printer holds them now.
    virtual void ShowLines(bool /*dsr*/, bool /*cts*/) {}
    /// What the host's receiver finds wrong with the bytes that are written next.
    virtual void ShowErrors(const HostErrors& /*errors*/) {}

    /// Writes what fits now and returns how many bytes that was.
    virtual std::size_t Write(std::string_view bytes) = 0;
};

/// An endpoint, or the reason why there is none: the system's number and a text for a person.
struct OpenedEndpoint {
    std::unique_ptr<Endpoint> endpoint; ///< null when it could not be opened
    int systemError = 0;                ///< errno of the failure, otherwise 0
    std::string error; ///< what could not be done and why; empty when all went well
};

} // namespace qnsim
