#pragma once

#include "platform/IoResult.h"
#include "platform/Reactor.h"
#include "serial/LineErrors.h"
#include "serial/LineSettings.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

namespace qncomm {

/// What a read or write moved, and why it stopped. Nothing moved and done means: not now.
struct IoCount {
    std::size_t count = 0;
    IoResult result;
};

/// One way to a printer: bytes in both directions, line settings, modem lines. Opened and closed
/// any number of times. Nothing here throws or blocks, Open and Wait within their limits
/// excepted. After a result Lost the caller closes it.
class ByteChannel {
  public:
    virtual ~ByteChannel() = default;

    /// Called from Reactor::Yield while the channel is open, for what Want asked for.
    using Handler = std::function<void(FdEvents)>;

    virtual IoResult Open(const LineSettings& settings) = 0;
    /// Discards what has not left this side yet and puts the device back as it was found.
    virtual void Close() = 0;
    /// Whether Open could succeed now; leaves nothing open.
    virtual IoResult Probe() = 0;

    /// Gives other settings to the open channel.
    virtual IoResult Configure(const LineSettings& settings) = 0;

    /// Holds the line in the break condition, or ends it. A channel without a line cannot.
    virtual IoResult SetBreak(bool bOn) {
        static_cast<void>(bOn);
        return {IoStatus::Unsupported, 0, "there is no line that could break"};
    }

    virtual IoCount Read(std::span<char> buffer) = 0;
    virtual IoCount Write(std::string_view bytes) = 0;

    /// What went wrong on the open line since the last call, as far as it has shown by the last
    /// Read. A channel without a line, or whose device does not tell, knows of nothing.
    virtual LineErrors TakeLineErrors() { return {}; }

    /// Bytes that Write took and that have not left for the line, as far as the device tells.
    virtual std::size_t OutputPending() = 0;
    /// Whether what is written arrives as it is or the channel is lost, as far as this side can
    /// tell.
    virtual bool IsReliable() const { return false; }
    virtual void DiscardInput() = 0;
    virtual void DiscardOutput() = 0;

    /// The DSR line; nothing when the channel has no modem lines.
    virtual std::optional<bool> Dsr() = 0;

    /// What the handler is to be called for, from the next Yield on. Open starts with nothing.
    virtual void Want(FdEvents events) = 0;
    virtual void SetHandler(Handler handler) = 0;

    /// Sleeps until the channel is ready for one of these or lLimitUs microseconds have passed,
    /// dispatching nothing. Returns what it is ready for.
    virtual FdEvents Wait(FdEvents events, std::int64_t lLimitUs) = 0;
};

} // namespace qncomm
