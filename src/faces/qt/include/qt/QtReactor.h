#pragma once

#include "platform/Fd.h"
#include "platform/SystemReactor.h"

#include <QSocketNotifier>

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>

namespace qncomm {

/// The reactor of a Qt program: descriptors, alarms and timers are served by whatever event loop of
/// Qt runs, a modal dialog's included, and Yield is one pass of that loop, which never enters a
/// nested one. The kernel wakes it for what is due and for nothing else, to the microsecond.
///
/// What a handler throws never passes through Qt: when a Yield waits for this very loop it throws
/// the error, otherwise the error handler receives it. Made in the thread that runs the loop, with
/// a QCoreApplication there. The descriptors are ttys, sockets, pipes: not files on a disk.
class QtReactor final : public SystemReactor {
  public:
    /// Receives what a handler threw.
    using ErrorHandler = std::function<void(std::exception_ptr)>;

    /// onError receives what no Yield can throw; without one it is logged as a warning.
    explicit QtReactor(ErrorHandler onError = {});
    ~QtReactor() override;
    QtReactor(const QtReactor&) = delete;
    QtReactor& operator=(const QtReactor&) = delete;

    /// The reactor of the running application, which all controls of a program share; it ends with
    /// the application. Shows errors in a message box that does not block.
    static QtReactor& OfApplication();

    void Yield(std::int32_t lLimit) override;
    [[nodiscard]] std::unique_ptr<FdWatch> Watch(int fd, FdEvents events,
                                                 std::function<void(FdEvents)> handler) override;

  private:
    class WatchSlot;
    class YieldScope;
    class Owner;

    using FdHandler = std::shared_ptr<const std::function<void(FdEvents)>>;

    /// Calls what is due and ready. Returns whether there was anything.
    bool Serve();
    bool RunWatches();
    void OnWoken();
    void Arm();
    void Nudge(bool on);
    void ThrowWhatCame();

    ErrorHandler mOnError;
    Fd mEpoll;
    Fd mTimer;
    Fd mNudge;                                    ///< readable while something is due
    std::map<std::uint64_t, FdHandler> mHandlers; ///< by the watch's number
    std::uint64_t mLastWatch = 0;
    std::uint64_t mServed = 0; ///< how often watches were served; a nested pass shows by it

    bool mNudged = false;
    std::int64_t mArmedUs = AlarmQueue::Never;    ///< when the kernel's timer is to wake us
    std::int64_t mYieldEndUs = AlarmQueue::Never; ///< when the innermost sleeping Yield ends
    int mDepth = 0;                               ///< Yields on the stack
    int mServedDepth = 0;     ///< the Yield whose pass has served everything already
    int mYieldLoopLevel = -1; ///< the event loop in which the innermost of them was called
    std::exception_ptr mCame; ///< for the innermost Yield to throw
    QSocketNotifier mNotifier;
};

} // namespace qncomm
