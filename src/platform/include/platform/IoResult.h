#pragma once

#include <string>

namespace qncomm {

/// How an operation of a byte channel ended.
enum class IoStatus {
    Done,
    Missing,     ///< there is no such device, host or model
    Busy,        ///< another program holds it
    Denied,      ///< this user may not open it
    Unsupported, ///< the device does not take these settings
    TimedOut,
    Lost,   ///< it was open and went away: unplugged, reset, closed by the other side
    Failed, ///< any other error of the system
};

/// The outcome as a value: what the program acts on, the system's number and a text for the person.
struct IoResult {
    IoStatus status = IoStatus::Done;
    int systemNumber = 0; ///< errno, 0 when the system gave none
    std::string text;     ///< without a final period; empty when done

    bool Ok() const { return status == IoStatus::Done; }
};

/// "busy", "missing"…: the status as a word for listings and JSON.
const char* NameOf(IoStatus status);

} // namespace qncomm
