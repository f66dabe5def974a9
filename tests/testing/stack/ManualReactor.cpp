#include "testing/stack/ManualReactor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace qncomm::testing {
namespace {

constexpr std::int64_t EndlessYields = 10'000'000;

/// Sets its alarm again each time it goes off.
class IntervalTimer : public RunningTimer {
  public:
    IntervalTimer(ManualReactor& reactor, std::int64_t interval, std::function<void()> handler)
        : mReactor(reactor),
          mInterval(interval),
          mHandler(std::move(handler)),
          mAlarm(reactor.CreateAlarm([this] {
              mAlarm->SetDue(mReactor.NowUs() + mInterval);
              const auto call = mHandler; // the handler may end this timer
              call();
          })) {
        mAlarm->SetDue(mReactor.NowUs() + mInterval);
    }

  private:
    ManualReactor& mReactor;
    std::int64_t mInterval;
    std::function<void()> mHandler;
    std::unique_ptr<Alarm> mAlarm;
};

} // namespace

class ManualReactor::ManualAlarm : public Alarm {
  public:
    ManualAlarm(ManualReactor& reactor, std::function<void()> handler)
        : mReactor(reactor), mHandler(std::move(handler)) {}
    ~ManualAlarm() override { Clear(); }
    ManualAlarm(const ManualAlarm&) = delete;
    ManualAlarm& operator=(const ManualAlarm&) = delete;

    void SetDue(std::int64_t lDueUs) override {
        Clear();
        mReactor.mDue.emplace(lDueUs, this);
    }
    void Clear() override {
        std::erase_if(mReactor.mDue, [this](const auto& due) { return due.second == this; });
    }
    void Call() const {
        const auto call = mHandler; // the handler may end this alarm
        call();
    }

  private:
    ManualReactor& mReactor;
    std::function<void()> mHandler;
};

void ManualReactor::Yield(std::int32_t lLimit) {
    if (++mYields > EndlessYields) {
        ADD_FAILURE() << "a wait does not end";
        throw std::runtime_error("a wait does not end");
    }
    if (DispatchDue()) return WorkTakesTime();
    if (lLimit <= 0) return;
    const std::int64_t end = mNow + std::int64_t{lLimit} * 1000;
    mNow = mDue.empty() ? end : std::clamp(mDue.begin()->first, mNow, end);
    DispatchDue();
}

/// Somebody who always has something to do would stop the clock, and with it every wait's end.
void ManualReactor::WorkTakesTime() {
    constexpr int perMilli = 256;
    if (std::exchange(mWorkedAt, mNow) != mNow) mWork = 0;
    if (++mWork % perMilli == 0) mNow += 1000;
}

bool ManualReactor::DispatchDue() {
    // Alarms that a handler sets for now wait for the next yield, as on a real loop.
    std::vector<ManualAlarm*> ready;
    for (auto due = mDue.begin(); due != mDue.end() && due->first <= mNow; ++due)
        ready.push_back(due->second);
    for (ManualAlarm* alarm : ready) {
        const auto still = std::find_if(mDue.begin(), mDue.end(), [&](const auto& due) {
            return due.second == alarm && due.first <= mNow;
        });
        if (still == mDue.end()) continue; // ended or set anew by a handler before it
        mDue.erase(still);
        alarm->Call();
    }
    return !ready.empty();
}

std::unique_ptr<RunningTimer> ManualReactor::StartTimer(std::int32_t lInterval,
                                                        std::function<void()> handler) {
    return std::make_unique<IntervalTimer>(*this, std::int64_t{lInterval} * 1000,
                                           std::move(handler));
}

std::unique_ptr<FdWatch> ManualReactor::Watch(int fd, FdEvents, std::function<void(FdEvents)>) {
    ADD_FAILURE() << "descriptor " << fd << " on a clock that is driven";
    throw std::logic_error("this reactor has no descriptors");
}

std::unique_ptr<Alarm> ManualReactor::CreateAlarm(std::function<void()> handler) {
    return std::make_unique<ManualAlarm>(*this, std::move(handler));
}

FdEvents ManualReactor::WaitFor(int fd, FdEvents, std::int64_t lLimitUs) {
    if (fd >= 0) ADD_FAILURE() << "descriptor " << fd << " on a clock that is driven";
    mNow += std::max<std::int64_t>(lLimitUs, 1); // even a look takes its time
    return {};
}

void ManualReactor::Pass(std::int32_t lMilliseconds) {
    const std::int64_t end = mNow + std::int64_t{lMilliseconds} * 1000;
    while (mNow < end)
        Yield(static_cast<std::int32_t>((end - mNow + 999) / 1000));
}

} // namespace qncomm::testing
