// Bytes in, bytes out, and the events that tell of them.

#include "ReceivePath.h"
#include "TransferInProgress.h"
#include "TransmitQueue.h"
#include "serial/PDQComm.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace qncomm {
namespace {

/// How long a CR that came last may be the first half of a line end.
constexpr std::int64_t LineEndUs = 50'000;

struct LineErrorKind {
    bool LineErrors::*kind;
    SerialEvent event;
    const char* name;
};

constexpr std::array LineErrorKinds{
    LineErrorKind{&LineErrors::frame, SerialEventFrame, " frame"},
    LineErrorKind{&LineErrors::overrun, SerialEventOverrun, " overrun"},
    LineErrorKind{&LineErrors::parity, SerialEventParity, " parity"},
    LineErrorKind{&LineErrors::overflow, SerialEventReceiveOverflow, " overflow"},
};

} // namespace

// -- Receiving

void PDQComm::OnChannel(FdEvents events) {
    if (events.writable) Send();
    if (mOpen != nullptr && (events.readable || events.hungUp)) Receive();
    if (mTransferStarted) RunTransfer();
    FireEvents();
}

void PDQComm::Receive() {
    const std::span<char> space = mReceive->Space();
    if (space.empty()) return;
    const IoCount got = mOpen->Read(space);
    const std::string_view bytes(space.data(), got.count);
    if (mTrace != nullptr && got.count > 0) Trace(TraceKind::Received, bytes);
    Note(mOpen->TakeLineErrors());
    if (mTransferStarted)
        mTransfer->Receive(bytes, mReactor.NowUs());
    else
        mReceive->Commit(got.count);
    if (!got.result.Ok())
        Lose(got.result);
    else if (mReceive->Full())
        WantEvents();
}

void PDQComm::Note(const LineErrors& errors) {
    std::string names;
    for (const LineErrorKind& row : LineErrorKinds) {
        if (!(errors.*row.kind)) continue;
        names += row.name;
        if (mLineErrorCount < std::numeric_limits<std::int32_t>::max()) ++mLineErrorCount;
        mLineErrors.*row.kind = mSink != nullptr; // errors without a listener are dropped
    }
    if (names.empty()) return;
    Trace(TraceKind::Event, std::string(LineErrorsEvent) + names);
    if (mSink != nullptr) mFire->SetDue(mReactor.NowUs());
}

std::string PDQComm::Read() {
    std::string bytes = mReceive->TakeAll();
    WantEvents();
    return bytes;
}

bool PDQComm::Await(std::int64_t until) {
    const std::size_t before = mReceive->Count();
    while (mOpen != nullptr && !mReceive->Full()) {
        const FdEvents wanted{.readable = true, .writable = mTransmit->Count() > 0};
        const FdEvents ready = mOpen->Wait(wanted, until - mReactor.NowUs());
        if (ready.writable) Send();
        if (mOpen != nullptr && (ready.readable || ready.hungUp)) Receive();
        if (mReceive->Count() != before) {
            ScheduleEvents();
            return true;
        }
        if (mReactor.NowUs() >= until) break;
    }
    return false;
}

bool PDQComm::WaitForReceive(std::int32_t lTimeout) {
    if (mReceive->Count() > 0) return true;
    return Await(mReactor.NowUs() + std::int64_t{lTimeout} * 1000);
}

std::string PDQComm::ReadLine(std::int32_t lTimeout) {
    const std::int64_t until = mReactor.NowUs() + std::int64_t{lTimeout} * 1000;
    for (;;) {
        std::optional<std::string> line = mReceive->TakeLine(false);
        if (!line) {
            const std::int64_t half = mReactor.NowUs() + LineEndUs;
            const bool halfLineEnd = mReceive->EndsInCr();
            if (Await(halfLineEnd ? std::min(until, half) : until)) continue;
            line = mReceive->TakeLine(true);
        }
        if (!line) line = mReceive->TakeAll();
        WantEvents();
        return *line;
    }
}

