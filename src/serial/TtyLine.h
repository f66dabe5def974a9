#pragma once

#include "serial/LineSettings.h"

#include <string>
#include <termios.h>

namespace qncomm {

/// The terminal attributes for a line that carries bytes unchanged. VMIN and VTIME are set too: the
/// last user's would make a silent line look like a lost device.
termios AttributesFor(const LineSettings& settings);

/// What a device did not take of the attributes that it was given, such as "7 data bits"; empty
/// when it took all.
std::string RefusedPart(const termios& wanted, const termios& got);

} // namespace qncomm
