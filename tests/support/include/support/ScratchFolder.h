#pragma once

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
    bool Has(std::string_view sName) const;
    bool IsEmpty() const;

  private:
    std::string mPath;
};

/// The whole content of a file, empty when there is none.
std::string ContentOf(const std::string& sPath);

} // namespace qncomm::testing