// -- Sending

void PDQComm::Write(std::string_view sBytes) {
    if (mOpen == nullptr || sBytes.empty()) return;
    if (mTransmit->Count() > 0) {
        mTransmit->Append(sBytes);
        return;
    }
    if (const std::optional<std::size_t> taken = HandOver(sBytes)) {
        mTransmit->Append(sBytes.substr(*taken));
        WantEvents();
        ScheduleDrain();
    }
}

std::optional<std::size_t> PDQComm::HandOver(std::string_view bytes) {
    const IoCount sent = mOpen->Write(bytes);
    if (mTrace != nullptr && sent.count > 0) Trace(TraceKind::Sent, bytes.substr(0, sent.count));
    if (!sent.result.Ok()) {
        Lose(sent.result);
        return std::nullopt;
    }
    mLineFreeUs = std::max(mLineFreeUs, mReactor.NowUs()) + LineTimeUs(sent.count);
    return sent.count;
}

std::size_t PDQComm::TypeKeys(std::string_view sKeys) {
    if (mOpen == nullptr || mTransfer) return 0;
    const auto pending = static_cast<std::size_t>(TransmitCount());
    const std::size_t space = mTransmit->Capacity() - std::min(mTransmit->Capacity(), pending);
    const std::string_view taken = sKeys.substr(0, space);
    Write(taken);
    return taken.size();
}

void PDQComm::Send() {
    const std::string_view waiting = mTransmit->Waiting();
    if (waiting.empty()) return;
    if (const std::optional<std::size_t> taken = HandOver(waiting)) {
        mTransmit->Remove(*taken);
        WantEvents();
        ScheduleDrain();
    }
}

std::int64_t PDQComm::LineTimeUs(std::size_t bytes) const {
    return static_cast<std::int64_t>(bytes) * mSettings.BitsPerByte() * 1'000'000 / mSettings.baud;
}

std::int32_t PDQComm::LineTimeLeft() const {
    if (mOpen == nullptr) return 0;
    constexpr std::int64_t perMs = 1000;
    const std::int64_t left = mLineFreeUs - mReactor.NowUs();
    return static_cast<std::int32_t>(std::max<std::int64_t>(left + perMs - 1, 0) / perMs);
}

void PDQComm::ScheduleDrain() {
    if (mOpen == nullptr) return;
    const std::size_t pending = mOpen->OutputPending();
    if (pending == 0) return;
    mDrain->SetDue(mReactor.NowUs() + std::max<std::int64_t>(LineTimeUs(pending), 500));
}

void PDQComm::WantEvents() {
    if (mOpen == nullptr) return;
    const FdEvents wanted{.readable = !mReceive->Full(),
                          .writable = mTransmit->Count() > 0 || mTransferWaitsForLine};
    if (wanted.readable == mWanted.readable && wanted.writable == mWanted.writable) return;
    mWanted = wanted;
    mOpen->Want(wanted);
}

// -- Events

void PDQComm::ScheduleEvents() {
    if (mSink == nullptr) return;
    const bool receive = mReceive->threshold > 0 && mReceive->Count() > 0;
    if (receive || mLossWaits) mFire->SetDue(mReactor.NowUs());
}

void PDQComm::FireEvents() {
    mFire->Clear();
    const LineErrors errors = std::exchange(mLineErrors, {});
    for (const LineErrorKind& row : LineErrorKinds)
        if (errors.*row.kind) Raise(row.event);
    const auto enough = static_cast<std::size_t>(std::max(mReceive->threshold, std::int16_t{1}));
    if (mReceive->threshold > 0 && mReceive->Count() >= enough) Raise(SerialEventReceive);
    if (mLossWaits && mSink != nullptr) {
        mLossWaits = false;
        Raise(SerialEventPortLost);
    }
}

void PDQComm::Raise(SerialEvent event) const {
    const std::shared_ptr<const EventSink> sink = mSink; // the sink may detach itself
    if (sink) (*sink)(event);
}

} // namespace qncomm
