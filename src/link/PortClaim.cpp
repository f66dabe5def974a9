#include "link/PortClaim.h"

#include "LinkState.h"

#include <utility>

namespace qncomm {

PortClaim::PortClaim(LinkState& link, std::int32_t depth, bool exclusive)
    : mLink(&link),
      mOuter(std::exchange(link.innermost, this)),
      mDepth(depth),
      mExclusive(exclusive) {}

PortClaim::PortClaim(PortClaim&& other) noexcept
    : mLink(std::exchange(other.mLink, nullptr)),
      mOuter(other.mOuter),
      mDepth(other.mDepth),
      mExclusive(other.mExclusive) {
    if (mLink != nullptr && mLink->innermost == &other) mLink->innermost = this;
}

PortClaim::~PortClaim() {
    try {
        Release();
    } catch (...) { // NOLINT(bugprone-empty-catch): another error may be on its way
    }
}

void PortClaim::Release() {
    if (mLink == nullptr) return;
    LinkState& state = *std::exchange(mLink, nullptr);
    state.innermost = mOuter;
    if (state.serial == nullptr) return;
    if (state.useCount >= mDepth) state.link.ReleasePort(mExclusive, false);
    state.Settle();
}

void PortClaim::Detach() {
    if (mLink != nullptr) std::exchange(mLink, nullptr)->innermost = mOuter;
}

} // namespace qncomm
