#pragma once

// What a host does at its end of the line.

#include "simulator/LineFormat.h"

#include <string>

namespace qnsim {

struct HostAction {
    enum class Kind {
        Bytes,        ///< sends text
        Format,       ///< has set its line to format
        Lines,        ///< holds DTR and RTS as told
        Break,        ///< begins a break
        DropSent,     ///< takes back what has not reached the printer
        DropReceived, ///< drops what the printer has sent and the host has not got
    };
    Kind kind = Kind::Bytes;
    std::string text;
    LineFormat format;
    bool dtr = true;
    bool rts = true;
};

} // namespace qnsim
