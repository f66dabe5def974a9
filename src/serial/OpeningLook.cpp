#include "OpeningLook.h"

#include <algorithm>

namespace qncomm {
namespace {

/// Kermit's packets begin with the one, ZModem's with the other.
constexpr std::string_view PacketMarks = "\x01\x18";
constexpr std::size_t LongestRefusal = 4096;
/// A device that never stops talking does not hold the transfer back for ever.
constexpr std::int64_t LongestHoldUs = 5'000'000;

} // namespace

void OpeningLook::Begin(std::int64_t nowUs) {
    mHolds = mLook.refused && mLook.holdMs > 0;
    mHeldUntil = nowUs + std::int64_t{mLook.holdMs} * 1000;
    mHeldUntilAtMost = nowUs + LongestHoldUs;
}

bool OpeningLook::Refuses(std::string_view bytes, std::int64_t nowUs) {
    if (!mLook.refused || bytes.empty()) return false;
    mHeard += bytes.substr(0, LongestRefusal - std::min(LongestRefusal, mHeard.size()));
    if (mLook.refused(mHeard)) return true;
    if (bytes.find_first_of(PacketMarks) != std::string_view::npos)
        EndHold();
    else
        mHeldUntil = std::min(nowUs + std::int64_t{mLook.holdMs} * 1000, mHeldUntilAtMost);
    return false;
}

} // namespace qncomm
