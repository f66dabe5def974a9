// The kinds of channel that are served here, a row each.

#include "Rfc2217Channel.h"
#include "TcpChannel.h"
#include "serial/ChannelKind.h"

namespace qncomm {

ChannelKinds SerialChannelKinds() {
    return {&TtyKind, &UsbKind, &TcpKind, &Rfc2217Kind};
}

} // namespace qncomm
