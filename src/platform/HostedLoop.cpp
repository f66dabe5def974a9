#include "platform/HostedLoop.h"

#include "PollCalls.h"
#include "common/QNError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace qncomm {
namespace {

constexpr std::uint64_t TimerMark = 0; ///< watches count from 2
constexpr std::uint64_t WakeMark = 1;
constexpr int MostReadyAtOnce = 32;

std::uint32_t EpollBits(FdEvents events) {
    return (events.readable ? EPOLLIN : 0U) | (events.writable ? EPOLLOUT : 0U);
}

FdEvents EventsOfEpoll(std::uint32_t bits) {
    return {(bits & EPOLLIN) != 0, (bits & EPOLLOUT) != 0, (bits & (EPOLLHUP | EPOLLERR)) != 0};
}

int NeededFd(int fd) {
    if (fd < 0) throw std::runtime_error("The system has no descriptors left.");
    return fd;
}

void Register(int epoll, int operation, int fd, std::uint64_t mark, std::uint32_t bits) {
    epoll_event event{};
    event.events = bits;
    event.data.u64 = mark;
    ::epoll_ctl(epoll, operation, fd, &event);
}

itimerspec AbsoluteTime(std::int64_t us) {
    itimerspec time{};
    if (us == AlarmQueue::Never) return time; // all zero: off
    const std::int64_t positive = std::max<std::int64_t>(us, 1);
    time.it_value.tv_sec = static_cast<time_t>(positive / 1'000'000);
    time.it_value.tv_nsec = static_cast<long>(positive % 1'000'000) * 1000;
    return time;
}

} // namespace

/// One watch, of a duplicate of the descriptor: one descriptor may be watched by several.
class HostedLoop::WatchSlot final : public FdWatch {
  public:
    WatchSlot(HostedLoop& loop, int fd, std::uint64_t number)
        : mLoop(loop), mFd(NeededFd(::fcntl(fd, F_DUPFD_CLOEXEC, 3))), mNumber(number) {}
    ~WatchSlot() override {
        Want({});
        mLoop.mHandlers.erase(mNumber);
    }
    WatchSlot(const WatchSlot&) = delete;
    WatchSlot& operator=(const WatchSlot&) = delete;

    void Want(FdEvents events) override {
        // A descriptor that has hung up reports that whatever is asked for: it is taken out
        // instead.
        const std::uint32_t bits = EpollBits(events);
        const std::uint32_t former = std::exchange(mBits, bits);
        if (bits == former) return;
        const int operation = former == 0 ? EPOLL_CTL_ADD : EPOLL_CTL_MOD;
        Register(mLoop.mEpoll.Get(), bits == 0 ? EPOLL_CTL_DEL : operation, mFd.Get(), mNumber,
                 bits);
    }

  private:
    HostedLoop& mLoop;
    Fd mFd;
    std::uint64_t mNumber;
    std::uint32_t mBits = 0;
};

HostedLoop::HostedLoop(Options options)
    : mOptions(std::move(options)),
      mEpoll(NeededFd(::epoll_create1(EPOLL_CLOEXEC))),
      mTimer(NeededFd(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK))),
      mArmedUs(AlarmQueue::Never) {
    std::array<int, 2> ends{-1, -1};
    NeededFd(::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK));
    mWake.Reset(ends[0]);
    mWakeEnd.Reset(ends[1]);
    Register(mEpoll.Get(), EPOLL_CTL_ADD, mTimer.Get(), TimerMark, EPOLLIN);
    Register(mEpoll.Get(), EPOLL_CTL_ADD, mWake.Get(), WakeMark, EPOLLIN);
}

HostedLoop::~HostedLoop() = default;

void HostedLoop::Arm() {
    SetTimer(mAlarms.NextDue());
}

void HostedLoop::SetTimer(std::int64_t us) {
    if (us == mArmedUs) return;
    mArmedUs = us;
    const itimerspec time = AbsoluteTime(us);
    ::timerfd_settime(mTimer.Get(), TFD_TIMER_ABSTIME, &time, nullptr);
}

