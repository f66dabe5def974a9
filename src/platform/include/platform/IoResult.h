#pragma once

#include <string>

namespace qncomm {

/// How an operation on a device, a line or a file ended.
enum class IoStatus {
    Done,        ///< as it was asked
    Missing,     ///< there is no such device, host or model
    Busy,        ///< another program holds it
    Denied,      ///< this user may not open it
    Unsupported, ///< the device does not take these settings
    TimedOut,    ///< no answer within the time limit
    Lost,        ///< it was open and went away: unplugged, reset, closed by the other side
    Failed,      ///< any other error of the system
};

/// The outcome as a value: what the program acts on, the system's number and a text for the user.
struct [[nodiscard]] IoResult {
    IoStatus status = IoStatus::Done; ///< what the program acts on
    int systemNumber = 0;             ///< errno, 0 when the system gave none
    std::string text;                 ///< without a final period; empty when done

    /// Whether it was done.
    bool Ok() const { return status == IoStatus::Done; }
};

/// "busy", "missing"…: the status as a word for listings and JSON.
const char* NameOf(IoStatus status);

} // namespace qncomm
