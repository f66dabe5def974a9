#pragma once

#include <cstdint>

namespace qncomm {

struct LinkState;

/// Takes the link off the serial control's events while it lives, so that received bytes can be
/// read directly, and puts it back with the threshold that was.
class DetachedSink {
  public:
    explicit DetachedSink(LinkState& state);
    ~DetachedSink();
    DetachedSink(const DetachedSink&) = delete;
    DetachedSink& operator=(const DetachedSink&) = delete;

    /// Detaches once more, after something else has put the sink back.
    void Detach();

  private:
    LinkState& mState;
    std::int16_t mThreshold;
};

} // namespace qncomm
