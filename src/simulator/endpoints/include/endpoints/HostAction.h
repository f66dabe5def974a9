#pragma once

// What a host does at its end of the line.

#include "simulator/LineFormat.h"

#include <string>

namespace qnsim {

/// One thing that a host did. Which of the fields count is said at the kinds.
struct HostAction {
    /// What it did.
    enum class Kind {
        Bytes,        ///< sends text
        Format,       ///< has set its line to format
        Lines,        ///< holds DTR and RTS as told
        Break,        ///< begins a break
        DropSent,     ///< takes back what has not reached the printer
        DropReceived, ///< drops what the printer has sent and the host has not got
    };
    Kind kind = Kind::Bytes; ///< what it did
    std::string text;        ///< the bytes that it sent
    LineFormat format;       ///< its settings from now on
    bool dtr = true;         ///< Lines: whether it holds DTR
    bool rts = true;         ///< Lines: whether it holds RTS
};

} // namespace qnsim
