#include "link/PortClaim.h"

#include "link/clsDataLink.h"

#include <utility>

namespace qncomm {

PortClaim::PortClaim(clsDataLink& link, std::int32_t depth, bool exclusive)
    : mLink(&link),
      mOuter(std::exchange(link.mInnermost, this)),
      mDepth(depth),
      mExclusive(exclusive) {}

PortClaim::PortClaim(PortClaim&& other) noexcept
    : mLink(std::exchange(other.mLink, nullptr)),
      mOuter(other.mOuter),
      mDepth(other.mDepth),
      mExclusive(other.mExclusive) {
    if (mLink != nullptr && mLink->mInnermost == &other) mLink->mInnermost = this;
}

PortClaim::~PortClaim() {
    try {
        Release();
    } catch (...) { // NOLINT(bugprone-empty-catch): another error may be on its way
    }
}

void PortClaim::Release() {
    if (mLink != nullptr) std::exchange(mLink, nullptr)->EndClaim(*this);
}

void PortClaim::Detach() {
    if (mLink != nullptr) std::exchange(mLink, nullptr)->mInnermost = mOuter;
}

} // namespace qncomm
