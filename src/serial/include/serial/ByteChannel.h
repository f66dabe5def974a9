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
    std::size_t count = 0; ///< bytes moved; they count even when the result is a failure
    IoResult result;       ///< a failure came after those bytes
};

/// One way to a printer: bytes in both directions, line settings, modem lines. Opened and closed
/// any number of times. Nothing here throws, dispatches events or blocks, Open, Configure, Probe
/// and Wait within their limits excepted. Single-threaded, like its reactor.
///
/// While the channel is closed only Open, Close, Probe, Reach, Keep and SetHandler may be called;
/// anything else is undefined. After a result Lost the line is gone for good: the caller closes the
/// channel and may open it again.
class ByteChannel {
  public:
    virtual ~ByteChannel() = default;

    /// Called from Reactor::Yield while the channel is open, for what Want asked for. It may read,
    /// write, change what is wanted, close the channel and open it again, and may yield; it must
    /// not destroy the channel.
    using Handler = std::function<void(FdEvents)>;

    /// Opens the line with these settings and sets DTR and RTS where there are such lines. Waits
    /// for a connection and for a remote port's answers, a few seconds at most. After a failure the
    /// channel is closed. Not to be called on an open channel.
    virtual IoResult Open(const LineSettings& settings) = 0;
    /// Discards what has not left this side yet and puts the device back as it was found. Never
    /// waits for the line; does nothing on a closed channel.
    virtual void Close() = 0;
    /// Whether Open could succeed now, with the reason if not. Leaves an open channel as it is and
    /// a closed one closed. Connects where only a connection tells.
    virtual IoResult Probe() = 0;

    /// Begins what Open would wait for (a name, a connection, a remote port's answers), or looks
    /// how far that is, without waiting: whether Open with these settings would not wait. Yield
    /// goes on with it. A failure counts as reached, and is what Open then returns. What is reached
    /// and not opened within two seconds is let go of again.
    virtual bool Reach(const LineSettings& settings) {
        static_cast<void>(settings);
        return true;
    }

    /// While it is on, a device that is closed stays reserved for this channel, which opens it
    /// again: other programs of this system find it busy. For channels that others could take.
    virtual void Keep(bool bOn) { static_cast<void>(bOn); }

    /// Gives other settings to the open channel. After a failure the line may have the new
    /// settings in part.
    virtual IoResult Configure(const LineSettings& settings) = 0;

    /// Holds the line in the break condition, or ends it. A channel without a line answers
    /// Unsupported.
    virtual IoResult SetBreak(bool bOn) {
        static_cast<void>(bOn);
        return {IoStatus::Unsupported, 0, "there is no line that could break"};
    }

    /// Takes bytes that have arrived, from the start of the buffer; the buffer is not empty. A read
    /// may be short although more bytes wait: only nothing read and done says that none do.
    virtual IoCount Read(std::span<char> buffer) = 0;
    /// Takes bytes for the line, from their start; there is at least one. A write may take some of
    /// them or none when the line is full; the caller keeps the rest and wants to hear when it is
    /// writable.
    virtual IoCount Write(std::string_view bytes) = 0;

    /// What went wrong on the open line since the last call, as far as it has shown by the last
    /// Read. A channel without a line, or whose device does not tell, knows of nothing.
    virtual LineErrors TakeLineErrors() { return {}; }

    /// Bytes that Write took and that have not left for the line, as far as the device tells.
    virtual std::size_t OutputPending() = 0;
    /// Whether what is written arrives as it is or the channel is lost, as far as this side can
    /// tell. File transfers save acknowledgements on such a channel. Never changes.
    virtual bool IsReliable() const { return false; }
    /// Throws away what has arrived and was not read. A loss that shows meanwhile is told by the
    /// next Read.
    virtual void DiscardInput() = 0;
    /// Throws away what Write took and what has not left for the line, as far as it can be taken
    /// back.
    virtual void DiscardOutput() = 0;

    /// The DSR line; nothing when the channel has no modem lines.
    virtual std::optional<bool> Dsr() = 0;

    /// What the handler is to be called for, from the next Yield on. Open starts with nothing. A
    /// loss is reported as hungUp or readable, to a channel that is asked for anything.
    virtual void Want(FdEvents events) = 0;
    /// The handler for this and all later openings; an empty one hears nothing.
    virtual void SetHandler(Handler handler) = 0;

    /// Sleeps until the channel is ready for one of these or lLimitUs microseconds have passed (0
    /// or less: looks only), dispatching nothing. Returns what it is ready for; it may also return
    /// early with nothing.
    virtual FdEvents Wait(FdEvents events, std::int64_t lLimitUs) = 0;
};

} // namespace qncomm
