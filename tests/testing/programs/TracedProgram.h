#pragma once

#include <functional>
#include <string>
#include <vector>

namespace qncomm::testing {

/// How a traced program ended.
struct TracedEnd {
    bool killed = false; ///< by the one who watched it
    int status = 0;      ///< its exit status, or 1000 and the signal's number
    long calls = 0;      ///< the system calls that it has begun
};

/// Called before each system call that a traced program makes, all its threads counted together
/// from 1; the program stands still meanwhile. True kills it before the call is carried out.
using BeforeCall = std::function<bool(long lCall)>;

/// Runs a program to its end under the system's tracing, without input and with its output thrown
/// away. Throws when the system does not trace.
TracedEnd RunTraced(const std::vector<std::string>& command, const BeforeCall& before);

} // namespace qncomm::testing
