#include "testing/core/ManualLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace qncomm::testing {
namespace {

constexpr std::int32_t EndlessWait = 1'000'000;

class ManualTimer : public RunningTimer {
  public:
    ManualTimer(ManualLoop& loop, std::int32_t interval, std::function<void()> handler)
        : mHandler(std::make_shared<std::function<void()>>(std::move(handler))) {
        Arm(loop, interval, mHandler);
    }

  private:
    static void Arm(ManualLoop& loop, std::int32_t interval,
                    const std::weak_ptr<std::function<void()>>& weak) {
        loop.After(interval, [&loop, interval, weak] {
            const auto handler = weak.lock();
            if (!handler) return;
            Arm(loop, interval, weak);
            (*handler)();
        });
    }

    std::shared_ptr<std::function<void()>> mHandler;
};

} // namespace

void ManualLoop::Yield(std::int32_t lLimit) {
    if (++mYields > EndlessWait) {
        ADD_FAILURE() << "a wait does not end";
        throw std::runtime_error("a wait does not end");
    }
    if (DispatchDue() || lLimit <= 0) return;
    MoveTo(NextDue(mNow + lLimit));
    DispatchDue();
}

std::unique_ptr<RunningTimer> ManualLoop::StartTimer(std::int32_t lInterval,
                                                     std::function<void()> handler) {
    return std::make_unique<ManualTimer>(*this, lInterval, std::move(handler));
}

void ManualLoop::After(std::int32_t lDelay, std::function<void()> handler) {
    mTasks.emplace(mNow + lDelay, std::move(handler));
}

void ManualLoop::MoveTo(std::int64_t lTime) {
    mNow = std::max(mNow, lTime);
}

bool ManualLoop::DispatchDue() {
    bool dispatched = false;
    while (!mTasks.empty() && mTasks.begin()->first <= mNow) {
        const auto task = std::move(mTasks.begin()->second);
        mTasks.erase(mTasks.begin());
        task();
        dispatched = true;
    }
    for (Source* source : std::vector(mSources)) {
        const auto due = source->NextDue();
        if (!due || *due > mNow) continue;
        source->Dispatch();
        dispatched = true;
    }
    return dispatched;
}

std::int64_t ManualLoop::NextDue(std::int64_t limit) const {
    if (!mTasks.empty()) limit = std::min(limit, mTasks.begin()->first);
    for (const Source* source : mSources)
        limit = std::min(limit, source->NextDue().value_or(limit));
    return limit;
}

} // namespace qncomm::testing
