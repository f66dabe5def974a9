#pragma once

#include <sys/resource.h>
#include <sys/types.h>
#include <unistd.h>

namespace qncomm::testing {

/// A printer is a machine of its own, which answers in time whatever the host's machine has to do:
/// the thread of that number, or a new program's, goes before what keeps this machine busy, where
/// the user may arrange that.
inline void MakeMachineOfItsOwn(pid_t thread = ::gettid()) {
    constexpr int first = -15; // of nice
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(thread), first);
}

} // namespace qncomm::testing
