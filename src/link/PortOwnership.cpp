// Counted use of the port: claims, the terminal's standing claim, and the mark of an operation that
// must be alone.

#include "ExclusiveMark.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "link/HostCall.h"
#include "link/clsDataLink.h"

#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t ReopenInterval = 1000;

} // namespace

bool clsDataLink::IsExclusive() const {
    return Serial().Tag() == ExclusiveMark;
}

PortClaim clsDataLink::ClaimLine(bool exclusive) {
    if (mHostCalls > 0 || IsExclusive()) return {};
    if (exclusive) Serial().SetTag(ExclusiveMark);
    PortClaim claim(*this, ++mUseCount, exclusive);
    if (mUseCount == 1 || mPortLost) OpenPort();
    Serial().SetReceiveMode(ReceiveToLink);
    return claim;
}

PortClaim clsDataLink::AcquirePort(bool bExclusive) {
    PortClaim claim = ClaimLine(bExclusive);
    if (!claim) return claim;
    if ((mDSRDetectActive && !IsDSRActive()) || !FindPrinter(bExclusive)) {
        claim.Release();
        return {};
    }
    PurgePort();
    Handshake();
    return claim;
}

bool clsDataLink::FindPrinter(bool exclusive) {
    return mImmediateMode || AutoConnect(ToInt16(Val(mCommport)), exclusive);
}

void clsDataLink::ReleasePort(bool bClearTag, bool bForce) {
    if (bClearTag) Serial().SetTag({});
    if (IsExclusive()) {
        if (mUseCount > 0) ++mOwedReleases;
        return;
    }
    if (mTerminalHeld && mUseCount == 1) return;
    mUseCount = bForce ? (mTerminalHeld ? 1 : 0) : mUseCount - 1;
    if (mUseCount == 0) ClosePort();
    if (mUseCount < 0) mUseCount = 0;
    if (mSerial != nullptr)
        mSerial->SetReceiveMode(mTerminalHeld && mUseCount == 1 ? ReceiveToTerminal
                                                                : ReceiveToLink);
}

void clsDataLink::EndClaim(PortClaim& claim) {
    mInnermost = claim.mOuter;
    if (mSerial == nullptr) return;
    if (mUseCount >= claim.mDepth) ReleasePort(claim.mExclusive, false);
    Settle();
}

void clsDataLink::ReleaseBeforeRaise() {
    ClearReceived();
    const std::int32_t depth = mInnermost != nullptr ? mInnermost->mDepth : 1;
    if (mUseCount >= depth)
        ReleasePort(true, false);
    else
        Serial().SetTag({});
}

void clsDataLink::SetTerminalActive(bool bValue) {
    mTerminalActive = bValue;
    Settle();
}

void clsDataLink::Settle() {
    if (mSerial == nullptr || mHostCalls > 0 || mInnermost != nullptr || IsExclusive()) return;
    for (std::int32_t owed = std::exchange(mOwedReleases, 0); owed > 0; --owed)
        ReleasePort();
    if (mTerminalActive == mTerminalHeld) return;
    mTerminalHeld = mTerminalActive;
    if (!mTerminalHeld) {
        ReleaseTerminal();
    } else {
        ++mUseCount;
        if (mUseCount == 1 || mPortLost) OpenPort();
        if (mUseCount == 1) Serial().SetReceiveMode(ReceiveToTerminal);
    }
}

void clsDataLink::ReleaseTerminal() {
    mReopenTimer.reset();
    ReleasePort();
}

void clsDataLink::EndExclusive(std::string_view formerTag) {
    if (mSerial == nullptr) return;
    mSerial->SetTag(formerTag == ExclusiveMark ? formerTag : std::string_view());
    Settle();
}

void clsDataLink::OpenPort() {
    mPortLost = false;
    mReopenTimer.reset();
    try {
        Serial().SetPortOpen(true);
    } catch (const QNError& error) { // a port that stays closed shows as 1024 when it is used
        mHost.desktop.Log(error.Description());
    }
    RaisePortState(true);
}

void clsDataLink::ClosePort() {
    const bool alreadyReported = std::exchange(mPortLost, false);
    Serial().SetPortOpen(false);
    if (!alreadyReported) RaisePortState(false);
}

void clsDataLink::RaisePortState(bool open) {
    const HostCall guard(*this);
    PortStateEvent.Raise(open);
}

void clsDataLink::OnPortLost() {
    mPortLost = true;
    SetImmediateMode(false);
    if (mTerminalHeld)
        mReopenTimer = mHost.loop.StartTimer(ReopenInterval, [this] { ReopenForTerminal(); });
    RaisePortState(false);
}

void clsDataLink::ReopenForTerminal() {
    if (!mPortLost || mInnermost != nullptr || IsExclusive()) return;
    try {
        Serial().SetPortOpen(true);
    } catch (const QNError&) { // still away: the timer tries again
        return;
    }
    mPortLost = false;
    Serial().SetReceiveMode(ReceiveToTerminal);
    mReopenTimer.reset();
    RaisePortState(true);
}

} // namespace qncomm
