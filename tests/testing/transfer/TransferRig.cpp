#include "testing/transfer/TransferRig.h"

#include <algorithm>

namespace qncomm::testing {

using namespace transfer;

namespace {

constexpr Time StepSpan = std::chrono::milliseconds(1);

} // namespace

TransferRig::TransferRig(TransferEngine& sender, FileSource& source, TransferEngine& receiver,
                         FileSink& sink, const LineSettings& settings, std::uint64_t seed)
    : TransferRig(sender, source, receiver, sink, settings, settings, seed) {}

TransferRig::TransferRig(TransferEngine& sender, FileSource& source, TransferEngine& receiver,
                         FileSink& sink, const LineSettings& forth, const LineSettings& back,
                         std::uint64_t seed)
    : mSender{sender, &source, nullptr},
      mReceiver{receiver, nullptr, &sink},
      mForth(forth, seed * 2 + 1),
      mBack(back, seed * 2 + 2) {
    mForth.Advance(mNow);
    mBack.Advance(mNow);
}

bool TransferRig::Run(Time limit) {
    mReceiver.engine.Start(mNow);
    mSender.engine.Start(mNow);
    while (mNow - StartOfClock <= limit) {
        const bool sent = senderDead ? Drain(mBack) : Step(mSender, mForth, mBack);
        const bool received = receiverDead ? Drain(mForth) : Step(mReceiver, mBack, mForth);
        if (onStep) onStep(mNow);
        if ((senderDead || mSender.engine.IsOver()) && (receiverDead || mReceiver.engine.IsOver()))
            return true;
        AdvanceClock(sent || received || !mForth.IsIdle() || !mBack.IsIdle());
    }
    return false;
}

Time TransferRig::Farewell() const {
    return std::max(mSender.overAt, mReceiver.overAt) - std::min(mSender.overAt, mReceiver.overAt);
}

// What comes to an end that is dead is lost.
bool TransferRig::Drain(SimulatedLine& in) {
    in.Advance(mNow);
    return !in.Arrived(mNow).empty();
}

// One end takes what arrived, is told the time, and puts what the line takes. True when anything
// moved.
bool TransferRig::Step(End& end, SimulatedLine& out, SimulatedLine& in) {
    bool moved = false;
    in.Advance(mNow);
    if (const std::string arrived = in.Arrived(mNow); !arrived.empty()) {
        end.engine.Receive(arrived, mNow);
        mLastByte = mNow;
        moved = true;
    }
    if (const auto deadline = end.engine.NextDeadline(); deadline && *deadline <= mNow) {
        end.engine.Tick(mNow);
        moved = true;
    }
    out.Advance(mNow); // what is written now has no share in the time that has passed
    for (;;) {
        const std::string_view output = ServedOutput(end.engine, end.source, end.sink, mNow);
        const std::size_t taken = out.Write(output);
        if (taken == 0) break;
        end.engine.Sent(taken, mNow);
        moved = true;
    }
    if (end.engine.IsOver() && end.overAt == Time{0}) end.overAt = mNow;
    return moved;
}

void TransferRig::AdvanceClock(bool bBusy) {
    Time next = mNow + StepSpan;
    if (!bBusy) {
        Time deadline = mNow + std::chrono::seconds(60);
        for (const TransferEngine* engine : {&mSender.engine, &mReceiver.engine}) {
            if (const auto due = engine->NextDeadline()) deadline = std::min(deadline, *due);
        }
        next = std::max(next, deadline);
    }
    mNow = next;
}

} // namespace qncomm::testing
