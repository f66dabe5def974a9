#pragma once

#include "link/clsDataLink.h"

namespace qncomm {

/// Marks the link as being in code of the host, a yield or an event handler, while it lives: claims
/// and searches from there are refused, since they would put their bytes into the middle of the
/// running exchange.
class HostCall {
  public:
    explicit HostCall(clsDataLink& link) : mLink(link) { ++mLink.mHostCalls; }
    ~HostCall() { --mLink.mHostCalls; }
    HostCall(const HostCall&) = delete;
    HostCall& operator=(const HostCall&) = delete;

  private:
    clsDataLink& mLink;
};

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

/// What the link writes into the serial control's tag while an operation must be alone on the line.
inline constexpr std::string_view ExclusiveMark = "EXCLUSIVE_USE";

} // namespace qncomm
