#pragma once

// A label printer that runs inside the calling program: a line, a console, the language, storage
// and a label.

#include "simulator/Options.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qnsim {

/// The printer at the other end of a line. It owns no thread and no clock and sleeps nowhere: the
/// caller hands in bytes and the time, asks when there is work again, and takes bytes out. Times
/// are the caller's monotonic microseconds and never run backwards. It touches files only in the
/// folders that its options name (state, labels).
///
/// A caller's loop: FromHost with what was written, Advance, ToHost, then sleep until NextDue or
/// more input. Nothing here throws.
class VirtualPrinter {
  public:
    /// Options as ParseAddress accepts them. The printer is on and at its prompt.
    explicit VirtualPrinter(const Options& options);
    ~VirtualPrinter();
    VirtualPrinter(const VirtualPrinter&) = delete;
    VirtualPrinter& operator=(const VirtualPrinter&) = delete;

    /// What keeps the printer from using its state or labels folder, for a person; empty when
    /// nothing does. It works all the same, without the folder.
    const std::string& Problem() const;

    /// A host opened its end. While none has, what the printer sends is lost.
    void HostOpened(Micros now);
    /// It closed its end: what is on the way to it is lost too.
    void HostClosed(Micros now);

    /// The host's line settings as far as the endpoint carries them; at the start none are carried.
    void SetHostFormat(const LineFormat& format, Micros now);

    /// The host's modem lines; CTS at the printer follows RTS (output waits when RTS/CTS is enabled
    /// in the setup).
    void SetHostLines(bool dtr, bool rts, Micros now);

    /// A break condition on the line: stops the running program.
    void Break(Micros now);

    /// Bytes that the host has written, to the printer.
    void FromHost(std::string_view bytes, Micros now);

    /// Takes at most max of the bytes that have left the line for the host by now (runs a slice of
    /// work first).
    std::string ToHost(Micros now, std::size_t max);

    /// What has gone wrong since the last call with bytes on their way to the host; nothing where
    /// both sides have the same settings.
    HostErrors TakeHostErrors();

    /// Whether bytes take their time on the line.
    bool Paced() const;

    /// Host bytes still on the wire: 0 unless the line is paced.
    std::size_t PendingFromHost(Micros now) const;

    /// Host bytes that the printer has not consumed yet, on the wire or waiting behind a running
    /// program. A caller that reads from a socket stops reading while this is large.
    std::size_t Backlog() const;

    /// How many bytes FromHost should be given now: as many as a real port holds before a paced
    /// line has carried them, and none before a quarter of it is free; any number on another line.
    std::size_t Room(Micros now) const;

    /// When a line that carries bytes has room for the next one; absent when it carries none.
    std::optional<Micros> RoomDue() const;

    /// Drops the bytes that are on the way to the printer, as a host's flush does.
    void DiscardFromHost(Micros now);
    /// The same with those that are on the way to the host.
    void DiscardToHost(Micros now);

    /// When Advance (or ToHost) has work again, absolute: a time not after the last one given =
    /// busy, absent = only new input wakes the printer.
    std::optional<Micros> NextDue() const;

    /// Runs a bounded slice of work: bytes that arrived, statements of a running program, the end
    /// of a restart.
    void Advance(Micros now);

    /// DSR as the host sees it: held unless the printer is starting, the line cut or a fault drops
    /// it.
    bool Dsr() const;
    /// CTS as the host sees it: dropped besides while the printer, set up for it, has the host
    /// wait.
    bool Cts() const;
    /// Whether a fault has cut the line, for good.
    bool LineCut() const;

  private:
    class Impl;
    std::unique_ptr<Impl> mImpl;
};

} // namespace qnsim
