#pragma once

#include "platform/Fd.h"
#include "platform/IoResult.h"

#include <string>

namespace qncomm {

/// Opens a tty and locks it for this program, without changing it: the lock file of another program
/// is respected, and so are its exclusive use and its mark on the device, which with bReserved is
/// the caller's own. fd owns it on success.
IoResult ClaimTty(const std::string& sPath, Fd& fd, bool bReserved = false);

/// Whether ClaimTty would succeed; leaves the tty closed.
IoResult ProbeTty(const std::string& sPath, bool bReserved = false);

} // namespace qncomm
