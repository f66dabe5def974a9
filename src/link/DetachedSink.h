#pragma once

#include "link/clsDataLink.h"

namespace qncomm {

/// Takes the link off the serial control's events while it lives, so that received bytes can be
/// read directly, and puts it back with a threshold of 1.
class DetachedSink {
  public:
    explicit DetachedSink(clsDataLink& link);
    ~DetachedSink();
    DetachedSink(const DetachedSink&) = delete;
    DetachedSink& operator=(const DetachedSink&) = delete;

    /// Detaches once more, after something else has put the sink back.
    void Detach();

  private:
    clsDataLink& mLink;
};

} // namespace qncomm
