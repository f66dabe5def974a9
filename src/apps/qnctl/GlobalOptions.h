#pragma once

#include "console/ConsoleDesktop.h"

#include <string>

namespace qnctl {

/// The options that every command takes.
struct GlobalOptions {
    std::string port;     ///< an address or a port number; empty = the configured port
    std::string settings; ///< the settings file; empty = the user's own
    std::string trace;    ///< where to write what travels on the line; empty = nowhere
    std::string labels;   ///< the virtual printer's pictures of labels; empty = none
    bool json = false;
    bool quiet = false;
    bool yes = false;
    bool no = false;
    bool interrupt = false; ///< ends a running program before the printer is spoken to
    bool listen = true;     ///< nothing is typed where something talks

    qncomm::GivenAnswer Answer() const {
        if (yes) return qncomm::GivenAnswer::Yes;
        return no ? qncomm::GivenAnswer::No : qncomm::GivenAnswer::None;
    }
};

} // namespace qnctl
