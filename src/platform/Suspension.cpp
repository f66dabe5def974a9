#include "platform/Suspension.h"

#include <initializer_list>
#include <utility>

#include <sys/signalfd.h>
#include <unistd.h>

namespace qncomm {
namespace {

sigset_t SetOf(std::initializer_list<int> numbers) {
    sigset_t signals{};
    sigemptyset(&signals);
    for (const int number : numbers)
        sigaddset(&signals, number);
    return signals;
}

/// Stops as the signal's usual action does; returns when the program goes on.
void Stop() {
    const sigset_t stop = SetOf({SIGTSTP});
    ::raise(SIGTSTP);
    ::pthread_sigmask(SIG_UNBLOCK, &stop, nullptr); // here it stops
    ::pthread_sigmask(SIG_BLOCK, &stop, nullptr);
}

} // namespace

Suspension::Suspension(Reactor& reactor, std::function<void()> giveBack,
                       std::function<void()> takeAgain)
    : mGiveBack(std::move(giveBack)), mTakeAgain(std::move(takeAgain)) {
    const sigset_t signals = SetOf({SIGTSTP, SIGCONT});
    mHandle.Reset(::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC));
    if (!mHandle) return; // then the signals act as they do anywhere
    ::pthread_sigmask(SIG_BLOCK, &signals, &mFormer);
    mWatch = reactor.Watch(mHandle.Get(), {.readable = true}, [this](FdEvents) { OnSignal(); });
}

Suspension::~Suspension() {
    if (mHandle) ::pthread_sigmask(SIG_SETMASK, &mFormer, nullptr);
}

void Suspension::Suspend() {
    ::kill(0, SIGTSTP);
}

/// Takes what has come; whether that signal was among it.
bool Suspension::Collect(int number) {
    bool came = false;
    signalfd_siginfo info{};
    while (::read(mHandle.Get(), &info, sizeof info) == static_cast<ssize_t>(sizeof info))
        came = came || static_cast<int>(info.ssi_signo) == number;
    return came;
}

void Suspension::OnSignal() {
    if (Collect(SIGTSTP)) {
        mGiveBack();
        Stop();
        Collect(SIGCONT); // taken again below, and once
    }
    mTakeAgain();
}

bool IsInBackground(int fd) {
    const pid_t job = ::tcgetpgrp(fd);
    return job >= 0 && job != ::getpgrp();
}

bool StopInBackground(int fd, int signal) {
    if (!IsInBackground(fd)) return false;
    ::raise(signal);
    return true;
}

} // namespace qncomm
