// Opening, closing and losing the port.

#include "ReceivePath.h"
#include "TransferInProgress.h"
#include "TransmitQueue.h"
#include "common/QNError.h"
#include "common/Wait.h"
#include "serial/PDQComm.h"

#include <algorithm>
#include <utility>

namespace qncomm {
namespace {

constexpr const char* ErrorSource = "PDQComm";

/// How long a broken transfer's last words may take to leave before the port closes.
constexpr std::int32_t LastWordsMs = 150;

std::int32_t NumberFor(IoStatus status) {
    switch (status) {
    case IoStatus::Missing:
        return SerialErrNoSuchPort;
    case IoStatus::Busy:
        return SerialErrPortBusy;
    default:
        return SerialErrDevice;
    }
}

} // namespace

std::string PDQComm::PortName() const {
    const std::string name = NameOfPort(mPortNumber);
    const PortBinding* const binding = mBindings.Find(mPortNumber);
    return binding != nullptr ? name + " (" + binding->address.text + ")" : name;
}

std::string PDQComm::PortTarget() const {
    const PortBinding* const binding = mBindings.Find(mPortNumber);
    return binding != nullptr ? binding->address.text : std::string();
}

std::string PDQComm::WhyClosed() const {
    return mLastFailure ? mLastFailure->description : std::string();
}

PDQComm::KnownChannel& PDQComm::ChannelFor(const PortAddress& address) {
    KnownChannel& known = mChannels[address.text];
    if (!known.channel) {
        known.channel = mFactory(address, mReactor);
        known.channel->SetHandler([this](FdEvents events) { OnChannel(events); });
        known.channel->Keep(mKeepsPort);
    }
    return known;
}

PortFailure PDQComm::FailureFor(const IoResult& reason) const {
    return {NumberFor(reason.status), reason, "Port " + PortName() + ": " + reason.text + "."};
}

void PDQComm::Refuse(const IoResult& reason) {
    const PortFailure failure = FailureFor(reason);
    mLastFailure = failure;
    Trace(TraceKind::Event, failure.description);
    throw QNError(failure.number, ErrorSource, failure.description);
}

void PDQComm::Open() {
    const PortBinding* const binding = mBindings.Find(mPortNumber);
    if (binding == nullptr)
        Refuse({IoStatus::Missing, 0, "no device or address is bound to this number"});
    KnownChannel& known = ChannelFor(binding->address);
    const IoResult opened = known.channel->Open(mSettings);
    if (!opened.Ok()) Refuse(opened);
    mOpen = known.channel.get();
    mWanted = {};
    mLineFreeUs = 0;
    mLossWaits = false;
    mLastFailure.reset();
    TraceOpened(known);
    WantEvents();
}

void PDQComm::TraceOpened(KnownChannel& known) const {
    if (mTrace == nullptr) return;
    Trace(TraceKind::Event, std::string(OpenLineEvent) + PortName() + " " + TextOf(mSettings)
                                + (mSettings.xonXoff ? " Xon/Xoff" : "")
                                + (mSettings.rtsCts ? " RTS/CTS" : ""));
    if (std::exchange(known.saidNoLines, true) || known.channel->Dsr()) return;
    Trace(TraceKind::Event, NoModemLinesEvent);
}

void PDQComm::Close() {
    if (mTransfer && !mTransfer->IsOver()) {
        SetTransferState(TransferAborting); // the other side is not left waiting
        LetLastWordsLeave();
    }
    if (mOpen == nullptr) return;
    std::exchange(mOpen, nullptr)->Close();
    if (mTransfer) {
        mTransfer->Break("the port was closed");
        mTransferDue->SetDue(mReactor.NowUs());
    }
    mReceive->Clear();
    mTransmit->Clear();
    mLineErrors = {};
    mFire->Clear();
    mDrain->Clear();
    Trace(TraceKind::Event, "close");
}

// A channel that closes discards what has not left yet.
void PDQComm::LetLastWordsLeave() {
    bool gone = false;
    Wait wait(mReactor, {.wholeMs = LastWordsMs});
    wait.Until([&] { return gone || mOpen == nullptr || mOpen->OutputPending() == 0; },
               [&](std::int32_t ms) {
                   const std::int64_t left = LineTimeUs(mOpen->OutputPending());
                   gone = mOpen->Wait({}, std::clamp<std::int64_t>(left, 500, ms * 1000LL)).hungUp;
               });
}

void PDQComm::Apply(const LineSettings& settings) {
    if (mOpen != nullptr) {
        const IoResult applied = mOpen->Configure(settings);
        if (!applied.Ok()) {
            const PortFailure failure = FailureFor(applied);
            throw QNError(failure.number, ErrorSource, failure.description);
        }
    }
    mSettings = settings;
}

void PDQComm::Lose(const IoResult& reason) {
    mLastLoss = FailureFor(reason);
    mLastFailure = mLastLoss;
    Trace(TraceKind::Event, std::string(LostLineEvent) + mLastFailure->description);
    if (mTransfer) mTransfer->Break(mLastFailure->description);
    Close();
    mLossWaits = true;
    ScheduleEvents();
}

} // namespace qncomm
