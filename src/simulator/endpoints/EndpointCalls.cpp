#include "EndpointCalls.h"

#include <cerrno>
#include <cstring>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace qnsim {

OpenedEndpoint SystemFailure(std::string_view doing) {
    const int number = errno;
    return {nullptr, number, std::string(doing) + ": " + std::system_category().message(number)};
}

std::vector<HostAction> Sending(std::string bytes) {
    if (bytes.empty()) return {};
    HostAction action;
    action.text = std::move(bytes);
    return {std::move(action)};
}

std::string ReadSome(int descriptor, std::size_t max, bool& closed) {
    std::string bytes(max, '\0');
    const ssize_t count = ::read(descriptor, bytes.data(), bytes.size());
    const bool later = count < 0 && (errno == EAGAIN || errno == EINTR);
    if (count <= 0 && !later) closed = true;
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

std::unique_ptr<qncomm::FdWatch> WakeFor(qncomm::Reactor& loop, int descriptor,
                                         qncomm::FdEvents events) {
    return loop.Watch(descriptor, events, [](qncomm::FdEvents) {});
}

} // namespace qnsim
