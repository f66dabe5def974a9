#pragma once

#include "Command.h"

#include "control/QNComm.h"
#include "printer/clsQuorin.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qnctl {

/// An argument that is one text.
struct TextArgument {
    std::string name;
    std::string help;
    bool ofThisMachine = false; ///< a path here; otherwise a text for the printer
};

/// The arguments' values in their order: paths of this machine as they are, texts for the printer
/// in its bytes.
using Texts = std::vector<std::string>;

/// A command whose arguments are texts, whose work is one call of the control, and which says
/// nothing when it is done (as JSON: {"done":true}).
Command PlainCommand(std::string name, std::string help, const std::vector<TextArgument>& arguments,
                     std::function<void(qncomm::QNComm&, const Texts&)> work);

/// A text of the command line in the printer's bytes; nothing, with the outcome set, when a
/// character has none.
std::optional<std::string> ForPrinter(const std::string& text, Outcome& outcome);

/// Ends a command that has nothing to show.
Outcome Done(Session& session);

} // namespace qnctl
