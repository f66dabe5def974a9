#include "common/Wait.h"

#include <algorithm>

namespace qncomm {

Wait::Wait(const Clock& clock, const WaitBounds& bounds)
    : mBounds(bounds), mWhole(clock), mSilence(clock) {}

void Wait::Heard(std::int32_t lSilenceMs) {
    mBounds.silenceMs = lSilenceMs;
    Heard();
}

void Wait::LookAgainIn(std::int32_t lStepMs) {
    mBounds.stepMs = std::max(lStepMs, 1);
}

void Wait::Came(std::size_t bytes) {
    if (bytes == 0) return;
    mCame += std::min(bytes, WaitBounds::AnyNumber - mCame);
    Heard();
}

std::int32_t Wait::LeftMs() const {
    if (Reached() == WaitEnd::TooMuch) return 0;
    return std::min({mWhole.UntilExceeds(mBounds.wholeMs), mSilence.UntilExceeds(mBounds.silenceMs),
                     mBounds.stepMs});
}

WaitEnd Wait::Reached() const {
    if (mCame > mBounds.bytes) return WaitEnd::TooMuch;
    return mSilence.UntilExceeds(mBounds.silenceMs) == 0 ? WaitEnd::Silent : WaitEnd::Late;
}

} // namespace qncomm
