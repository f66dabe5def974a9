#include "platform/PollLoop.h"

#include "common/QNError.h"
#include "platform/Interrupt.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <limits>
#include <optional>
#include <poll.h>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();
constexpr std::size_t InterruptSlot = 0;

short PollBits(FdEvents events) {
    return static_cast<short>((events.readable ? POLLIN : 0) | (events.writable ? POLLOUT : 0));
}

FdEvents EventsOf(short bits) {
    return {(bits & POLLIN) != 0, (bits & POLLOUT) != 0,
            (bits & (POLLHUP | POLLERR | POLLNVAL)) != 0};
}

/// Sleeps in the kernel until an entry is ready or the time has passed (Never: for ever). A signal
/// that interrupts the sleep counts as nothing ready.
int Sleep(pollfd* entries, std::size_t count, std::int64_t us) {
    timespec limit{};
    if (us != Never) {
        limit.tv_sec = static_cast<time_t>(us / 1'000'000);
        limit.tv_nsec = static_cast<long>(us % 1'000'000) * 1000;
    }
    return ::ppoll(entries, count, us == Never ? nullptr : &limit, nullptr);
}

std::int64_t LaterBy(std::int64_t now, std::int64_t us) {
    return us > Never - now ? Never : now + us;
}

} // namespace

class PollLoop::AlarmSlot final : public Alarm {
  public:
    AlarmSlot(PollLoop& loop, std::function<void()> handler)
        : mLoop(loop), mHandler(std::make_shared<const std::function<void()>>(std::move(handler))) {
        mLoop.mAlarms.push_back(this);
    }
    ~AlarmSlot() override {
        std::erase(mLoop.mAlarms, this);
        std::replace(mLoop.mDue.begin(), mLoop.mDue.end(), this, static_cast<AlarmSlot*>(nullptr));
    }
    AlarmSlot(const AlarmSlot&) = delete;
    AlarmSlot& operator=(const AlarmSlot&) = delete;

    void SetDue(std::int64_t lDueUs) override { mDueUs = lDueUs; }
    void Clear() override { mDueUs = Never; }
    std::int64_t DueUs() const { return mDueUs; }

    void Fire() {
        mDueUs = Never;
        const auto handler = mHandler; // the handler may end this alarm
        (*handler)();
    }

  private:
    PollLoop& mLoop;
    std::shared_ptr<const std::function<void()>> mHandler;
    std::int64_t mDueUs = Never;
};

class PollLoop::IntervalTimer final : public RunningTimer {
  public:
    IntervalTimer(PollLoop& loop, std::int32_t interval, std::function<void()> handler)
        : mLoop(loop),
          mIntervalUs(std::int64_t{std::max(interval, 1)} * 1000),
          mDueUs(loop.NowUs() + mIntervalUs),
          mAlarm(loop, [this, handler = std::move(handler)] {
              // Ticks that were missed during a long operation are not made up for.
              mDueUs = std::max(mDueUs + mIntervalUs, mLoop.NowUs() + 1);
              mAlarm.SetDue(mDueUs);
              handler();
          }) {
        mAlarm.SetDue(mDueUs);
    }

  private:
    PollLoop& mLoop;
    std::int64_t mIntervalUs;
    std::int64_t mDueUs;
    AlarmSlot mAlarm;
};

class PollLoop::WatchSlot final : public FdWatch {
  public:
    WatchSlot(PollLoop& loop, std::size_t slot) : mLoop(loop), mSlot(slot) {}
    ~WatchSlot() override {
        mLoop.mPoll[mSlot] = pollfd{-1, 0, 0};
        mLoop.mHandlers[mSlot].reset();
    }
    WatchSlot(const WatchSlot&) = delete;
    WatchSlot& operator=(const WatchSlot&) = delete;

    void Want(FdEvents events) override {
        pollfd& entry = mLoop.mPoll[mSlot];
        entry.events = PollBits(events);
        // A descriptor that hangs up reports so whether asked or not; a negative one never does.
        const bool idle = entry.events == 0;
        if (idle != (entry.fd < 0)) entry.fd = ~entry.fd;
        entry.revents = 0;
    }

  private:
    PollLoop& mLoop;
    std::size_t mSlot;
};

PollLoop::PollLoop(Interrupt* interrupt, std::int32_t lGraceMs)
    : mPoll{pollfd{interrupt != nullptr ? interrupt->Handle() : -1, POLLIN, 0}},
      mHandlers(1),
      mInterrupt(interrupt),
      mGraceUs(std::int64_t{lGraceMs} * 1000),
      mCancelAt(Never) {}

PollLoop::~PollLoop() = default;

std::int64_t PollLoop::NowUs() const {
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(since).count();
}

