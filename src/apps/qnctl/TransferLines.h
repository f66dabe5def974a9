#pragma once

#include "Output.h"

#include "console/TransferProgress.h"

namespace qnctl {

class Session;

/// Writes each reading as an object on a line of its own where results are to be JSON; empty
/// elsewhere.
qncomm::TransferProgress::Report ProgressLines(Session& session);

/// The last line of a successful transfer.
Json ResultLine(const qncomm::TransferProgress& progress);

} // namespace qnctl
