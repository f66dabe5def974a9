#pragma once

#include "printer/clsPrinterSetupItem.h"

#include <string_view>

namespace qncomm {

/// The item of one line of a setup listing: a leading "#" is dropped, what stands after the last
/// comma is the value, both sides are trimmed. Raises 5 for a line without a comma.
clsPrinterSetupItem ParseSetupLine(std::string_view sLine);

} // namespace qncomm