void PollLoop::Yield(std::int32_t lLimit) {
    const std::int64_t now = NowUs();
    CheckInterrupt(now);
    const bool ran = RunAlarms(now);
    const std::int64_t limit = LaterBy(now, std::int64_t{std::max(lLimit, 0)} * 1000);
    const std::int64_t until = ran ? now : std::min({limit, NextDue(), mCancelAt});
    const int ready = Sleep(mPoll.data(), mPoll.size(), std::max<std::int64_t>(until - now, 0));
    if (ready > 0) RunWatches();
    if (ran || until <= now) return;
    if (NextDue() <= until || mPoll[InterruptSlot].revents != 0 || mCancelAt <= until) {
        const std::int64_t later = NowUs();
        CheckInterrupt(later);
        RunAlarms(later);
    }
}

void PollLoop::RunWatches() {
    // By index: a handler may add watches, and a nested Yield may serve the rest of these.
    for (std::size_t slot = InterruptSlot + 1; slot < mPoll.size(); ++slot) {
        const short bits = std::exchange(mPoll[slot].revents, short{0});
        if (bits == 0) continue;
        const FdHandler handler = mHandlers[slot]; // the handler may end its watch
        if (handler) (*handler)(EventsOf(bits));
    }
}

bool PollLoop::RunAlarms(std::int64_t now) {
    if (NextDue() > now) return false;
    // The round calls what was due when it began, once each and in order of time; a nested Yield
    // has a round of its own and so takes what is left of this one.
    const std::size_t first = mDue.size();
    std::copy_if(mAlarms.begin(), mAlarms.end(), std::back_inserter(mDue),
                 [now](const AlarmSlot* alarm) { return alarm->DueUs() <= now; });
    std::stable_sort(mDue.begin() + static_cast<std::ptrdiff_t>(first), mDue.end(),
                     [](const AlarmSlot* left, const AlarmSlot* right) {
                         return left->DueUs() < right->DueUs();
                     });
    struct Round { // ends also when a handler throws
        std::vector<AlarmSlot*>& due;
        std::size_t first;
        ~Round() { due.resize(first); }
    } const round{mDue, first};
    const std::size_t last = mDue.size();
    for (std::size_t next = first; next < last; ++next)
        if (AlarmSlot* alarm = mDue[next]; alarm != nullptr && alarm->DueUs() <= now) alarm->Fire();
    return true;
}

std::int64_t PollLoop::NextDue() const {
    std::int64_t next = Never;
    for (const AlarmSlot* alarm : mAlarms)
        next = std::min(next, alarm->DueUs());
    return next;
}

void PollLoop::CheckInterrupt(std::int64_t now) {
    if (mInterrupt == nullptr) return;
    // Only what the poll saw is worth a system call; others may have collected a signal meanwhile.
    const bool waiting = std::exchange(mPoll[InterruptSlot].revents, short{0}) != 0;
    const std::int32_t count = waiting ? mInterrupt->Count() : mInterrupt->KnownCount();
    if (count == 0) mSignalsThrown = 0;
    if (count <= mSignalsThrown) {
        mCancelAt = Never;
        return;
    }
    if (mCancelAt == Never) mCancelAt = now + mGraceUs;
    if (count - mSignalsThrown < 2 && now < mCancelAt) return;
    mSignalsThrown = count;
    mCancelAt = Never;
    throw OperationCancelled();
}

std::unique_ptr<RunningTimer> PollLoop::StartTimer(std::int32_t lInterval,
                                                   std::function<void()> handler) {
    return std::make_unique<IntervalTimer>(*this, lInterval, std::move(handler));
}

std::unique_ptr<Alarm> PollLoop::CreateAlarm(std::function<void()> handler) {
    return std::make_unique<AlarmSlot>(*this, std::move(handler));
}

std::size_t PollLoop::FreeSlot() {
    for (std::size_t slot = InterruptSlot + 1; slot < mPoll.size(); ++slot)
        if (!mHandlers[slot]) return slot;
    mPoll.push_back(pollfd{-1, 0, 0});
    mHandlers.emplace_back();
    return mPoll.size() - 1;
}

std::unique_ptr<FdWatch> PollLoop::Watch(int fd, FdEvents events,
                                         std::function<void(FdEvents)> handler) {
    const std::size_t slot = FreeSlot();
    mHandlers[slot] = std::make_shared<const std::function<void(FdEvents)>>(std::move(handler));
    mPoll[slot].fd = fd;
    auto watch = std::make_unique<WatchSlot>(*this, slot);
    watch->Want(events);
    return watch;
}

FdEvents PollLoop::WaitFor(int fd, FdEvents events, std::int64_t lLimitUs) {
    const std::int64_t until = LaterBy(NowUs(), std::max<std::int64_t>(lLimitUs, 0));
    for (std::int64_t left = lLimitUs;; left = until - NowUs()) {
        pollfd entry{fd, PollBits(events), 0};
        const int ready = Sleep(&entry, 1, std::max<std::int64_t>(left, 0));
        if (ready > 0) return EventsOf(entry.revents);
        if (ready == 0 || errno != EINTR || NowUs() >= until) return {};
    }
}

} // namespace qncomm
