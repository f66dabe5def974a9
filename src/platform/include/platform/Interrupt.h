#pragma once

#include "platform/Fd.h"

#include <csignal>
#include <cstdint>

namespace qncomm {

/// Turns SIGINT, SIGTERM and SIGHUP into a flag while it lives: they no longer end the program but
/// wake the loop that was given this object. One per program, made before other threads start.
class Interrupt {
  public:
    /// Blocks the three signals in this thread, and so in those that it starts later.
    Interrupt();
    /// Puts the former signal handling back; a signal that was not collected is dropped.
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Whether a signal has come since the last Clear. This is what a handler of StatusEvent passes
    /// on as its cancel flag.
    bool Raised();

    /// How many signals have come since the last Clear.
    std::int32_t Count();
    /// The number of the latest signal that was collected, 0 for none.
    int Signal() const { return mSignal; }

    /// Count without asking the system for more.
    std::int32_t KnownCount() const { return mCount; }

    /// Forgets what has come, for a program that goes on after a cancelled operation.
    void Clear();

    /// Readable while a signal waits to be collected.
    int Handle() const { return mHandle.Get(); }

  private:
    void Collect();

    sigset_t mFormer{};
    Fd mHandle;
    std::int32_t mCount = 0;
    int mSignal = 0;
};

} // namespace qncomm
