#pragma once

#include <string>

namespace qncomm {

/// A new folder of this machine that its owner alone may look into, for files that last no longer
/// than the object: it goes with all that it holds.
class TemporaryFolder {
  public:
    /// Makes it where the system keeps such things (TMPDIR, else /tmp). Raises 76 when that is no
    /// folder, 75 when nothing can be made there.
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Without a "/" at its end.
    const std::string& Path() const { return mPath; }

  private:
    std::string mPath;
};

} // namespace qncomm
