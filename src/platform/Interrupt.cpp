#include "platform/Interrupt.h"

#include <sys/signalfd.h>
#include <unistd.h>

namespace qncomm {
namespace {

sigset_t CaughtSignals() {
    sigset_t signals{};
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, number);
    return signals;
}

} // namespace

Interrupt::Interrupt() {
    const sigset_t signals = CaughtSignals();
    mHandle.Reset(::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC));
    // Without a descriptor to collect them from, blocked signals would never be noticed.
    if (mHandle) ::pthread_sigmask(SIG_BLOCK, &signals, &mFormer);
}

Interrupt::~Interrupt() {
    if (!mHandle) return;
    Collect(); // a signal that still waits would end the program once it is unblocked
    ::pthread_sigmask(SIG_SETMASK, &mFormer, nullptr);
}

bool Interrupt::Raised() {
    Collect();
    return mCount > 0;
}

std::int32_t Interrupt::Count() {
    Collect();
    return mCount;
}

void Interrupt::Clear() {
    Collect();
    mCount = 0;
    mSignal = 0;
}

void Interrupt::Collect() {
    signalfd_siginfo info{};
    while (::read(mHandle.Get(), &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
        ++mCount;
        mSignal = static_cast<int>(info.ssi_signo);
    }
}

} // namespace qncomm
