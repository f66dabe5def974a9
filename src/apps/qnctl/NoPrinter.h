#pragma once

#include "Outcome.h"

#include "link/SearchReport.h"

#include <string>

namespace qnctl {

/// Where a search has looked.
struct SearchedPort {
    std::string name;    ///< such as "COM3 (/dev/ttyUSB0)"
    std::string address; ///< as --port takes it
};

/// Why a search found no printer and what can be done: nobody answers, something talks that was
/// left alone, or what answers cannot be read. Status 3.
Outcome WhyNoPrinter(qncomm::SearchReport report, const SearchedPort& port);

} // namespace qnctl
