#pragma once

// The serial line between host and printer: settings on both sides, time on the wire, and faults.

#include "Die.h"
#include "Setup.h"
#include "simulator/LineFormat.h"
#include "simulator/Options.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>

namespace qnsim {

/// One direction of the line: bytes go in at one end and come out when they have passed.
class Wire {
  public:
    /// Puts bytes on the wire; each takes perByte nanoseconds after the one before it (0 = at
    /// once).
    void Put(std::string_view bytes, std::int64_t perByteNs, Micros now);
    /// Takes at most max of the bytes that have passed by now.
    std::string Take(Micros now, std::size_t max);
    /// Bytes that have not passed by now.
    std::size_t OnTheWay(Micros now) const;
    /// Bytes in it, passed or not.
    std::size_t Size() const { return mSize; }
    /// When that many of its bytes, or all where there are fewer, will have passed; absent while it
    /// is empty.
    std::optional<Micros> DueOf(std::size_t bytes) const;
    /// When the next byte will have passed.
    std::optional<Micros> NextDue() const { return DueOf(1); }
    /// Nothing passes before that time.
    void HoldUntil(Micros time);
    void Clear();
    /// Drops the bytes that have not passed by now.
    void ClearOnTheWay(Micros now);

  private:
    struct Chunk {
        std::string bytes;
        std::size_t taken = 0;
        std::int64_t startNs = 0; ///< when its first bit begins
        std::int64_t perByteNs = 0;
        std::int64_t DueNs(std::size_t index) const;
    };
    std::size_t Passed(const Chunk& chunk, std::int64_t nowNs) const;

    std::deque<Chunk> mChunks;
    std::size_t mSize = 0;
    std::int64_t mFreeNs = 0; ///< when the last byte put will have passed
};

class Line {
  public:
    Line(const Uart& uart, const Options& options);

    void SetUart(const Uart& uart) { mUart = uart; }
    const Uart& CurrentUart() const { return mUart; }
    /// What is on its way then was sent to a host that read it otherwise, and is lost.
    void SetHostFormat(const LineFormat& format, Micros now);

    /// The host's bytes as the printer's side will receive them.
    void HostSends(std::string_view bytes, Micros now);
    /// The printer's bytes as the host will receive them.
    void PrinterSends(std::string_view bytes, Micros now);

    Wire& ToPrinter() { return mToPrinter; }
    const Wire& ToPrinter() const { return mToPrinter; }
    Wire& ToHost() { return mToHost; }
    const Wire& ToHost() const { return mToHost; }
    /// Drops what has not reached the host.
    void DropToHost();
    HostErrors TakeHostErrors() { return std::exchange(mHostErrors, {}); }

    bool IsPaced() const { return mPaced; }
    bool IsCut() const { return mCut; }

    /// Either side understands the other. A receiver looks at the first stop bit alone, however
    /// many it is set to: a second one only has the sender wait longer before the next byte.
    bool Matches() const { return TimingMatches() && ParityMatches(); }

  private:
    /// The same as Matches, parity left aside.
    bool TimingMatches() const;
    bool ParityMatches() const { return mHost.parity.value_or(mUart.parity) == mUart.parity; }
    std::string Garble(std::string_view bytes, int fromBaud, int toBaud);
    void NoteHostErrors();
    void Damage(std::string& bytes);
    void StripToSevenBits(std::string& bytes) const;
    std::size_t UntilCut(std::size_t bytes);
    std::int64_t ByteTimeNs(bool fromHost) const;

    Uart mUart;
    LineFormat mHost;
    bool mPaced;
    Wire mToPrinter;
    Wire mToHost;
    Die mLost;
    Die mDoubled;
    Die mFlipped;
    Die mStall;
    int mStallMs;
    std::optional<std::size_t> mCutAfter;
    std::size_t mSentToHost = 0;
    HostErrors mHostErrors;
    std::mt19937_64 mNoise{1};
    bool mCut = false;
};

} // namespace qnsim
