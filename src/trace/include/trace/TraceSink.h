#pragma once

#include <cstdint>
#include <string_view>

namespace qncomm {

/// What a record of a trace is about.
enum class TraceKind {
    Sent,     ///< bytes from this side
    Received, ///< bytes from the printer
    Event,    ///< what happened to the port, as a text
};

/// How the text of the event begins that tells that the port was opened; its name and its settings
/// follow, parted by blanks.
inline constexpr std::string_view OpenLineEvent = "open ";

/// How the text of the event begins that tells of line errors; their kinds follow, parted by
/// blanks.
inline constexpr std::string_view LineErrorsEvent = "line errors:";

/// The event that tells that the open line has no modem lines.
inline constexpr std::string_view NoModemLinesEvent = "no modem lines here: DSR reads as held";

/// How the text of the event begins that tells that the open line was lost; the reason follows.
inline constexpr std::string_view LostLineEvent = "lost: ";

/// Receives everything that travels on the line and what happens to the port.
class TraceSink {
  public:
    virtual ~TraceSink() = default;

    /// Called as it happens, in order; must neither throw nor call back into the port. lMs are
    /// milliseconds since the loop's own start. sBytes are the bytes of the line, or an event's
    /// text.
    virtual void Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) = 0;
};

} // namespace qncomm
