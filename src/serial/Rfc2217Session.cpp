#include "Rfc2217Session.h"

#include "platform/SystemErrors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <sys/socket.h>

namespace qncomm {
namespace {

constexpr const char* ClosedText = "the other side closed the connection";

} // namespace

IoResult Rfc2217Session::Receive(std::size_t most, std::int64_t lNowUs) {
    std::array<char, PieceSize> piece{};
    const ssize_t count =
        ::recv(fd.Get(), piece.data(), std::min(most, piece.size()), MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) return {};
    if (count <= 0) return LineFailure(count < 0 ? errno : 0, ClosedText);
    heard = true;
    if (protocol.Purging() && lNowUs > purgeUntil) protocol.ForgetPurges(false);
    protocol.Receive({piece.data(), static_cast<std::size_t>(count)}, received);
    return {};
}

IoResult Rfc2217Session::Flush() {
    while (!protocol.Output().empty()) {
        const std::string_view output = protocol.Output();
        const ssize_t count =
            ::send(fd.Get(), output.data(), output.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
        if (count < 0) return LineFailure(errno, ClosedText);
        protocol.Sent(static_cast<std::size_t>(count));
    }
    return {};
}

void Rfc2217Session::DiscardInput(std::int64_t lNowUs) {
    received.clear();
    protocol.PurgeReceived();
    purgeUntil = lNowUs + PurgeLimitUs;
    static_cast<void>(Flush()); // a loss shows on the next read
}

} // namespace qncomm
