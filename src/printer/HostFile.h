#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace qncomm {

/// A file of this machine, opened for reading bytes. Raises 53, 57, 67, 70, 75 or 76.
class HostFile {
  public:
    explicit HostFile(const std::string& sPath);

    const std::string& Path() const { return mPath; }
    /// Bytes in the file when it was opened.
    std::uintmax_t Length() const { return mLength; }
    /// The next bytes, lBytes of them. Raises 62 when the file ends before.
    std::string Read(std::size_t lBytes);

  private:
    std::string mPath;
    std::ifstream mStream;
    std::uintmax_t mLength = 0;
};

/// Puts a whole file in the place of what stands there, which stays when anything fails. What is no
/// regular file (a device, a pipe) is written to directly. Raises 57, 61, 67, 70, 75 or 76.
void WriteHostFile(const std::string& sPath, std::string_view sBytes);

} // namespace qncomm
