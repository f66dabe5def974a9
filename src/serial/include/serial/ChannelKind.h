#pragma once

#include "platform/Reactor.h"
#include "serial/ByteChannel.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// What a list of ports says of a port.
enum class PortState {
    Free,      ///< it opens
    Busy,      ///< another program holds it
    Missing,   ///< the device is not there
    Unusable,  ///< it is there and does not open: permission, no hardware
    Unchecked, ///< telling would take a connection
};

/// The state of a port with its reason.
struct PortStatus {
    PortState state = PortState::Free; ///< what Open would find now
    std::string detail;                ///< who holds it, or why it does not open; empty when free
};

/// One kind of channel: how its addresses are written and what serves them. A kind is a constant
/// that lives as long as the program; addresses point to it. Its functions get the whole address,
/// without blanks around it.
struct ChannelKind {
    /// How its addresses start, in lower case; "TCP://" is recognised as well.
    std::string_view scheme;
    /// How an address of this kind is written, for the message about a text that is none.
    std::string_view form;
    /// Why the text is no address of this kind, as a clause without a full stop; empty when it is
    /// one. Does not look whether the device is there.
    std::string (*check)(std::string_view sAddress);
    /// The channel, not open yet, for an address that check found right. The reactor outlives it.
    std::unique_ptr<ByteChannel> (*make)(std::string_view sAddress, Reactor& reactor);
    /// The state of the port for a listing. Leaves nothing open and waits for nobody.
    PortStatus (*look)(std::string_view sAddress);
    /// Whether a search for a printer may try its ports although nobody named one.
    bool searched = true;
};

/// The kinds that a program knows, in the order in which messages name them. Where two schemes
/// fit, the first counts.
using ChannelKinds = std::vector<const ChannelKind*>;

/// A device of this machine: an absolute path.
extern const ChannelKind TtyKind;
/// A USB adapter by its serial number, "usb:A50285BI": the device is looked for at each opening,
/// whatever name it has got.
extern const ChannelKind UsbKind;

/// The kinds that lead out of the program: devices, sockets, remote serial ports.
ChannelKinds SerialChannelKinds();

} // namespace qncomm
