#pragma once

#include "link/SerialControl.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm {

/// The beginning of a transfer, until the other side speaks its protocol: what comes is looked at
/// for a refusal, and this side's first packet is held back as long as one may be on its way.
class OpeningLook {
  public:
    explicit OpeningLook(TransferLook look) : mLook(std::move(look)) {}

    /// The transfer starts, at a time in microseconds.
    void Begin(std::int64_t nowUs);
    /// Takes what came; whether the other side refuses.
    bool Refuses(std::string_view bytes, std::int64_t nowUs);

    /// Whether the first packet is held back still.
    bool Holds() const { return mHolds; }
    /// When it need not be any longer.
    std::int64_t HeldUntil() const { return mHeldUntil; }
    void EndHold() { mHolds = false; }

    /// What has come since the beginning, as far as it can be a refusal.
    const std::string& Heard() const { return mHeard; }

  private:
    TransferLook mLook;
    std::string mHeard;
    std::int64_t mHeldUntil = 0;
    std::int64_t mHeldUntilAtMost = 0;
    bool mHolds = false;
};

} // namespace qncomm
