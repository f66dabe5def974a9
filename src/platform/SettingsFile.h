#pragma once

#include "platform/Fd.h"
#include "platform/IoResult.h"

#include <cstdint>
#include <string>

namespace qncomm {

class Interrupt;

/// Makes the folders above sPath, readable for this user alone.
IoResult MakeFoldersFor(const std::string& sPath);

/// Renames a file to its name and ".damaged-N", the first that is free; the new name is put into
/// sNewPath.
IoResult MoveAside(const std::string& sPath, std::string& sNewPath);

/// An exclusive lock between processes on the file at sPath plus ".lock", held while the object
/// lives.
class FileLock {
  public:
    /// Waits up to lTimeout ms for the holder. A signal of the interrupt, if there is one, ends the
    /// wait: the result's number is then ECANCELED.
    FileLock(const std::string& sPath, std::int32_t lTimeout, const Interrupt* interrupt);

    const IoResult& Result() const { return mResult; }

  private:
    Fd mFile;
    IoResult mResult;
};

} // namespace qncomm
