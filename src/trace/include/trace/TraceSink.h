#pragma once

#include <cstdint>
#include <string_view>

namespace qncomm {

enum class TraceKind { Sent, Received, Event };

/// How the text of the event begins that tells that the open line was lost; the reason follows.
inline constexpr std::string_view LostLineEvent = "lost: ";

/// Receives everything that travels on the line and what happens to the port.
class TraceSink {
  public:
    virtual ~TraceSink() = default;

    /// lMs counts from the loop's own start. sBytes are the bytes of the line, or an event's text.
    virtual void Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) = 0;
};

} // namespace qncomm
