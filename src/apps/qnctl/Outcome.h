#pragma once

#include "common/QNError.h"
#include "platform/SystemErrors.h"

#include <cerrno>
#include <cstdint>
#include <string>
#include <utility>

namespace qnctl {

/// What the program tells its caller by its exit status.
enum class ExitStatus : int {
    Done = 0,
    Error = 1,           ///< the system or the printer raised an error
    Usage = 2,           ///< the command line is wrong
    NoPrinter = 3,       ///< the port is there and no printer answered
    PortUnavailable = 4, ///< the port is busy, cannot be opened, or was lost
    Cancelled = 130,     ///< Ctrl-C
};

/// What the line was found to say, where that is the reason.
struct LineFinding {
    std::string state;    ///< one word, such as "text"; empty where the line is not the reason
    std::string settings; ///< at which it was heard, such as "9600,n,8,2"
};

/// How a command ended. Anything but Done is shown on the error stream; without a message the
/// command itself has told.
struct Outcome {
    ExitStatus status = ExitStatus::Done;
    std::int32_t number = 0; ///< 0 when it is not one of the system's errors
    std::string source;
    std::string message;
    std::string place = {}; ///< "FILE:LINE" of a batch; empty elsewhere
    LineFinding line = {};

    bool Ok() const { return status == ExitStatus::Done; }
};

inline Outcome Refused(ExitStatus status, std::string message) {
    return {status, 0, "qnctl", std::move(message)};
}

/// An error of the system as the program reports it.
inline Outcome OutcomeOf(const qncomm::QNError& error) {
    constexpr std::int32_t firstOfPort = 8000; ///< below are files, such as a capture's
    const bool port = error.Source() == "PDQComm" && error.Number() >= firstOfPort;
    return {port ? ExitStatus::PortUnavailable : ExitStatus::Error, error.Number(), error.Source(),
            error.Description()};
}

inline Outcome Cancelled() {
    return Refused(ExitStatus::Cancelled, "Cancelled.");
}

/// The same with what is to be known of it; may be empty.
inline Outcome CancelledBut(const std::string& remark) {
    return Refused(ExitStatus::Cancelled, remark.empty() ? "Cancelled." : "Cancelled. " + remark);
}

/// The standard output took no more, for what the system said (errno). A reader that has left, as
/// "head" does when it has enough, knows that and is told nothing.
inline Outcome OutputLost(int error) {
    return Refused(ExitStatus::Error,
                   error == EPIPE ? "" : "Standard output: " + qncomm::SystemText(error) + ".");
}

} // namespace qnctl
