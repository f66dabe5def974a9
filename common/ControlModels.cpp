#include "common/ControlModels.h"

#include "common/RuntimeErrors.h"

namespace qncomm {

void ProgressBarModel::SetValue(std::int32_t lValue) {
    if (lValue < mMin || lValue > mMax) RaiseRuntimeError(RtInvalidCall);
    if (lValue == mValue) return;
    mValue = lValue;
    Changed.Raise();
}

} // namespace qncomm
