#pragma once

#include "platform/Fd.h"
#include "platform/IoResult.h"

#include <string>

namespace qncomm {

/// Opens a tty and locks it for this program, without changing it: the lock file of another program
/// is respected, and so is its exclusive use. fd owns it on success.
IoResult ClaimTty(const std::string& sPath, Fd& fd);

/// Whether ClaimTty would succeed; leaves the tty closed.
IoResult ProbeTty(const std::string& sPath);

} // namespace qncomm
