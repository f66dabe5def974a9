#pragma once

// A recorded session as the printer's side of a line.

#include "simulator/Options.h"
#include "trace/TraceReader.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

/// Answers as the recorded printer did: once the host has sent what it sent in the recording, byte
/// for byte, the bytes that followed there come back. Pieces may be cut otherwise than they were.
/// Bytes that were taken out of the recording stand for any of the host's, and for as many dots to
/// it. Times are the caller's monotonic microseconds.
class TracePlayer {
  public:
    /// delays: a reply comes as long after what was before it as in the recording, unless the host
    /// goes on first. Without it, replies come at once.
    TracePlayer(std::vector<qncomm::TraceRecord> records, bool delays);

    /// Bytes of the host. After a mismatch they are not looked at.
    void FromHost(std::string_view bytes, Micros now);
    /// Bytes for the host that are due, once.
    std::string ToHost(Micros now);
    /// When there is more for the host without its doing.
    std::optional<Micros> NextDue() const;

    /// The recorded line was lost here, and by now it is to be lost again. There is no way on.
    bool Lost(Micros now) const { return AtLoss() && NextDue().value_or(now) <= now; }

    /// Everything was sent and given out.
    bool Finished() const { return mNext == mRecords.size(); }
    /// Where the host did otherwise than recorded; empty as long as it did not.
    const std::string& Mismatch() const { return mMismatch; }
    /// What the host has still to send, with its place; empty when nothing.
    std::string Missing() const;

  private:
    const qncomm::TraceRecord& Current() const { return mRecords[mNext]; }
    std::size_t SizeOfCurrent() const;
    bool AtLoss() const { return !Finished() && Current().kind == qncomm::TraceKind::Event; }
    void GiveOut(Micros now, bool hostGoesOn);
    void Advance(Micros now);
    void Compare(std::string_view& bytes, Micros now);

    std::vector<qncomm::TraceRecord> mRecords; ///< those of bytes and losses
    bool mDelays;
    std::size_t mNext = 0;         ///< the record that is played
    std::size_t mMatched = 0;      ///< bytes of it that the host has sent
    std::optional<Micros> mBefore; ///< when the record before it was done; nothing at the start
    std::string mOutput;
    std::string mMismatch;
};

} // namespace qnsim
