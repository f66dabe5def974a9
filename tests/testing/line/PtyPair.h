#pragma once

#include "platform/Fd.h"

#include <string>

namespace qncomm::testing {

/// A new pseudo-terminal: the master's descriptor, not blocking, and the slave's path.
struct PtyPair {
    Fd master;
    std::string path;
};

PtyPair OpenPty();

} // namespace qncomm::testing
