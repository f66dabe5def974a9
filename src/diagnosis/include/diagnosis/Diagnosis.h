#pragma once

#include "diagnosis/Check.h"
#include "diagnosis/LineFacts.h"
#include "diagnosis/MachineFacts.h"

#include <optional>
#include <string>

namespace qncomm {

/// All that was found of one port.
struct Examined {
    std::string port;                    ///< its address; empty when none was named or configured
    std::optional<MachineFacts> machine; ///< of a device of this machine, or of the machine alone
                                         ///< when there is no port
    std::optional<LineFacts> line;       ///< nothing when there is no port
};

/// How a command that needs the printer would end on such a port; the numbers are exit statuses.
enum class CommandEnd : int {
    Healthy = 0,         ///< it would be carried out
    Error = 1,           ///< the printer answers, and not as it should
    Usage = 2,           ///< there is no port to work on
    NoPrinter = 3,       ///< the port opens and no printer answers
    PortUnavailable = 4, ///< the port does not open, or is lost
};

/// What a diagnosis comes to.
struct Verdict {
    std::string name;                     ///< one word for scripts, such as "healthy" or "busy"
    CommandEnd end = CommandEnd::Healthy; ///< what it means for a command
    std::string text;                     ///< what is wrong, as a sentence or two
    std::string command;                  ///< what cures it, or shows that it is cured
    bool fixable = false;                 ///< LineExamination::Fix can do it
};

/// The rows of a diagnosis: the machine first, then the line.
Checks ChecksOf(const Examined& examined);

/// What it comes to: the first cause that explains why no printer answers.
Verdict VerdictOf(const Examined& examined);

/// A word as a shell takes it: in quotes where it needs them.
std::string ShellWord(const std::string& sText);

} // namespace qncomm
