#pragma once

#include "platform/Fd.h"
#include "platform/IoResult.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// The permissions that a file gets when it is put in place.
enum class FileMode {
    Usual,    ///< reading and writing for everybody whom the process's umask does not exclude
    Private,  ///< reading and writing for the owner alone
    Replaced, ///< those of the file that it replaces; Usual when there is none
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

    /// Makes an empty file under a new name that begins with "." and that no other file has. The
    /// path may be relative; a link at sTarget is replaced, not followed. A folder at sTarget is
    /// refused (EISDIR).
    [[nodiscard]] IoResult Create(const std::string& sTarget);
    /// The same under the name sBeside, in the target's folder. What stands there already is kept,
    /// so that a transfer can go on with it. One writer at a time, which the caller sees to.
    [[nodiscard]] IoResult Open(const std::string& sTarget, const std::string& sBeside);

    /// Whether a file is open: created or opened, and neither committed, kept nor discarded since.
    explicit operator bool() const { return static_cast<bool>(mFile); }
    /// Bytes written so far, with those that Open found.
    std::uint64_t Length() const { return mLength; }

    /// Puts the bytes behind those that are there.
    [[nodiscard]] IoResult Append(std::string_view sBytes) { return WriteAt(mLength, sBytes); }
    /// Puts the bytes at lOffset (from 0), over what stands there.
    [[nodiscard]] IoResult WriteAt(std::uint64_t lOffset, std::string_view sBytes);
    /// Takes all bytes out again.
    [[nodiscard]] IoResult Clear();
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
    [[nodiscard]] IoResult Adopt(int fd);
    [[nodiscard]] IoResult Failure(int error) const;

    std::string mTarget;
    std::string mBeside;
    Fd mFile;
    std::uint64_t mLength = 0;
};

/// Puts sBytes in the place of what stands at sTarget: Create, Append and Commit in one call.
[[nodiscard]] IoResult ReplaceFile(const std::string& sTarget, std::string_view sBytes,
                                   FileMode mode);

/// Writes a whole file that a person named. A link is followed and stays; an existing file keeps
/// its permissions and is refused when it may not be written, although it could be replaced; what
/// is no regular file (a device, a pipe) is written to directly.
[[nodiscard]] IoResult SaveFile(const std::string& sPath, std::string_view sBytes);

} // namespace qncomm
