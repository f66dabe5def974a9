#pragma once

#include "testing/transfer/MemoryFiles.h"
#include "testing/transfer/SimulatedLine.h"

#include <functional>

namespace qncomm::testing {

using namespace transfer;

/// Two engines at the two ends of a simulated line, run until both are over or the limit has come.
class TransferRig {
  public:
    TransferRig(TransferEngine& sender, FileSource& source, TransferEngine& receiver,
                FileSink& sink, const LineSettings& settings, std::uint64_t seed);
    /// The same with a way back of its own.
    TransferRig(TransferEngine& sender, FileSource& source, TransferEngine& receiver,
                FileSink& sink, const LineSettings& forth, const LineSettings& back,
                std::uint64_t seed);

    /// Returns true when both ends are over before `limit` has passed.
    bool Run(Time limit);

    [[nodiscard]] Time Elapsed() const { return mNow - StartOfClock; }
    [[nodiscard]] const SimulatedLine& Forth() const { return mForth; }
    [[nodiscard]] const SimulatedLine& Back() const { return mBack; }
    /// How much later than the other the slower end was over.
    [[nodiscard]] Time Farewell() const;
    /// The last moment at which a byte reached an end.
    [[nodiscard]] Time LastByte() const { return mLastByte - StartOfClock; }

    /// An end whose program was killed: it does nothing any more and counts as over.
    bool senderDead = false;
    bool receiverDead = false;

    /// Called after every step; a test acts in it (cancels, looks at the phase).
    std::function<void(Time)> onStep;

  private:
    static constexpr Time StartOfClock = std::chrono::seconds(1000);

    struct End {
        TransferEngine& engine;
        FileSource* source;
        FileSink* sink;
        Time overAt{0};
    };

    bool Step(End& end, SimulatedLine& out, SimulatedLine& in);
    bool Drain(SimulatedLine& in);
    void AdvanceClock(bool bBusy);

    End mSender;
    End mReceiver;
    SimulatedLine mForth;
    SimulatedLine mBack;
    Time mNow = StartOfClock;
    Time mLastByte = StartOfClock;
};

} // namespace qncomm::testing
