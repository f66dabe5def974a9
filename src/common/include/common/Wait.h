#pragma once

#include "common/MessageLoop.h"
#include "common/StopWatch.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace qncomm {

/// How a wait has ended. Its control's end, a closed port and a cancel are no such end: they leave
/// the wait as errors, or are what it awaits.
enum class WaitEnd {
    Met,     ///< what was awaited is there
    Silent,  ///< nothing came for as long as it may
    Late,    ///< its whole time is over, whatever came meanwhile
    TooMuch, ///< more came than it takes
};

/// What bounds a wait.
struct WaitBounds {
    /// No bound in time; for what a person, or a protocol with deadlines of its own, ends.
    static constexpr std::int32_t Endless = std::numeric_limits<std::int32_t>::max();
    /// No bound in bytes; for what keeps nothing of them.
    static constexpr std::size_t AnyNumber = std::numeric_limits<std::size_t>::max();

    /// The most ms that it may take, counted from its start: no byte makes it longer.
    std::int32_t wholeMs;
    /// The most ms in which nothing may come.
    std::int32_t silenceMs = Endless;
    /// The most bytes that may come.
    std::size_t bytes = AnyNumber;
    /// The longest sleep between two looks in ms, for what tells nobody of its changes.
    std::int32_t stepMs = Endless;
};

/// The one kind of wait of the system: it looks, sleeps and looks again, until what it awaits is
/// there or one of its bounds is reached. It counts from its construction, however often it sleeps
/// on. What it sleeps in hears a cancel, and raises when the wait's control has gone.
class Wait {
  public:
    /// Counts from now on. The clock must outlive it.
    Wait(const Clock& clock, const WaitBounds& bounds);

    /// Something came that it keeps nothing of: the silence counts anew.
    void Heard() { mSilence.Restart(); }
    /// The same, and from now on the silence may be so many ms long.
    void Heard(std::int32_t lSilenceMs);
    /// Its whole time is from now on so many ms, counted from its start all the same.
    void Within(std::int32_t lWholeMs) { mBounds.wholeMs = lWholeMs; }
    /// It looks again after that many ms at the latest, at least 1.
    void LookAgainIn(std::int32_t lStepMs);
    /// So many bytes came that are kept. None is no news.
    void Came(std::size_t bytes);

    /// How many ms it may sleep now; 0 when a bound is reached.
    std::int32_t LeftMs() const;

    /// Sleeps until done, asked before each sleep, says that what is awaited is there. sleep is
    /// called with the most ms that it may take, and returns when something may have changed.
    template <class Done, class Sleep>
    WaitEnd Until(Done done, Sleep sleep) {
        while (!done()) {
            const std::int32_t left = LeftMs();
            if (left == 0) return Reached();
            sleep(left);
        }
        return WaitEnd::Met;
    }
    /// The same, sleeping in the host's loop, which dispatches what is due.
    template <class Done>
    WaitEnd UntilIn(MessageLoop& loop, Done done) {
        return Until(done, [&loop](std::int32_t ms) { loop.Yield(ms); });
    }

  private:
    WaitEnd Reached() const;

    WaitBounds mBounds;
    StopWatch mWhole;
    StopWatch mSilence;
    std::size_t mCame = 0;
};

} // namespace qncomm
