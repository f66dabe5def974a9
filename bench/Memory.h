#pragma once

#include <fstream>
#include <unistd.h>

namespace qncomm::bench {

/// Kilobytes of this process in memory.
inline long ResidentKilobytes() {
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

} // namespace qncomm::bench
