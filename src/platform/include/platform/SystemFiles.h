#pragma once

#include "common/HostFiles.h"

namespace qncomm {

/// The files of this machine as the system has them: one for the whole process, which it outlives.
/// It keeps nothing, so that any thread may use it.
[[nodiscard]] HostFiles& SystemFiles();

} // namespace qncomm
