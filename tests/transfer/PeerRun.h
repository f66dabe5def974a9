#pragma once

#include "testing/programs/PeerProcess.h"
#include "testing/transfer/SimulatedLine.h"
#include "transfer/TransferFiles.h"

namespace qncomm::testing {

using namespace transfer;

// One engine against one program over a line that may be bad, in steps on the machine's clock. Once
// the program has ended and its last byte was heard, nothing can come any more: the engine's clock
// then jumps from deadline to deadline, so that its patience costs no time.
class PeerRun {
  public:
    // The ends outlive it. `seed` decides what the line does.
    PeerRun(TransferEngine& engine, FileSource* source, FileSink* sink, PeerProcess& peer,
            const LineSettings& line = {}, std::uint64_t seed = 1);

    // Does what can be done at `real`; false when nothing moved.
    bool Step(Time real);
    // Sleeps until something may move, a tenth of a second at most.
    void WaitFor();

    // The engine is over and its last word was said.
    [[nodiscard]] bool IsOver() const;
    // The longest that the engine waited, or now waits, behind the last byte that reached it.
    [[nodiscard]] Time Silence() const { return mNow - mLastByte; }
    [[nodiscard]] std::uint64_t Faults() const { return mForth.Faults() + mBack.Faults(); }
    // Bytes in both directions.
    [[nodiscard]] std::uint64_t Carried() const { return mForth.Carried() + mBack.Carried(); }

  private:
    bool Hear(Time now);
    bool Speak(Time now, bool bEnded);
    void Skip(Time now);

    TransferEngine& mEngine;
    FileSource* mSource;
    FileSink* mSink;
    PeerProcess& mPeer;
    SimulatedLine mForth;
    SimulatedLine mBack;
    std::string mHeard; // from the program, not yet on the line
    std::string mSaid;  // off the line, not yet taken by the program
    Time mNow{0};
    Time mSkipped{0};
    Time mLastByte{0};
    bool mStarted = false;
};

} // namespace qncomm::testing
