#include "testing/line/FloodingServer.h"

#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace qncomm::testing {

FloodingServer::FloodingServer(const std::string& sSays)
    : mListener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in any{};
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof any;
    auto* const address = reinterpret_cast<sockaddr*>(&any);
    if (::bind(mListener.Get(), address, length) != 0 || ::listen(mListener.Get(), 1) != 0
        || ::getsockname(mListener.Get(), address, &length) != 0)
        throw std::runtime_error("no socket to listen on");
    mService = std::to_string(ntohs(any.sin_port));
    for (int count = 0; count < 1000; ++count)
        mText += sSays;
    mThread = std::thread([this] { Serve(); });
}

FloodingServer::~FloodingServer() {
    ::shutdown(mListener.Get(), SHUT_RDWR);
    mThread.join();
}

void FloodingServer::Serve() {
    for (bool first = true;; first = false) {
        const Fd guest(::accept4(mListener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!guest) return;
        bool talks =
            !mText.empty() && ::send(guest.Get(), mText.data(), mText.size(), MSG_NOSIGNAL) > 0;
        if (first) mFirst.set_value();
        while (talks)
            talks = ::send(guest.Get(), mText.data(), mText.size(), MSG_NOSIGNAL) > 0;
        char heard = 0;
        while (mText.empty() && ::recv(guest.Get(), &heard, 1, 0) > 0)
            continue;
    }
}

} // namespace qncomm::testing
