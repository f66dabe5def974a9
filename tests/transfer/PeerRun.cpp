#include "PeerRun.h"

#include <algorithm>
#include <poll.h>
#include <utility>

namespace qncomm::testing {

using namespace transfer;

PeerRun::PeerRun(TransferEngine& engine, FileSource* source, FileSink* sink, PeerProcess& peer,
                 const LineSettings& line, std::uint64_t seed)
    : mEngine(engine),
      mSource(source),
      mSink(sink),
      mPeer(peer),
      mForth(line, seed * 2 + 1),
      mBack(line, seed * 2 + 2) {}

bool PeerRun::Step(Time real) {
    mNow = real + mSkipped;
    if (!std::exchange(mStarted, true)) {
        mLastByte = mNow;
        mEngine.Start(mNow);
    }
    const bool ended = mPeer.HasEnded();
    const bool heard = Hear(mNow);
    if (const auto due = mEngine.NextDeadline(); due && *due <= mNow) mEngine.Tick(mNow);
    const bool said = Speak(mNow, ended);
    if (ended && !heard && !said && mBack.IsIdle()) Skip(mNow);
    return heard || said;
}

bool PeerRun::Hear(Time now) {
    if (mHeard.empty()) mHeard = mPeer.Read();
    const bool read = !mHeard.empty();
    mHeard.erase(0, mBack.Write(mHeard));
    mBack.Advance(now);
    const std::string arrived = mBack.Arrived(now);
    if (!arrived.empty()) {
        mEngine.Receive(arrived, now);
        mLastByte = now;
    }
    return read || !arrived.empty();
}

// What is said to a program that has ended is not heard, and counts as said.
bool PeerRun::Speak(Time now, bool bEnded) {
    const std::string_view output = ServedOutput(mEngine, mSource, mSink, now);
    std::size_t sent = 0;
    if (bEnded) {
        sent = output.size();
    } else if (mSaid.empty()) {
        sent = mForth.Write(output);
    }
    mEngine.Sent(sent, now);
    mForth.Advance(now);
    mSaid += mForth.Arrived(now);
    const std::size_t taken = bEnded ? mSaid.size() : mPeer.Write(mSaid);
    mSaid.erase(0, taken);
    return sent != 0 || taken != 0;
}

void PeerRun::Skip(Time now) {
    if (const auto due = mEngine.NextDeadline(); due && *due > now) mSkipped += *due - now;
}

bool PeerRun::IsOver() const {
    return mEngine.IsOver() && mSaid.empty() && mForth.IsIdle();
}

void PeerRun::WaitFor() {
    if (mPeer.HasEnded()) return;
    const short events = static_cast<short>(mSaid.empty() ? POLLIN : POLLIN | POLLOUT);
    pollfd ready{mPeer.Descriptor(), events, 0};
    const auto due = mEngine.NextDeadline();
    const Time span = due ? *due - mNow : std::chrono::milliseconds(20);
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(span).count();
    const bool moving = !mForth.IsIdle() || !mBack.IsIdle();
    poll(&ready, 1, static_cast<int>(std::clamp<std::int64_t>(wait, 0, moving ? 5 : 100)));
}

} // namespace qncomm::testing
