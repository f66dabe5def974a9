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

/// The error of getaddrinfo; 0 when it gave addresses.
int AskSystem(const std::string& host, const std::string& service, int flags,
              std::vector<SocketAddress>& addresses) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    addrinfo* list = nullptr;
    const int error = ::getaddrinfo(host.c_str(), service.c_str(), &hints, &list);
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(list, &::freeaddrinfo);
    for (const addrinfo* entry = list; error == 0 && entry != nullptr; entry = entry->ai_next) {
        SocketAddress address;
        address.length = entry->ai_addrlen;
        std::memcpy(&address.bytes, entry->ai_addr, entry->ai_addrlen);
        addresses.push_back(address);
    }
    return error;
}

} // namespace

/// Belongs to who asks and to the thread that looks, whichever ends last.
struct HostLookup::Pending {
    int error = 0;
    std::vector<SocketAddress> addresses;
    Fd done;
};

HostLookup::HostLookup(const std::string& sHost, const std::string& sService)
    : mPending(std::make_shared<Pending>()) {
    // A number needs nobody's answer.
    mPending->error =
        AskSystem(sHost, sService, AI_NUMERICHOST | AI_NUMERICSERV, mPending->addresses);
    mDone = mPending->error == 0;
    if (mDone) return;
    mPending->done.Reset(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!mPending->done) mFailure = {IoStatus::Failed, errno, "the system is out of descriptors"};
    try {
        if (mPending->done)
            std::thread([pending = mPending, sHost, sService] {
                pending->error =
                    AskSystem(sHost, sService, AI_NUMERICSERV | AI_ADDRCONFIG, pending->addresses);
                const std::uint64_t one = 1;
                static_cast<void>(!::write(pending->done.Get(), &one, sizeof one));
            }).detach();
    } catch (const std::system_error& error) {
        mFailure = {IoStatus::Failed, error.code().value(),
                    "the host's name cannot be looked up now"};
    }
    mDone = !mFailure.Ok();
}

bool HostLookup::IsDone() {
    std::uint64_t count = 0; // the read makes the thread's result visible here
    mDone = mDone || ::read(mPending->done.Get(), &count, sizeof count) == sizeof count;
    return mDone;
}

int HostLookup::Handle() const {
    return mPending->done.Get();
}

IoResult HostLookup::Take(std::vector<SocketAddress>& addresses) {
    if (!mFailure.Ok()) return mFailure;
    if (mPending->error != 0)
        return {IoStatus::Missing, 0,
                std::string("the host is not known: ") + ::gai_strerror(mPending->error)};
    addresses = std::move(mPending->addresses);
    return {};
}

} // namespace qncomm
