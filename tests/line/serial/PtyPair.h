#pragma once

#include "platform/Fd.h"

#include <string>

namespace qncomm::testing {

/// A new pseudo-terminal: the master's descriptor, not blocking, and the slave's path.
struct PtyPair {
    Fd master;
    std::string path;
};

PtyPair OpenPty();

/// A folder that goes away with the object.
class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string Path(const std::string& name) const { return mPath + "/" + name; }

  private:
    std::string mPath;
};

} // namespace qncomm::testing
