#pragma once

#include "platform/Fd.h"

#include <array>
#include <string>

namespace qncomm::testing {

/// A place of this machine that answers to nobody who connects, as a host that is switched off or
/// behind a wall does: who comes waits for as long as it likes.
class SilentHost {
  public:
    SilentHost();

    /// Its port.
    const std::string& Service() const { return mService; }

  private:
    Fd mListener;
    std::array<Fd, 4> mGuests; ///< who fill the queue of those who were let in
    std::string mService;
};

} // namespace qncomm::testing
