#pragma once

#include "Identity.h"

#include <cstdint>
#include <string>

namespace qncomm {

/// What the store holds of the printer that answered last on one port.
struct RememberedPrinter {
    std::int16_t channel = 0; ///< the printer's channel that the host is wired to; 0: none answered
    PrinterIdentity identity; ///< empty texts where nobody has asked yet
};

/// A load that was begun on a port and of whose end nobody knows.
struct LoadNote {
    std::uintmax_t bytes = 0; ///< of its content; 0: there is no such load
    std::string undo;         ///< the line that deletes what came of it; empty for none
};

/// What has come of speaking to the remembered printer.
enum class Meeting {
    Met,       ///< it has answered, and is in the modes that the exchange relies on
    NotMet,    ///< nothing is remembered, or it is to be searched for
    Cancelled, ///< a handler of StatusEvent wants no search
    Taken,     ///< the line came back without an answer: nothing more is to be typed
};

} // namespace qncomm
