#pragma once

#include <string>
#include <vector>

namespace qncomm::bench {

/// A name and some megabytes of what a terminal is sent; the same on every run.
struct Workload {
    const char* name;
    std::string bytes;
};

std::vector<Workload> Workloads();

} // namespace qncomm::bench
