#pragma once

#include <string>
#include <string_view>

namespace qncomm {

// Paths of this machine are UTF-8 texts with "/" between their parts. A ":" inside a name is an
// ordinary character: only names on the printer have devices.

/// Whether the path starts at the root.
bool IsAbsolutePath(std::string_view sPath);

/// The path up to and including its last "/"; empty when it has none.
std::string FolderOf(std::string_view sPath);

/// sName itself when it is absolute or sFolder is empty, else sName in sFolder with exactly one "/"
/// between them.
std::string PathIn(std::string_view sFolder, std::string_view sName);

} // namespace qncomm
