#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qncomm {

/// What a file operation came to: 0 and nothing, or the system's error number and the path that it
/// is about.
struct FileResult {
    int error = 0;
    std::string path;
    explicit operator bool() const { return error == 0; }
};

/// Reads a whole file; a file that is not there reads as an empty text.
FileResult ReadWholeFile(const std::string& sPath, std::string& sText);

/// Puts sText in the place of the file at sPath so that a reader, now or after a power cut, sees
/// either the old or the new text, whole. One caller at a time (see FileLock).
FileResult ReplaceFile(const std::string& sPath, std::string_view sText);

/// Makes the folders above sPath, readable for this person alone.
FileResult MakeFoldersFor(const std::string& sPath);

/// Renames a file to its name and ".damaged-N", the first that is free; the new name is put into
/// sNewPath.
FileResult MoveAside(const std::string& sPath, std::string& sNewPath);

/// An exclusive lock between processes on the file at sPath plus ".lock", held while the object
/// lives.
class FileLock {
  public:
    /// Waits up to lTimeout ms for the holder.
    FileLock(const std::string& sPath, std::int32_t lTimeout);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    const FileResult& Result() const { return mResult; }

  private:
    int mFd = -1;
    FileResult mResult;
};

} // namespace qncomm
