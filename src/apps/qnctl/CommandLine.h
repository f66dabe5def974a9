#pragma once

#include "Command.h"
#include "GlobalOptions.h"

#include "usage/Usage.h"

#include <optional>
#include <string>

namespace qnctl {

/// What a command line asks for.
struct Request {
    GlobalOptions options;
    const Command* command = nullptr; ///< points into the table that was given
    std::optional<Outcome> ended;     ///< help was shown, or the line is wrong
};

/// Reads the program's arguments. A command's own arguments go where its row keeps them.
Request ParseCommandLine(int argc, const char* const* argv, const CommandTable& table);

/// What the help tells of the program and of all its commands.
qncomm::Usage UsageOf(const CommandTable& table);

} // namespace qnctl
