#pragma once

#include <cstdint>
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

/// The process's current folder; empty when it has gone.
std::string CurrentFolder();

/// Bytes of the regular file, 0 when there is none. Never raises.
std::uintmax_t FileSize(const std::string& sPath);

/// Whether a new file of this name could be made: makes it and removes it again. False when
/// anything of that name exists.
bool CanCreateFile(const std::string& sPath);

/// Removes the file; raises 53 when there is none, 70 or 75 when it stays.
void DeleteFile(const std::string& sPath);

} // namespace qncomm
