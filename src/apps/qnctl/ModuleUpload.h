#pragma once

#include "Outcome.h"

#include <string>

namespace qnctl {

class Session;

/// The whole of a file of this machine; empty for an empty path. Raises 53 when there is none.
std::string ReadHostFile(const std::string& path);

/// Types a module of this machine into the printer and saves it there under sTarget (UTF-8; empty:
/// the file's name on the printer's work device) when it has no errors. Shows the errors by line,
/// and with --json one document.
Outcome UploadModule(Session& session, const std::string& file, const std::string& sTarget);

} // namespace qnctl
