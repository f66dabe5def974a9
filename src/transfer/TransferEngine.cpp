#include "transfer/TransferEngine.h"

#include <algorithm>
#include <utility>

namespace qncomm::transfer {

namespace {

constexpr std::size_t Batch = 16384;
// What the other side can make an engine say while the line takes none of it.
constexpr std::size_t MostUntaken = 1048576;
constexpr Time LastWords = std::chrono::seconds(10);

} // namespace

void TransferEngine::Start(Time now) {
    mLastHeard = now;
    mPhase = Phase::Starting;
    OnStart(now);
}

void TransferEngine::Receive(std::string_view sBytes, Time now) {
    if (mPhase == Phase::Idle) return;
    mInput.append(sBytes);
    if (mOutcome == Outcome::Running) Advance(now);
}

std::string TransferEngine::TakeUnread() {
    return std::exchange(mInput, {});
}

// Takes items from the input until one leads to a request: what follows it waits for the answer.
void TransferEngine::Advance(Time now) {
    mInputView = mInput;
    while (!mRequest && mOutcome == Outcome::Running && !mInputView.empty()) {
        if (!OnInput(now)) break;
        if (OutputSize() > MostUntaken) Fail("the line takes nothing of what is answered");
    }
    mInput.erase(0, mInput.size() - mInputView.size());
    mInputView = {};
}

std::optional<Time> TransferEngine::NextDeadline() const {
    if (mPhase == Phase::Idle || mRequest) return std::nullopt;
    if (mOutcome != Outcome::Running) return HasOutput() ? mLastWordsBy : std::nullopt;
    const Time limit = mLastHeard + mPatience;
    return mTimer ? std::min(*mTimer, limit) : limit;
}

void TransferEngine::Tick(Time now) {
    if (mPhase == Phase::Idle || mRequest) return;
    if (mOutcome != Outcome::Running) {
        if (mLastWordsBy && now >= *mLastWordsBy) DropOutput();
        return;
    }
    if (now >= mLastHeard + mPatience) {
        OnSilence(now);
        return;
    }
    if (!mTimer || now < *mTimer) return;
    mTimer.reset();
    OnTimer(now);
}

const Request* TransferEngine::PendingRequest() const {
    return mRequest ? &*mRequest : nullptr;
}

void TransferEngine::Answer(const transfer::Answer& answer, Time now) {
    if (!mRequest) return;
    const RequestKind kind = mRequest->kind;
    mRequest.reset();
    if (mOutcome != Outcome::Running) return;
    // The time that the caller took for its files is not the other side's silence.
    mLastHeard = std::max(mLastHeard, now - mPatience / 2);
    if (answer.kind == AnswerKind::Failed && kind != RequestKind::Close)
        Fail(answer.reason);
    else
        OnAnswer(kind, answer, now);
    Advance(now);
}

std::string_view TransferEngine::Output(Time now) {
    if (!HasOutput() && mPhase != Phase::Idle) {
        // Several pieces at once spare the caller calls; how many may be under way the engine
        // limits by itself.
        std::size_t before = 0;
        do {
            before = mOutput.size();
            if (mOutcome == Outcome::Running && !mRequest) OnProduce(now);
        } while (mOutput.size() > before && mOutput.size() < Batch);
    }
    if (mOutcome != Outcome::Running && !mLastWordsBy) mLastWordsBy = now + LastWords;
    return std::string_view(mOutput).substr(mOutputTaken);
}

void TransferEngine::Sent(std::size_t count, Time now) {
    mOutputTaken = std::min(mOutputTaken + count, mOutput.size());
    if (mOutputTaken == mOutput.size()) {
        mOutput.clear();
        mOutputTaken = 0;
    }
    if (mLastWordsBy && count != 0) mLastWordsBy = now + LastWords;
    if (mTimer && mTimerSpan != Time{0} && count != 0) mTimer = now + mTimerSpan;
}

void TransferEngine::Cancel(Time now) {
    if (mPhase == Phase::Idle || mOutcome != Outcome::Running) return;
    DropOutput();
    OnGiveUp({});
    mLastWordsBy = now + LastWords;
    End(Outcome::CancelledHere, "cancelled");
}

bool TransferEngine::IsOver() const {
    return mOutcome != Outcome::Running && !mRequest && !HasOutput();
}

void TransferEngine::DropOutput() {
    mOutput.clear();
    mOutputTaken = 0;
}

void TransferEngine::AskClose(bool bWhole) {
    mFileOpen = false;
    Request request;
    request.kind = RequestKind::Close;
    request.file = mFile;
    request.whole = bWhole;
    Ask(std::move(request));
}

void TransferEngine::Arm(Time span, Time now) {
    mTimerSpan = span;
    mTimer = now + span;
}

void TransferEngine::ArmFixed(Time span, Time now) {
    mTimerSpan = Time{0};
    mTimer = now + span;
}

void TransferEngine::OpenFile(const FileInfo& file, std::uint64_t offset) {
    mFile = file;
    mFileOpen = true;
    mProgress.size = file.size;
    mProgress.bytes = offset;
}

void TransferEngine::Fail(const std::string& sReason) {
    DropOutput();
    OnGiveUp(sReason);
    End(Outcome::Failed, sReason);
}

void TransferEngine::End(transfer::Outcome outcome, std::string reason) {
    if (mOutcome != Outcome::Running) return;
    mOutcome = outcome;
    mReason = std::move(reason);
    if (outcome == transfer::Outcome::CancelledThere) DropOutput(); // nobody wants it any more
    mPhase = Phase::Over;
    mTimer.reset();
    mRequest.reset();
    if (mFileOpen) AskClose(false);
}

} // namespace qncomm::transfer
