#pragma once

#include "qncomm/qncomm.h"
#include "serial/PortAddress.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace qncomm::bindings {

/// A line that functions of the host serve, with what they are called with.
struct LineOfHost {
    qn_line_functions functions; ///< those that may be missing are null
    void* user;
};

/// The lines that a host has given to one control, by their addresses.
class HostLines {
  public:
    /// Keeps a line and returns its address, which no other line has had.
    std::string Add(const qn_line_functions& functions, void* user);
    /// The channel of an address: one of these lines, or what else the address says. The reactor
    /// outlives it.
    std::unique_ptr<ByteChannel> Make(const PortAddress& address, Reactor& reactor) const;

  private:
    std::map<std::string, LineOfHost, std::less<>> mLines;
};

/// All kinds of addresses, those of a host's own lines among them.
ChannelKinds KindsWithHostLines();

} // namespace qncomm::bindings
