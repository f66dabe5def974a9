#pragma once

#include "common/MessageLoop.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace qncomm {

/// What a descriptor is watched for, or is ready for.
struct FdEvents {
    bool readable = false; ///< bytes, a connection or the end wait to be read
    bool writable = false; ///< there is room for bytes
    /// Only reported, never asked for: the other side hung up or the descriptor failed. A read or
    /// write tells why.
    bool hungUp = false;

    /// Whether it is ready for anything, a hang-up included.
    bool Any() const { return readable || writable || hungUp; }
};

/// Watches a descriptor while it lives. Ends before the descriptor is closed and before its
/// reactor.
class FdWatch {
  public:
    virtual ~FdWatch() = default;

    /// Changes what is watched for. Watching for nothing reports nothing, a hang-up included.
    virtual void Want(FdEvents events) = 0;
};

/// Calls its handler once, from Yield, when its time has come. Made once and set again as often as
/// wanted. Ends before its reactor.
class Alarm {
  public:
    virtual ~Alarm() = default;

    /// Sets the time (microseconds of Reactor::NowUs); one that has passed is due on the next
    /// Yield.
    virtual void SetDue(std::int64_t lDueUs) = 0;
    /// Takes the time back; nothing is called until a new one is set.
    virtual void Clear() = 0;
};

/// A message loop that also watches file descriptors. Single-threaded. A handler may create and end
/// watches and alarms, its own included, and may yield again.
class Reactor : public MessageLoop {
  public:
    /// Microseconds of the monotonic clock that NowMs shows in milliseconds.
    virtual std::int64_t NowUs() const = 0;
    /// The same in milliseconds.
    std::int64_t NowMs() const final { return NowUs() / 1000; }

    /// Calls the handler from Yield with what the descriptor is ready for, as long as it is, until
    /// the returned object goes away. The descriptor stays the caller's.
    [[nodiscard]] virtual std::unique_ptr<FdWatch> Watch(int fd, FdEvents events,
                                                         std::function<void(FdEvents)> handler) = 0;

    /// An alarm that is not set yet.
    [[nodiscard]] virtual std::unique_ptr<Alarm> CreateAlarm(std::function<void()> handler) = 0;

    /// Sleeps until the descriptor is ready or lLimitUs microseconds have passed, without
    /// dispatching anything. Returns what it is ready for. fd -1 only sleeps.
    virtual FdEvents WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) = 0;
};

} // namespace qncomm
