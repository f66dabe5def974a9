#include "PieceLength.h"

#include <algorithm>
#include <cmath>

namespace qncomm::transfer {

namespace {

// What was seen this many errors ago hardly counts any more.
constexpr double Forget = 0.9;
// An error right at the start says little about the rate.
constexpr double LeastBytes = 256;

} // namespace

void PieceLength::Travelled(std::size_t bytes) {
    mBytes += static_cast<double>(bytes);
    mGrown += static_cast<double>(bytes) / mLimits.evidence;
}

void PieceLength::Lost() {
    mErrors = mErrors * Forget + 1;
    mBytes *= Forget;
}

void PieceLength::Limit(std::size_t longest) {
    mCap = std::clamp(longest, mLimits.shortest, mLimits.longest);
}

double PieceLength::ErrorRate() const {
    return mErrors / (std::max(mBytes, LeastBytes) + LeastBytes);
}

std::size_t PieceLength::Current() const {
    const std::size_t now = static_cast<std::size_t>(std::min(mGrown, static_cast<double>(mCap)));
    if (mErrors <= 0) return now;
    const double best = std::sqrt(mLimits.frame / (mLimits.lostPieces * ErrorRate()));
    const double held =
        std::clamp(best, static_cast<double>(mLimits.shortest), static_cast<double>(mCap));
    return std::min(now, static_cast<std::size_t>(held));
}

} // namespace qncomm::transfer
