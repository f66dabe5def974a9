#pragma once

#include "common/MessageLoop.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>

namespace qncomm {

/// The message loop as the operations of one control see it: they can be cancelled, while those of
/// another control on the same loop go on. The loop must outlive it.
class OperationLoop final : public MessageLoop {
  public:
    explicit OperationLoop(MessageLoop& loop) : mLoop(loop) {}

    std::int64_t NowMs() const override { return mLoop.NowMs(); }
    void Yield(std::int32_t lLimit) override;
    [[nodiscard]] std::unique_ptr<RunningTimer> StartTimer(std::int32_t lInterval,
                                                           std::function<void()> handler) override {
        return mLoop.StartTimer(lInterval, std::move(handler));
    }

    /// Each operation that still waits after lGraceMs sees its Yield throw OperationCancelled,
    /// once, so that what unwinds can still yield; the innermost one first.
    void Cancel(std::int32_t lGraceMs);
    /// Ends the cancelling, once all operations are over: the next one is not affected.
    void Forget();

  private:
    static constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();
    static constexpr int EveryDepth = std::numeric_limits<int>::max();

    bool MayBeEnded() const { return mDepth < mEndedDepth; }
    void CheckCancel();

    MessageLoop& mLoop;
    std::int64_t mCancelAt = Never;
    int mDepth = 0;               ///< Yields on the stack
    int mEndedDepth = EveryDepth; ///< an operation that deep or deeper has been ended
};

} // namespace qncomm
