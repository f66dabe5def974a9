#include "HostLookup.h"

#include "platform/Fd.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace qncomm {
namespace {

struct Lookup {
    int error = 0; ///< of getaddrinfo
    std::vector<SocketAddress> addresses;
};

Lookup AskSystem(const std::string& host, const std::string& service, int flags) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    addrinfo* list = nullptr;
    Lookup lookup;
    lookup.error = ::getaddrinfo(host.c_str(), service.c_str(), &hints, &list);
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(list, &::freeaddrinfo);
    for (const addrinfo* entry = list; lookup.error == 0 && entry != nullptr;
         entry = entry->ai_next) {
        SocketAddress address;
        address.length = entry->ai_addrlen;
        std::memcpy(&address.bytes, entry->ai_addr, entry->ai_addrlen);
        lookup.addresses.push_back(address);
    }
    return lookup;
}

/// Belongs to the caller and to the thread that asks, whichever ends last.
struct PendingLookup {
    Lookup lookup;
    Fd done;
};

} // namespace

IoResult LookUpHost(Reactor& reactor, const std::string& sHost, const std::string& sService,
                    std::int64_t lLimitUs, std::vector<SocketAddress>& addresses) {
    // A number needs nobody's answer.
    Lookup number = AskSystem(sHost, sService, AI_NUMERICHOST | AI_NUMERICSERV);
    if (number.error == 0) {
        addresses = std::move(number.addresses);
        return {};
    }
    const auto pending = std::make_shared<PendingLookup>();
    pending->done.Reset(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!pending->done) return {IoStatus::Failed, errno, "the system is out of descriptors"};
    try {
        std::thread([pending, sHost, sService] {
            pending->lookup = AskSystem(sHost, sService, AI_NUMERICSERV | AI_ADDRCONFIG);
            const std::uint64_t one = 1;
            static_cast<void>(!::write(pending->done.Get(), &one, sizeof one));
        }).detach();
    } catch (const std::system_error& error) {
        return {IoStatus::Failed, error.code().value(), "the host's name cannot be looked up now"};
    }
    const FdEvents ready = reactor.WaitFor(pending->done.Get(), {.readable = true}, lLimitUs);
    std::uint64_t count = 0; // the read makes the thread's result visible here
    if (!ready.readable || ::read(pending->done.Get(), &count, sizeof count) != sizeof count)
        return {IoStatus::TimedOut, ETIMEDOUT, "looking up the host's name took too long"};
    if (pending->lookup.error != 0)
        return {IoStatus::Missing, 0,
                std::string("the host is not known: ") + ::gai_strerror(pending->lookup.error)};
    addresses = std::move(pending->lookup.addresses);
    return {};
}

} // namespace qncomm
