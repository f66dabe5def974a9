#pragma once

#include "common/CountedScope.h"

namespace qncomm {

class clsDataLink;

/// Marks the link as being in code of the host, a yield or an event handler, while it lives: claims
/// and searches from there are refused, since they would put their bytes into the middle of the
/// running exchange. Any code that raises an event of its own during an exchange holds one.
class HostCall {
  public:
    /// The link must outlive the object.
    explicit HostCall(clsDataLink& link);

  private:
    CountedScope mCounted;
};

} // namespace qncomm
