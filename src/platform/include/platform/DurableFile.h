#pragma once

#include "platform/Fd.h"
#include "platform/IoResult.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// The permissions that a file gets when it is put in place.
enum class FileMode {
    /// Those of the file that it replaces, and its owner, as far as this user may give it away;
    /// when
    /// there is none, reading and writing for everybody whom the process's umask does not exclude.
    Replaced,
    Private, ///< reading and writing for the owner alone
};

/// A file of this machine that is being written. It stands beside its target, in the same folder,
/// and takes the target's place when it is whole: a reader, now or after a power cut, sees either
/// the old or the new file, never a part of one. Until then its owner alone may read it. What is
/// neither committed nor kept is removed with the object.
///
/// Every member but Create, Open, Keep and Discard needs an open file. Failures carry errno and a
/// text that names the target.
class DurableFile {
  public:
    DurableFile() = default;
    ~DurableFile() { Discard(); }
    DurableFile(const DurableFile&) = delete;
    DurableFile& operator=(const DurableFile&) = delete;

    /// Makes an empty file under a name that begins with "." and that no other file has; what a
    /// killed program left under it is cleared. The path may be relative. A link at sTarget stays:
    /// what it leads to is replaced. Refused are a folder (EISDIR), a pipe, a socket or a device
    /// (ENOTSUP) at sTarget, and another user's link there (EACCES).
    [[nodiscard]] IoResult Create(const std::string& sTarget);
    /// The same under the target's name and sEnding; of a name too long for both the end gives way
    /// to a sum of it. What stands there already is kept,
    /// so that a transfer can go on with it, unless it is a link (ELOOP), another user's, a file
    /// with a second name, one that others may write (EPERM, EMLINK) or one that another program
    /// writes now (EBUSY).
    [[nodiscard]] IoResult Open(const std::string& sTarget, const std::string& sEnding);

    /// Whether a file is open: created or opened, and neither committed, kept nor discarded since.
    explicit operator bool() const { return static_cast<bool>(mFile); }
    /// Bytes written so far, with those that Open found.
    std::uint64_t Length() const { return mLength; }

    /// Puts the bytes behind those that are there.
    [[nodiscard]] IoResult Append(std::string_view sBytes) { return WriteAt(mLength, sBytes); }
    /// Puts the bytes at lOffset (from 0), over what stands there.
    [[nodiscard]] IoResult WriteAt(std::uint64_t lOffset, std::string_view sBytes);
    /// Reads the bytes from lOffset on, at most lMost; fewer at the end.
    [[nodiscard]] IoResult ReadAt(std::uint64_t lOffset, std::size_t lMost,
                                  std::string& sBytes) const;
    /// Takes all bytes out again.
    [[nodiscard]] IoResult Clear();
    /// The time of the last change, in seconds since 1970 (UTC).
    [[nodiscard]] std::int64_t Modified() const;
    /// Sets the time of the last change, in seconds since 1970 (UTC). Later writes change it again.
    [[nodiscard]] IoResult SetModified(std::int64_t lSeconds);

    /// Puts the file in the target's place, on the disk before it is seen there, and closes it.
    /// After a failure the target is the old one, except where only the folder could not be written
    /// to the disk; after any other the file stays open, for Keep or Discard.
    [[nodiscard]] IoResult Commit(FileMode mode);
    /// The same with these permission bits (0777 at most).
    [[nodiscard]] IoResult Commit(std::uint32_t lPermissions);

    /// Closes the file and leaves it beside its target, for a later Open.
    void Keep();
    /// Closes the file and removes it.
    void Discard();

  private:
    [[nodiscard]] IoResult Failure(int error) const;

    std::string mTarget;
    std::string mBeside;
    Fd mFile;
    std::uint64_t mLength = 0;
};

/// Puts sBytes in the place of what stands at sTarget: Create, Append and Commit in one call.
[[nodiscard]] IoResult ReplaceFile(const std::string& sTarget, std::string_view sBytes,
                                   FileMode mode = FileMode::Replaced);

/// Writes a whole file that a person named. A link is followed and stays; an existing file keeps
/// its permissions and is refused when it may not be written, although it could be replaced; what
/// is no regular file (a device, a pipe) is written to directly.
[[nodiscard]] IoResult SaveFile(const std::string& sPath, std::string_view sBytes);

} // namespace qncomm
