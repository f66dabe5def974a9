// Which channel an address leads to.

#include "Rfc2217Channel.h"
#include "TcpChannel.h"
#include "TtyChannel.h"
#include "VirtualPrinterChannel.h"
#include "serial/ByteChannel.h"

namespace qncomm {

std::unique_ptr<ByteChannel> MakeChannel(const PortAddress& address, Reactor& reactor) {
    switch (address.kind) {
    case AddressKind::Tcp:
        return std::make_unique<TcpChannel>(reactor, address.host, address.service);
    case AddressKind::Rfc2217:
        return std::make_unique<Rfc2217Channel>(reactor, address.host, address.service);
    case AddressKind::Simulator:
        return std::make_unique<VirtualPrinterChannel>(reactor, address.simulator);
    case AddressKind::Tty:
        break;
    }
    return std::make_unique<TtyChannel>(reactor, address.path);
}

} // namespace qncomm
