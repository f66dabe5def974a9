#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qncomm::testing {

/// A folder of its own for a test, removed with all that is in it.
class ScratchFolder {
  public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::string& Path() const { return mPath; }
    /// The path of a name in the folder.
    std::string File(std::string_view sName) const;
    /// Writes a file and returns its path.
    std::string Write(std::string_view sName, std::string_view sContent) const;
    /// Makes a folder in it and returns its path.
    std::string MakeFolder(std::string_view sName) const;
    /// The whole content of a file of it, empty when there is none.
    std::string Read(std::string_view sName) const;
    bool Has(std::string_view sName) const;
    /// How many files and folders it holds.
    std::size_t Count() const;
    bool IsEmpty() const { return Count() == 0; }

  private:
    std::string mPath;
};

/// The whole content of a file, empty when there is none.
std::string ContentOf(const std::string& sPath);

} // namespace qncomm::testing
