#pragma once

#include "platform/ProcessLauncher.h"

namespace qncomm {

/// The name under which Qt hosts know the launcher of every face.
using QtLauncher = ProcessLauncher;

} // namespace qncomm
