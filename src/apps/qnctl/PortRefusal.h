#pragma once

#include "Outcome.h"
#include "assembly/PortBook.h"

#include <string>

namespace qnctl {

/// Why a run has no port to work on, with the ways to name one. sNamed is what --port said, empty
/// when the configured port was asked for.
Outcome WhyNot(const qncomm::ChosenPort& none, const std::string& sNamed,
               const qncomm::PortBindings& bindings);

} // namespace qnctl
