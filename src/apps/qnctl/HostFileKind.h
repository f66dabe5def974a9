#pragma once

#include <string>

namespace qnctl {

/// What a file of this machine is to a printer.
enum class HostFileKind {
    Program, ///< text whose lines are numbered upwards and begin with a word
    Image,   ///< PCX
    Font,    ///< TrueType
    Other,
};

/// What a file is, by what it holds, not by its name. Raises 53 when there is none.
HostFileKind KindOf(const std::string& path);

} // namespace qnctl
