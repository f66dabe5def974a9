#pragma once

#include "platform/SystemReactor.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

struct pollfd;

namespace qncomm {

class Interrupt;

/// The loop of a program without a toolkit: sleeps in the kernel until a descriptor is ready, an
/// alarm or timer is due, a signal came or the limit has passed, and wakes for nothing else. One
/// system call for each Yield.
///
/// With an Interrupt (not owned, outlives the loop) Yield returns early when a signal comes, so
/// that the running operation can see the flag and end by itself. It throws OperationCancelled when
/// the flag is still up after the grace period, or at once for a second signal; then not again
/// but for a further signal, so that what unwinds can still yield: each signal ends one wait.
/// WaitFor, whose caller sees no flag, throws just so; what unwinds may wait there for as long as
/// the grace period at most.
class PollLoop final : public SystemReactor {
  public:
    /// How long an operation that was interrupted may go on before Yield ends it, in ms.
    static constexpr std::int32_t GraceMs = 150;

    /// A loop that heeds the interrupt, if there is one. lGraceMs is in milliseconds.
    explicit PollLoop(Interrupt* interrupt = nullptr, std::int32_t lGraceMs = GraceMs);
    ~PollLoop() override;
    PollLoop(const PollLoop&) = delete;
    PollLoop& operator=(const PollLoop&) = delete;

    /// As in MessageLoop; throws OperationCancelled as the class says.
    void Yield(std::int32_t lLimit) override;
    /// As in Reactor; throws OperationCancelled as the class says.
    FdEvents WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) override;
    [[nodiscard]] std::unique_ptr<FdWatch> Watch(int fd, FdEvents events,
                                                 std::function<void(FdEvents)> handler) override;

  private:
    class WatchSlot;
    friend class WatchSlot;

    using FdHandler = std::shared_ptr<const std::function<void(FdEvents)>>;

    void RunWatches();
    void CheckInterrupt(std::int64_t now);
    std::size_t FreeSlot();

    std::vector<pollfd> mPoll; ///< one entry for each watch; the first is the interrupt's
    std::vector<FdHandler> mHandlers;
    Interrupt* mInterrupt;
    std::int64_t mGraceUs;
    std::int64_t mCancelAt;          ///< when a raised interrupt ends the running operation
    std::int64_t mUnwoundAt;         ///< until when what unwinds may wait without dispatching
    std::int32_t mSignalsThrown = 0; ///< how many of the signals Yield has thrown for
};

} // namespace qncomm
