#pragma once

#include "common/Event.h"

#include <cstdint>

namespace qncomm {

/// A progress bar as a plain object; a face shows it and follows Changed.
class ProgressBarModel {
  public:
    ProgressBarModel(std::int32_t lMin, std::int32_t lMax) : mMin(lMin), mMax(lMax), mValue(lMin) {}

    std::int32_t Min() const { return mMin; }
    std::int32_t Max() const { return mMax; }
    std::int32_t Value() const { return mValue; }

    /// Raises 5 for a value outside Min to Max; the bar then stays as it is.
    void SetValue(std::int32_t lValue);

    Event<> Changed;

  private:
    std::int32_t mMin;
    std::int32_t mMax;
    std::int32_t mValue;
};

} // namespace qncomm
