#include "OperationLoop.h"

#include "common/CountedScope.h"
#include "common/QNError.h"

#include <algorithm>

namespace qncomm {

void OperationLoop::Yield(std::int32_t lLimit) {
    const CountedScope deeper(mDepth);
    CheckCancel();
    const bool ends = mCancelAt != Never && MayBeEnded();
    const std::int64_t left = ends ? mCancelAt - NowMs() : lLimit;
    mLoop.Yield(static_cast<std::int32_t>(std::min<std::int64_t>(lLimit, left)));
    CheckCancel();
}

void OperationLoop::Cancel(std::int32_t lGraceMs) {
    mCancelAt = std::min(mCancelAt, NowMs() + lGraceMs);
}

void OperationLoop::Forget() {
    mCancelAt = Never;
    mEndedDepth = EveryDepth;
}

void OperationLoop::CheckCancel() {
    if (mCancelAt == Never || NowMs() < mCancelAt || !MayBeEnded()) return;
    // The operation may have run in a handler within the Yield of another one, which ends next.
    mEndedDepth = mDepth;
    throw OperationCancelled();
}

} // namespace qncomm
