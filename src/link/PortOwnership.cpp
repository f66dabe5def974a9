// Counted use of the port: claims, the terminal's standing claim, and the mark of an operation that
// must be alone.

#include "ExclusiveMark.h"
#include "LinkState.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "link/HostCall.h"

#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t ReopenInterval = 1000;
constexpr std::int32_t ReachInterval = 20;
/// A name, a connection and a remote port's answers have limits of their own below this.
constexpr std::int32_t LongestReachMs = 15'000;

} // namespace

std::int32_t clsDataLink::UseCount() const {
    return mState->useCount;
}

bool clsDataLink::TerminalActive() const {
    return mState->terminalActive;
}

bool LinkState::IsExclusive() const {
    return Serial().Tag() == ExclusiveMark;
}

PortClaim LinkState::ClaimLine(bool exclusive) {
    if (hostCalls > 0 || IsExclusive()) return {};
    if (exclusive) Serial().SetTag(ExclusiveMark);
    PortClaim claim(*this, ++useCount, exclusive);
    AbandonPoll();
    if (useCount == 1 || portLost) {
        portLost = true; // until it is open: who gives it up meanwhile has no closing to tell
        AwaitPort();
        OpenPort();
    }
    Serial().SetReceiveMode(ReceiveToLink);
    return claim;
}

PortClaim clsDataLink::AcquirePort(bool bExclusive) {
    PortClaim claim = mState->ClaimLine(bExclusive);
    if (!claim) return claim;
    if ((mState->dsrDetectActive && !IsDSRActive()) || !mState->PreparePrinter(bExclusive)) {
        claim.Release();
        return {};
    }
    return claim;
}

bool LinkState::PreparePrinter(bool exclusive) {
    AwaitEndOfLoad();
    if (host.options.listen && IsKnownToAsk()) return false;
    if (!immediateMode) {
        const Meeting meeting = MeetRemembered();
        if (meeting == Meeting::Met) return true;
        if (meeting != Meeting::NotMet) return false;
        if (!link.AutoConnect(ToInt16(Val(commport)), exclusive)) return false;
    }
    link.PurgePort();
    Handshake();
    return true;
}

void clsDataLink::ReleasePort(bool bClearTag, bool bForce) {
    if (bClearTag) mState->Serial().SetTag({});
    if (mState->IsExclusive()) {
        if (mState->useCount > 0) ++mState->owedReleases;
        return;
    }
    if (mState->terminalHeld && mState->useCount == 1) return;
    mState->live.LeftAlone();
    mState->useCount = bForce ? (mState->terminalHeld ? 1 : 0) : mState->useCount - 1;
    if (mState->useCount == 0) mState->ClosePort();
    if (mState->useCount < 0) mState->useCount = 0;
    if (mState->serial != nullptr)
        mState->serial->SetReceiveMode(
            mState->terminalHeld && mState->useCount == 1 ? ReceiveToTerminal : ReceiveToLink);
}

void LinkState::ReleaseBeforeRaise() {
    ClearReceived();
    const std::int32_t depth = innermost != nullptr ? innermost->Depth() : 1;
    if (useCount >= depth)
        link.ReleasePort(true, false);
    else
        Serial().SetTag({});
}

void clsDataLink::SetTerminalActive(bool bValue) {
    mState->terminalActive = bValue;
    mState->Settle();
}

void LinkState::Settle() {
    if (serial == nullptr || hostCalls > 0 || innermost != nullptr || IsExclusive()) return;
    for (std::int32_t owed = std::exchange(owedReleases, 0); owed > 0; --owed)
        link.ReleasePort();
    if (terminalActive == terminalHeld) return;
    terminalHeld = terminalActive;
    if (!terminalHeld) {
        ReleaseTerminal();
    } else {
        ++useCount;
        if (useCount == 1 || portLost) OpenForTerminal();
        if (useCount == 1) Serial().SetReceiveMode(ReceiveToTerminal);
        SchedulePolls();
    }
}

void LinkState::ReleaseTerminal() {
    reopenTimer.reset();
    SchedulePolls();
    link.ReleasePort();
}

void LinkState::EndExclusive(std::string_view formerTag) {
    if (serial == nullptr) return;
    serial->SetTag(formerTag == ExclusiveMark ? formerTag : std::string_view());
    Settle();
}

void LinkState::AwaitPort() {
    if (Serial().ReachPort()) return;
    Await({.wholeMs = LongestReachMs}, [this] { return Serial().ReachPort(); });
}

void LinkState::OpenPort() {
    portLost = false;
    reopenTimer.reset();
    try {
        Serial().SetPortOpen(true);
        NoteLine();
    } catch (const QNError& error) { // a port that stays closed shows as 1024 when it is used
        host.desktop.Log(error.Description());
        NoteLine(&error);
    }
    NotePlace();
    RaisePortState(true);
}

void LinkState::ClosePort() {
    const bool alreadyReported = std::exchange(portLost, false);
    Serial().SetPortOpen(false);
    if (alreadyReported) return; // a lost line that is given back is lost all the same
    NoteLine();
    RaisePortState(false);
}

void LinkState::RaisePortState(bool open) {
    const HostCall guard(link);
    link.PortStateEvent.Raise(open);
}

void LinkState::OnPortLost() {
    portLost = true;
    AbandonPoll();
    live.Line(LineLost, Serial().WhyClosed());
    inputLine = UnknownInputLine();
    link.SetImmediateMode(false);
    if (terminalHeld)
        reopenTimer = host.loop.StartTimer(ReopenInterval, [this] { ReopenForTerminal(); });
    RaisePortState(false);
}

bool LinkState::MayOpenNow() const {
    return !host.options.opensBeside || Serial().ReachPort();
}

void LinkState::OpenForTerminal() {
    if (MayOpenNow())
        OpenPort();
    else
        OpenWhenReached();
}

void LinkState::OpenSoon() {
    if (MayOpenNow())
        Serial().SetPortOpen(true);
    else if (useCount > 0)
        OpenWhenReached();
}

/// To whoever claims the line meanwhile it is a lost one.
void LinkState::OpenWhenReached() {
    portLost = true;
    if (!terminalHeld) return;
    reopenTimer = host.loop.StartTimer(ReachInterval, [this] {
        if (!TerminalMayOpen()) return;
        Serial().SetReceiveMode(ReceiveToTerminal);
        OpenPort();
    });
}

/// A far side that is silent does not hold the host up.
bool LinkState::TerminalMayOpen() const {
    return portLost && innermost == nullptr && !IsExclusive() && Serial().ReachPort();
}

void LinkState::ReopenForTerminal() {
    if (!TerminalMayOpen()) return;
    try {
        Serial().SetPortOpen(true);
    } catch (const QNError&) { // still away: the timer tries again
        return;
    }
    portLost = false;
    Serial().SetReceiveMode(ReceiveToTerminal);
    reopenTimer.reset();
    NoteLine();
    NotePlace();
    RaisePortState(true);
}

} // namespace qncomm
