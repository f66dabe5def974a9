#pragma once

#include "platform/Fd.h"
#include "platform/Reactor.h"

#include <csignal>
#include <functional>
#include <memory>

namespace qncomm {

/// Lets a program that has changed its terminal be stopped (SIGTSTP) and continued (SIGCONT): the
/// terminal is given back before the stop, and taken again when the program goes on. One per
/// program, made before other threads start.
class Suspension {
  public:
    /// From the reactor's Yield, giveBack is called before the program stops, and takeAgain when it
    /// goes on, whatever has stopped it. The reactor must outlive the object.
    Suspension(Reactor& reactor, std::function<void()> giveBack, std::function<void()> takeAgain);
    /// Puts the former signal handling back.
    ~Suspension();
    Suspension(const Suspension&) = delete;
    Suspension& operator=(const Suspension&) = delete;

    /// Stops the program and what it shares its pipeline with, as Ctrl-Z does at a usual terminal.
    static void Suspend();

  private:
    bool Collect(int number);
    void OnSignal();

    std::function<void()> mGiveBack;
    std::function<void()> mTakeAgain;
    sigset_t mFormer{};
    Fd mHandle;
    std::unique_ptr<FdWatch> mWatch;
};

/// Whether another job than this program's has the terminal; never when fd is no terminal of this
/// session's.
bool IsInBackground(int fd);

/// Where another job has the terminal, stops this program until it is continued, as the system does
/// with who reads a terminal (SIGTTIN) or sets it up (SIGTTOU); but once, so that a program that is
/// to end when it is continued can. Returns whether it was so: the terminal is then to be left
/// alone.
bool StopInBackground(int fd, int signal);

} // namespace qncomm
