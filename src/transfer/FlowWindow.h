#pragma once

#include "RoundTrip.h"

#include <deque>
#include <vector>

namespace qncomm::transfer {

/// How many bytes may be on their way. It watches acknowledgements: the best rate seen and the
/// shortest round trip say what the line itself holds; more than that only queues up before the
/// line and has to be sent again after damage.
class FlowWindow {
  public:
    /// What one damage costs of the bytes that are under way.
    enum class Damage {
        LosesPiece, ///< the piece alone is sent again
        LosesAll,   ///< everything behind it as well
    };

    /// `tolerance`: which part of the line may be lost because bytes that stand queued have to be
    /// sent again after damage.
    FlowWindow(double tolerance, Damage damage) : mTolerance(tolerance), mDamage(damage) {}

    /// A mark was put on the line: `position` counts all bytes of the stream so far.
    void Marked(std::uint64_t position, Time now);
    /// Everything up to `position` has left the line. `bTimed`: the answer is to this mark and to
    /// no earlier try, so that rate and round trip can be told from it.
    void Acknowledged(std::uint64_t position, Time now, bool bTimed = true);
    /// Marks under way need not be acknowledged any more: the stream goes on from `position`.
    void Restart(std::uint64_t position);
    /// Whether a mark that a restart gave up stood at `position`: its acknowledgement may still
    /// come and would be taken for the answer to a new mark there, as if the line were much faster.
    [[nodiscard]] bool MayAnswerFormer(std::uint64_t position) const;

    /// Bytes allowed beyond what is acknowledged, for pieces of `piece` bytes.
    [[nodiscard]] std::uint64_t Size(std::uint64_t piece) const;
    /// How long to wait for an acknowledgement before it counts as lost.
    [[nodiscard]] Time RetryAfter(std::uint64_t piece) const;
    /// The shortest that was seen on a mark, 0 when none was.
    [[nodiscard]] Time ShortestRoundTrip() const { return mShortest; }
    /// How many errors there are for each byte; 0 when none was seen.
    void SetErrorRate(double rate) { mErrorRate = rate; }
    /// Damage was seen: the window is not to be widened any more to find out what the line takes.
    void Settle() { mRounds = Settled; }
    /// A round trip that was seen on something else than a mark.
    void SawRoundTrip(Time span) { mRoundTrip.Saw(span); }
    /// Whether an acknowledgement is on its way.
    [[nodiscard]] bool IsAwaiting() const { return !mMarks.empty(); }
    [[nodiscard]] std::uint64_t AcknowledgedTo() const { return mAcknowledged; }
    /// Bytes per second, 0 when not yet known.
    [[nodiscard]] double Rate() const;

  private:
    static constexpr int Settled = 100;

    struct Mark {
        std::uint64_t position;
        Time at;
        std::uint64_t acknowledged; ///< when it was put
        Time acknowledgedAt;
    };

    void TakeSample(const Mark& mark, Time now);
    void Grow();
    void Narrow();
    [[nodiscard]] double Spare(double bytes) const;

    double mTolerance;
    Damage mDamage;
    double mErrorRate = 0;
    std::deque<Mark> mMarks;
    bool mSampled = false;              ///< since the last restart
    std::vector<std::uint64_t> mFormer; ///< positions of marks that restarts gave up
    std::deque<double> mSamples;        ///< rates, bytes per second
    Time mShortest{0};
    std::uint64_t mAcknowledged = 0;
    Time mAcknowledgedAt{0};
    RoundTrip mRoundTrip;
    double mGrowFrom = 0;
    int mRounds = 0;
    std::uint64_t mRoundEnd = 0;
    std::uint64_t mOpening = 2048; ///< while the line is still being found out
};

} // namespace qncomm::transfer
