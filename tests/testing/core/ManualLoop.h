#pragma once

#include "common/MessageLoop.h"

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace qncomm::testing {

/// A message loop whose clock stands still until somebody waits: a wait of 45 s takes no time.
class ManualLoop : public MessageLoop {
  public:
    /// Something besides timers that becomes due at a time of its own, such as bytes on a line.
    class Source {
      public:
        virtual ~Source() = default;
        virtual std::optional<std::int64_t> NextDue() const = 0;
        virtual void Dispatch() = 0;
    };

    std::int64_t NowMs() const override { return mNow; }

    /// Fails the test and throws when waits never end (a million of them).
    void Yield(std::int32_t lLimit) override;

    std::unique_ptr<RunningTimer> StartTimer(std::int32_t lInterval,
                                             std::function<void()> handler) override;

    /// Calls the handler from the first Yield that reaches lDelay ms from now.
    void After(std::int32_t lDelay, std::function<void()> handler);

    /// Moves the clock to lTime without dispatching anything.
    void MoveTo(std::int64_t lTime);

    void AddSource(Source& source) { mSources.push_back(&source); }
    void RemoveSource(Source& source) { std::erase(mSources, &source); }

    /// How often somebody yielded.
    std::int32_t Yields() const { return mYields; }

  private:
    bool DispatchDue();
    std::int64_t NextDue(std::int64_t limit) const;

    std::int64_t mNow = 1000;
    std::int32_t mYields = 0;
    std::multimap<std::int64_t, std::function<void()>> mTasks;
    std::vector<Source*> mSources;
};

} // namespace qncomm::testing
