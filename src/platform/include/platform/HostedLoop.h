#pragma once

#include "platform/Fd.h"
#include "platform/SystemReactor.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace qncomm {

/// A loop that shows itself to a loop of somebody else as one descriptor: while that is readable,
/// a Yield of 0 has something to do. Between two turns of its own it sleeps like any other.
class HostedLoop final : public SystemReactor {
  public:
    /// What a host adds. Either may be empty; both are called on the loop's thread, within its
    /// waits.
    struct Options {
        /// A signal of the process ended a sleep, or WakeHandle was written to.
        std::function<void()> signalled = {};
        std::function<void()> cancelled = {}; ///< Cancel was called; may throw out of the wait
    };

    /// Throws std::runtime_error when the system has no descriptors left.
    explicit HostedLoop(Options options);
    /// A loop that hears neither signals nor a cancel.
    HostedLoop() : HostedLoop(Options()) {}
    ~HostedLoop() override;

    /// For the other loop: readable while something is due here, as of the last Arm. It stays the
    /// loop's.
    int Handle() const { return mEpoll.Get(); }
    /// Sets the time at which Handle becomes readable; to be called when control goes back to the
    /// other loop.
    void Arm();

    /// A byte written there, such as by a signal handler, wakes the loop, which then calls
    /// Options::signalled. It never waits; it stays the loop's.
    int WakeHandle() const { return mWakeEnd.Get(); }
    /// From any thread and from a signal handler: wakes the loop, which calls Options::cancelled
    /// once from its next Yield. A WaitFor that sleeps ends with OperationCancelled at once.
    void Cancel() noexcept;
    /// Forgets a Cancel that no wait has heard yet.
    void ForgetCancel();

    void Yield(std::int32_t lLimit) override;
    /// As in Reactor; throws OperationCancelled as Cancel says, once for each.
    FdEvents WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) override;
    [[nodiscard]] std::unique_ptr<FdWatch> Watch(int fd, FdEvents events,
                                                 std::function<void(FdEvents)> handler) override;

  private:
    class WatchSlot;
    friend class WatchSlot;

    using FdHandler = std::shared_ptr<const std::function<void(FdEvents)>>;

    void SetTimer(std::int64_t us);
    void SleepUntil(std::int64_t us, std::int64_t now);
    void RunWatches();
    bool HearCancel();
    void HearWake();
    bool TakeWake();

    Options mOptions;
    Fd mEpoll;
    Fd mTimer;
    Fd mWake;    ///< where bytes come out that wake
    Fd mWakeEnd; ///< where they are written
    std::map<std::uint64_t, FdHandler> mHandlers;
    std::uint64_t mLastWatch = 1; ///< the number of the newest watch; it counts from 2
    std::uint64_t mPass = 0;      ///< a round of handlers ends when one of them ran another
    std::int64_t mArmedUs;        ///< when the timer wakes the other loop
    std::atomic<bool> mCancelled = false;
    bool mThrown = false; ///< WaitFor has ended for this cancel
};

} // namespace qncomm
