#include "ManualReactor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace qncomm::testing {
namespace {

constexpr std::int64_t NeverDue = std::numeric_limits<std::int64_t>::max();
constexpr std::int32_t EndlessYields = 1'000'000;

} // namespace

class ManualReactor::ManualAlarm final : public Alarm {
  public:
    ManualAlarm(ManualReactor& reactor, std::function<void()> handler)
        : mReactor(reactor), mHandler(std::move(handler)) {
        mReactor.mAlarms.push_back(this);
    }
    ~ManualAlarm() override { std::erase(mReactor.mAlarms, this); }
    ManualAlarm(const ManualAlarm&) = delete;
    ManualAlarm& operator=(const ManualAlarm&) = delete;

    void SetDue(std::int64_t lDueUs) override { due = lDueUs; }
    void Clear() override { due = NeverDue; }
    void Fire() {
        due = NeverDue;
        mHandler();
    }

    std::int64_t due = NeverDue;

  private:
    ManualReactor& mReactor;
    std::function<void()> mHandler;
};

class ManualReactor::ManualTimer final : public RunningTimer {
  public:
    ManualTimer(ManualReactor& reactor, std::int32_t interval, std::function<void()> handler)
        : mAlarm(reactor, [this, &reactor, interval, handler = std::move(handler)] {
              mAlarm.SetDue(reactor.NowUs() + std::int64_t{interval} * 1000);
              handler();
          }) {
        mAlarm.SetDue(reactor.NowUs() + std::int64_t{interval} * 1000);
    }

  private:
    ManualAlarm mAlarm;
};

void ManualReactor::Yield(std::int32_t lLimit) {
    if (++mYields > EndlessYields) {
        ADD_FAILURE() << "a wait does not end";
        throw std::runtime_error("a wait does not end");
    }
    if (RunDue() || lLimit <= 0) return;
    std::int64_t until = mNowUs + std::int64_t{lLimit} * 1000;
    for (const ManualAlarm* alarm : mAlarms)
        until = std::min(until, alarm->due);
    mNowUs = until;
    RunDue();
}

bool ManualReactor::RunDue() {
    const std::vector<ManualAlarm*> round = mAlarms;
    bool ran = false;
    for (ManualAlarm* alarm : round) {
        const bool alive = std::find(mAlarms.begin(), mAlarms.end(), alarm) != mAlarms.end();
        if (!alive || alarm->due > mNowUs) continue;
        alarm->Fire();
        ran = true;
    }
    return ran;
}

std::unique_ptr<RunningTimer> ManualReactor::StartTimer(std::int32_t lInterval,
                                                        std::function<void()> handler) {
    return std::make_unique<ManualTimer>(*this, lInterval, std::move(handler));
}

std::unique_ptr<FdWatch> ManualReactor::Watch(int fd, FdEvents /*events*/,
                                              std::function<void(FdEvents)> /*handler*/) {
    ADD_FAILURE() << "descriptor " << fd << " cannot be watched on a manual clock";
    throw std::runtime_error("no descriptors here");
}

std::unique_ptr<Alarm> ManualReactor::CreateAlarm(std::function<void()> handler) {
    return std::make_unique<ManualAlarm>(*this, std::move(handler));
}

FdEvents ManualReactor::WaitFor(int /*fd*/, FdEvents /*events*/, std::int64_t lLimitUs) {
    mNowUs += std::max<std::int64_t>(lLimitUs, 1); // even a look takes its time
    return {};
}

} // namespace qncomm::testing
