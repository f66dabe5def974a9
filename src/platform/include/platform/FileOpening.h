#pragma once

#include "platform/Fd.h"
#include "platform/IoResult.h"

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace qncomm {

// The one way in which host files are opened. What stands at a path is looked at before it is
// opened and once more when it is open, so that no folder, pipe or device is taken for a file, no
// opening waits for another program, and nothing of a file is read that is larger than its reader
// bears. Failures carry errno and a text that begins with the path.

/// What is asked of a file before a byte of it is read or written.
struct FileRules {
    /// Pipes, sockets, terminals and other devices are taken as well as regular files.
    bool streams = false;
    /// A link is followed. Without it a link is refused (ELOOP).
    bool links = true;
    /// The file belongs to this user alone: its owner is the one who runs this program, it has one
    /// name and nobody else may write it.
    bool own = false;
    /// Bytes that a regular file has at most; a larger one is refused (EFBIG).
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
};

/// Where the writing of a file starts that is there already.
enum class FileStart {
    Kept,  ///< at its beginning, over what it holds, which may be read, too
    Empty, ///< it is emptied first; a stream has nothing to empty
    End,   ///< every write goes to its end
};

/// Opens a file for reading into fd, which is empty after a failure. A stream is opened without
/// waiting, and reading from it does not wait either (EAGAIN).
IoResult OpenToRead(const std::string& sPath, const FileRules& rules, Fd& fd);

/// Opens a file for writing, and makes it when there is none, with these permissions as far as the
/// umask leaves them. As OpenToRead; a pipe that nobody reads is refused (ENXIO).
IoResult OpenToWrite(const std::string& sPath, FileStart start, const FileRules& rules,
                     std::uint32_t lPermissions, Fd& fd);

/// Reads a whole file into sText, which is empty after a failure. The limit holds for what is read,
/// too: a file of the kernel's own tells no size. With streams it reads what is there and stops
/// where it would have to wait.
IoResult ReadWholeFile(const std::string& sPath, const FileRules& rules, std::string& sText);

/// Whether sPath may be replaced by a new file: nothing stands there, or a regular file does. A
/// link there is followed, so that it stays and what it leads to is replaced: sPath becomes the
/// path of that file. Refused are folders, pipes and devices, and a link of another user, who could
/// choose what is replaced.
IoResult ResolveTarget(std::string& sPath);

/// Whether a new file of this name could be made: makes it and removes it again. False when
/// anything of that name exists.
bool CanCreateFile(const std::string& sPath);

} // namespace qncomm
