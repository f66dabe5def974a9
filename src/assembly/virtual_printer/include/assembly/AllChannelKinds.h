#pragma once

#include "serial/ChannelKind.h"

namespace qncomm {

/// The virtual printer inside the program: "sim:MODEL?options". Each channel is a printer of its
/// own, which stays on while the channel is closed.
extern const ChannelKind VirtualPrinterKind;

/// The kinds that lead out of the program, and the virtual printer.
ChannelKinds AllChannelKinds();

} // namespace qncomm
