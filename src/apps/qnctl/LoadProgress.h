#pragma once

#include "Outcome.h"

#include <functional>
#include <string>

namespace qnctl {

class Session;

/// Runs an operation that loads a file into the printer: the status line shows rate and time left,
/// a pipe gets a line for each tenth, and with --json each reading is a document.
Outcome CarryLoad(Session& session, const std::function<void()>& load);

/// Why the printer does not hear its next command; empty when it does.
std::string StillDeaf(Session& session);

} // namespace qnctl
