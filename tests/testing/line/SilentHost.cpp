#include "testing/line/SilentHost.h"

#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace qncomm::testing {

SilentHost::SilentHost() : mListener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in any{};
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof any;
    auto* const address = reinterpret_cast<sockaddr*>(&any);
    if (::bind(mListener.Get(), address, length) != 0 || ::listen(mListener.Get(), 0) != 0
        || ::getsockname(mListener.Get(), address, &length) != 0)
        throw std::runtime_error("no socket to listen on");
    mService = std::to_string(ntohs(any.sin_port));
    for (Fd& guest : mGuests) {
        guest.Reset(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        static_cast<void>(::connect(guest.Get(), address, length));
    }
}

} // namespace qncomm::testing