void HostedLoop::Cancel() noexcept {
    mCancelled = true;
    // A pipe that is full wakes as well.
    [[maybe_unused]] const auto written = ::write(mWakeEnd.Get(), "c", 1);
}

void HostedLoop::ForgetCancel() {
    if (!mCancelled.exchange(false)) return;
    mThrown = false;
    TakeWake();
}

/// Takes out what has woken the loop; returns whether there was anything.
bool HostedLoop::TakeWake() {
    std::array<char, 64> bytes{};
    bool any = false;
    while (::read(mWake.Get(), bytes.data(), bytes.size()) > 0)
        any = true;
    return any;
}

void HostedLoop::HearWake() {
    if (TakeWake() && mOptions.signalled) mOptions.signalled();
}

bool HostedLoop::HearCancel() {
    if (!mCancelled) return false;
    ForgetCancel();
    if (mOptions.cancelled) mOptions.cancelled();
    return true;
}

void HostedLoop::Yield(std::int32_t lLimit) {
    const bool heard = HearCancel();
    const std::int64_t now = NowUs();
    if (mArmedUs <= now) SetTimer(AlarmQueue::Never); // it would wake this sleep, too
    const bool ran = mAlarms.RunDue(now) || heard;
    const std::int64_t limit = LaterBy(now, std::int64_t{std::max(lLimit, 0)} * 1000);
    const std::int64_t until = ran ? now : std::min(limit, mAlarms.NextDue());
    if (until > now) SleepUntil(until, now);
    RunWatches();
    HearCancel();
    if (!ran && until > now && mAlarms.NextDue() <= until) mAlarms.RunDue(NowUs());
}

void HostedLoop::SleepUntil(std::int64_t us, std::int64_t now) {
    pollfd entry{mEpoll.Get(), POLLIN, 0};
    const std::int64_t left = us == AlarmQueue::Never ? us : us - now;
    if (Sleep(&entry, 1, left) < 0 && errno == EINTR && mOptions.signalled) mOptions.signalled();
}

FdEvents HostedLoop::WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) {
    std::int64_t now = NowUs();
    const std::int64_t until = LaterBy(now, std::max<std::int64_t>(lLimitUs, 0));
    do {
        if (mCancelled && !std::exchange(mThrown, true)) throw OperationCancelled();
        std::array entries{pollfd{fd, PollBits(events), 0},
                           pollfd{mThrown ? -1 : mWake.Get(), POLLIN, 0}};
        const int ready =
            Sleep(entries.data(), entries.size(), std::max<std::int64_t>(until - now, 0));
        if (ready < 0 && errno == EINTR && mOptions.signalled) mOptions.signalled();
        if (ready > 0 && entries[0].revents != 0) return EventsOf(entries[0].revents);
        if (ready > 0 && !mCancelled) HearWake();
        now = NowUs();
    } while (now < until);
    return {};
}

void HostedLoop::RunWatches() {
    std::array<epoll_event, MostReadyAtOnce> ready{};
    const int count = ::epoll_wait(mEpoll.Get(), ready.data(), MostReadyAtOnce, 0);
    const std::uint64_t pass = ++mPass;
    for (int i = 0; i < count; ++i) {
        const epoll_event& event = ready.at(static_cast<std::size_t>(i));
        if (event.data.u64 == WakeMark && !mCancelled) HearWake();
        const auto found = mHandlers.find(event.data.u64);
        if (found == mHandlers.end()) continue;  // one of the loop's own, or a watch that ended
        const FdHandler handler = found->second; // the handler may end its watch
        (*handler)(EventsOfEpoll(event.events));
        if (mPass != pass) break; // a nested round has served the others; who is ready stays so
    }
}

std::unique_ptr<FdWatch> HostedLoop::Watch(int fd, FdEvents events,
                                           std::function<void(FdEvents)> handler) {
    const std::uint64_t number = ++mLastWatch;
    auto watch = std::make_unique<WatchSlot>(*this, fd, number);
    mHandlers[number] = std::make_shared<const std::function<void(FdEvents)>>(std::move(handler));
    watch->Want(events);
    return watch;
}

} // namespace qncomm
