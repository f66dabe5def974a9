#pragma once

#include "Outcome.h"

#include <functional>
#include <string>

namespace qnctl {

class Session;

/// Runs a transfer of a file with its progress, and tells, when it failed, why the line's side
/// thinks so. With resume an earlier try is gone on with.
Outcome CarryTransfer(Session& session, bool resume, const std::function<void()>& transfer);

/// Sends a file of this machine to a connected printer under a name there (in its bytes).
Outcome SendByKermit(Session& session, const std::string& hostFile, const std::string& name,
                     bool resume);

/// Fetches a file of a connected printer (its name in the printer's bytes) to this machine. What
/// the printer does not list is told before anything travels.
Outcome FetchByKermit(Session& session, const std::string& name, const std::string& hostFile,
                      bool resume);

} // namespace qnctl
