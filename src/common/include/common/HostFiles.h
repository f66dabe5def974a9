#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace qncomm {

/// A file of this machine, open for reading from its beginning.
class HostFile {
  public:
    virtual ~HostFile() = default;
    HostFile(const HostFile&) = delete;
    HostFile& operator=(const HostFile&) = delete;

    /// The path by which it was opened.
    const std::string& Path() const { return mPath; }
    /// Bytes in the file when it was opened.
    std::uintmax_t Length() const { return mLength; }
    /// The next lBytes bytes, no fewer. Raises 62 when the file ends before, 57 when it cannot be
    /// read.
    [[nodiscard]] std::string Read(std::size_t lBytes);
    /// The next bytes, at most lMost of them; empty at the end of the file. Raises 57.
    [[nodiscard]] virtual std::string ReadSome(std::size_t lMost) = 0;

  protected:
    /// For those that open files: a file of lLength bytes that was opened by this path.
    HostFile(std::string sPath, std::uintmax_t lLength);

  private:
    std::string mPath;
    std::uintmax_t mLength;
};

/// The files of this machine, for those that may not touch them themselves. What kind of file is
/// taken, who may read it and how safely it is written is decided here, for every operation alike.
/// Paths are UTF-8 texts; relative ones start at the process's current folder. Errors are raised
/// with the runtime's numbers and an empty source.
class HostFiles {
  public:
    virtual ~HostFiles() = default;

    /// Whether the path names a regular file; a link counts as what it leads to. Never raises.
    [[nodiscard]] virtual bool Exists(const std::string& sPath) = 0;
    /// Bytes of the regular file, 0 when there is none. Never raises.
    [[nodiscard]] virtual std::uintmax_t Size(const std::string& sPath) = 0;
    /// Whether a new file of this name could be made: makes it and removes it again. False when
    /// anything of that name exists. Never raises.
    [[nodiscard]] virtual bool CanCreate(const std::string& sPath) = 0;
    /// The process's current folder; empty when it has gone.
    [[nodiscard]] virtual std::string CurrentFolder() = 0;

    /// Opens a regular file; folders, devices and pipes are refused (75). Never null. Raises 53
    /// when there is none, 57, 67, 70 or 75.
    [[nodiscard]] virtual std::unique_ptr<HostFile> Open(const std::string& sPath) = 0;
    /// Puts a whole file in the place of what stands there, which stays when anything fails, a
    /// power cut included. A link is followed and the file keeps its permissions; a device or a
    /// pipe is written to directly. Raises 57, 61, 67, 70, 75 or, when the folder is missing, 76.
    virtual void Save(const std::string& sPath, std::string_view sBytes) = 0;
    /// Removes the file; raises 53 when there is none, 70 or 75 when it stays.
    virtual void Delete(const std::string& sPath) = 0;
};

} // namespace qncomm
