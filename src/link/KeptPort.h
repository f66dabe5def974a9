#pragma once

#include "LinkState.h"

namespace qncomm {

/// Keeps the port for its link while it lives, however often it is closed and opened.
class KeptPort {
  public:
    explicit KeptPort(LinkState& state) : mState(state) { mState.Serial().KeepPort(true); }
    ~KeptPort() {
        if (mState.serial != nullptr) mState.serial->KeepPort(false);
    }
    KeptPort(const KeptPort&) = delete;
    KeptPort& operator=(const KeptPort&) = delete;

  private:
    LinkState& mState;
};

} // namespace qncomm
