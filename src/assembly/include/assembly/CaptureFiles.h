#pragma once

#include "terminal/CaptureFile.h"

#include <string>

namespace qncomm {

/// Opens a file of this machine, given its path in UTF-8, for a terminal's capture to append to,
/// and makes it when it is not there. Refuses a folder, and a pipe that nobody reads.
[[nodiscard]] terminal::CaptureOpening OpenCaptureFile(const std::string& sPath);

} // namespace qncomm
