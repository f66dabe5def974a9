#pragma once

#include "link/LiveState.h"

#include <optional>
#include <string>
#include <vector>

namespace qncomm {

/// What a reply says whose lines are the echo, VERSION$(0), VERSION$(1) and "Ok"; nothing for a
/// reply of another form.
std::optional<PrinterIdentity> IdentityIn(const std::vector<std::string>& reply);

} // namespace qncomm
