#pragma once

#include "serial/ChannelKind.h"
#include "serial/PortBindings.h"

#include <string>
#include <vector>

namespace qncomm {

/// One row of a list of ports.
struct PortListing {
    PortBinding binding;               ///< the number and the address
    PortState state = PortState::Free; ///< as it was when the list was made
    std::string detail;                ///< who holds it, or why it does not open; empty when free
};

/// The bound ports with their states. Opens and closes ttys that are free, connects to nothing.
std::vector<PortListing> ListPorts(const PortBindings& bindings);

/// "free", "busy"…: the state as a word for listings and JSON.
const char* NameOf(PortState state);
/// "given", "settings" or "machine": the source as a word for listings and JSON.
const char* NameOf(BindingSource source);

} // namespace qncomm
