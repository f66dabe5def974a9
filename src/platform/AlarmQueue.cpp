#include "platform/AlarmQueue.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace qncomm {

class AlarmQueue::Slot final : public Alarm {
  public:
    Slot(AlarmQueue& queue, std::function<void()> handler)
        : mQueue(queue),
          mHandler(std::make_shared<const std::function<void()>>(std::move(handler))) {
        mQueue.mSlots.push_back(this);
    }
    ~Slot() override {
        std::erase(mQueue.mSlots, this);
        std::replace(mQueue.mDue.begin(), mQueue.mDue.end(), this, static_cast<Slot*>(nullptr));
    }
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    void SetDue(std::int64_t lDueUs) override {
        mDueUs = lDueUs;
        if (mQueue.mEarlier) mQueue.mEarlier();
    }
    void Clear() override { mDueUs = Never; }
    std::int64_t DueUs() const { return mDueUs; }

    void Fire() {
        mDueUs = Never;
        const auto handler = mHandler; // the handler may end this alarm
        (*handler)();
    }

  private:
    AlarmQueue& mQueue;
    std::shared_ptr<const std::function<void()>> mHandler;
    std::int64_t mDueUs = Never;
};

class AlarmQueue::IntervalTimer final : public RunningTimer {
  public:
    IntervalTimer(AlarmQueue& queue, std::int32_t interval, std::function<void()> handler)
        : mClock(queue.mClock),
          mIntervalUs(std::int64_t{std::max(interval, 1)} * 1000),
          mDueUs(mClock.NowUs() + mIntervalUs),
          mAlarm(queue, [this, handler = std::move(handler)] {
              mDueUs = std::max(mDueUs + mIntervalUs, mClock.NowUs() + 1);
              mAlarm.SetDue(mDueUs);
              handler();
          }) {
        mAlarm.SetDue(mDueUs);
    }

  private:
    const Reactor& mClock;
    std::int64_t mIntervalUs;
    std::int64_t mDueUs;
    Slot mAlarm;
};

AlarmQueue::AlarmQueue(const Reactor& clock, std::function<void()> earlier)
    : mClock(clock), mEarlier(std::move(earlier)) {}

AlarmQueue::~AlarmQueue() = default;

std::unique_ptr<Alarm> AlarmQueue::Create(std::function<void()> handler) {
    return std::make_unique<Slot>(*this, std::move(handler));
}

std::unique_ptr<RunningTimer> AlarmQueue::StartTimer(std::int32_t lInterval,
                                                     std::function<void()> handler) {
    return std::make_unique<IntervalTimer>(*this, lInterval, std::move(handler));
}

bool AlarmQueue::RunDue(std::int64_t lNowUs) {
    if (NextDue() > lNowUs) return false;
    // A handler may call RunDue again; that call then runs what this one has left.
    const std::size_t first = mDue.size();
    std::copy_if(mSlots.begin(), mSlots.end(), std::back_inserter(mDue),
                 [lNowUs](const Slot* slot) { return slot->DueUs() <= lNowUs; });
    std::stable_sort(
        mDue.begin() + static_cast<std::ptrdiff_t>(first), mDue.end(),
        [](const Slot* left, const Slot* right) { return left->DueUs() < right->DueUs(); });
    struct Round { // ends also when a handler throws
        std::vector<Slot*>& due;
        std::size_t first;
        ~Round() { due.resize(first); }
    } const round{mDue, first};
    const std::size_t last = mDue.size();
    for (std::size_t next = first; next < last; ++next)
        if (Slot* slot = mDue[next]; slot != nullptr && slot->DueUs() <= lNowUs) slot->Fire();
    return true;
}

std::int64_t AlarmQueue::NextDue() const {
    std::int64_t next = Never;
    for (const Slot* slot : mSlots)
        next = std::min(next, slot->DueUs());
    return next;
}

} // namespace qncomm
