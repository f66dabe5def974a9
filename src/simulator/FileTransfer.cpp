#include "FileTransfer.h"

#include "StorageSource.h"

#include "transfer/KermitReceiver.h"
#include "transfer/KermitSender.h"
#include "transfer/ZModemReceiver.h"
#include "transfer/ZModemSender.h"

#include <algorithm>
#include <utility>

namespace qnsim {
namespace {

using qncomm::transfer::Outcome;
using qncomm::transfer::Phase;
using qncomm::transfer::Time;
using qncomm::transfer::TransferEngine;

// Both protocols put line ends behind their packets, ZModem with the eighth bit and an Xon too.
constexpr std::string_view ProtocolLineEnd = "\r\n\x8D\x8A\x11";
constexpr Micros AfterSuccess = 100'000;
constexpr Micros QuietAfterFailure = 500'000;
constexpr Micros LongestQuietWait = 10'000'000; // for a line that never becomes quiet

std::unique_ptr<TransferEngine> MakeEngine(FileTransfer::Protocol protocol, bool sevenBits,
                                           bool sends) {
    if (protocol == FileTransfer::Protocol::ZModem) {
        if (sends) return std::make_unique<qncomm::transfer::ZModemSender>();
        return std::make_unique<qncomm::transfer::ZModemReceiver>();
    }
    qncomm::transfer::KermitOptions options;
    options.sevenBits = sevenBits;
    // The printer cannot tell whether every part of the way to the host is reliable; the host says
    // so.
    options.reliable = true;
    if (sends) return std::make_unique<qncomm::transfer::KermitSender>(options);
    return std::make_unique<qncomm::transfer::KermitReceiver>(options);
}

} // namespace

FileTransfer::FileTransfer(Protocol protocol, bool sevenBits, Storage& storage, Micros now)
    : mEngine(MakeEngine(protocol, sevenBits, false)),
      mSink(std::make_unique<StorageSink>(storage)) {
    mEngine->Start(Time(now));
}

FileTransfer::FileTransfer(Protocol protocol, bool sevenBits, std::string name, std::string content,
                           Micros now)
    : mEngine(MakeEngine(protocol, sevenBits, true)),
      mSource(std::make_unique<StorageSource>(std::move(name), std::move(content))) {
    mEngine->Start(Time(now));
}

bool FileTransfer::Succeeded() const {
    return mEngine->Outcome() == Outcome::Success && mEngine->Progress().files != 0;
}

Error FileTransfer::Result() const {
    if (Succeeded()) return Error::None;
    if (mSink && mSink->Refusal() != Error::None) return mSink->Refusal();
    return mEngine->Outcome() == Outcome::Failed ? Error::TransferFailed : Error::TransferCancelled;
}

void FileTransfer::Serve(Micros now) {
    ServeRequests(*mEngine, mSource.get(), mSink.get(), Time(now));
}

std::size_t FileTransfer::Receive(std::string_view bytes, Micros now) {
    std::size_t taken = 0;
    while (taken < bytes.size() && mEngine->Outcome() == Outcome::Running) {
        // The session ends at an exact byte: what follows it belongs to the console.
        const bool moving = mEngine->Phase() == Phase::Moving;
        const std::size_t count = moving ? bytes.size() - taken : 1;
        mEngine->Receive(bytes.substr(taken, count), Time(now));
        Serve(now);
        taken += count;
    }
    if (taken == bytes.size()) return taken;
    if (Succeeded()) return taken + TakeLineEnd(bytes.substr(taken), now);
    if (mEndedAt) mFreeAt = std::min(now + QuietAfterFailure, *mEndedAt + LongestQuietWait);
    return bytes.size();
}

std::size_t FileTransfer::TakeLineEnd(std::string_view bytes, Micros now) {
    if (mLineEndTaken) return 0;
    const std::size_t count = std::min(bytes.find_first_not_of(ProtocolLineEnd), bytes.size());
    mLineEndTaken = count < bytes.size();
    if (mEndedAt && count != 0) mFreeAt = now + AfterSuccess;
    if (mLineEndTaken) mFreeAt = now; // the host goes on: it waits for the prompt by now
    return count;
}

void FileTransfer::Work(Micros now, std::size_t room, std::string& out) {
    if (const auto deadline = mEngine->NextDeadline(); deadline && *deadline <= Time(now))
        mEngine->Tick(Time(now));
    DropUnwanted(now);
    for (;;) {
        const std::string_view output =
            ServedOutput(*mEngine, mSource.get(), mSink.get(), Time(now)).substr(0, room);
        if (output.empty()) break;
        out += output;
        room -= output.size();
        mEngine->Sent(output.size(), Time(now));
    }
    mHasOutput = !mEngine->Output(Time(now)).empty();
    LookForEnd(now);
}

/// Drops the bytes that still wait for the line: a host that has cancelled does not want them.
void FileTransfer::DropUnwanted(Micros now) {
    if (mEngine->Outcome() != Outcome::CancelledThere) return;
    Serve(now);
    mEngine->Sent(mEngine->Output(Time(now)).size(), Time(now));
}

void FileTransfer::LookForEnd(Micros now) {
    if (!mEngine->IsOver()) return;
    if (!mEndedAt) {
        mEndedAt = now;
        mFreeAt = now;
        if (!mLineEndTaken) mFreeAt += Succeeded() ? AfterSuccess : QuietAfterFailure;
    }
    mOver = now >= mFreeAt;
}

void FileTransfer::Cancel(Micros now, std::string& out) {
    mEngine->Cancel(Time(now));
    Work(now, std::string::npos, out);
}

std::optional<Micros> FileTransfer::NextDue() const {
    if (mEndedAt) return mFreeAt;
    const auto deadline = mEngine->NextDeadline();
    if (!deadline) return std::nullopt;
    return deadline->count();
}

} // namespace qnsim
