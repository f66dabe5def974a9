#pragma once

#include "usage/Usage.h"

namespace CLI {
class App;
}

namespace qncomm {

/// What was declared for a command line, with all commands below.
Usage UsageOf(const CLI::App& app);

} // namespace qncomm
