#include "FeedLine.h"

#include <array>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace qncomm::bench {
namespace {

constexpr int AcceptMilliseconds = 20'000;
constexpr int HearMilliseconds = 60'000;

/// A message a word: words are neither joined nor cut.
int Socket() {
    return ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
}

sockaddr_un Address(const std::string& sPath) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (sPath.size() >= sizeof address.sun_path)
        throw std::runtime_error("path too long: " + sPath);
    std::memcpy(address.sun_path, sPath.data(), sPath.size());
    return address;
}

void Await(int iDescriptor, int iMilliseconds, const char* sWhat) {
    pollfd waiting{iDescriptor, POLLIN, 0};
    if (::poll(&waiting, 1, iMilliseconds) != 1) throw std::runtime_error(sWhat);
}

} // namespace

FeedLine FeedLine::To(const std::string& sSocket) {
    FeedLine line(Socket());
    const sockaddr_un address = Address(sSocket);
    if (::connect(line.mDescriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address)
        != 0)
        throw std::runtime_error("nobody listens at " + sSocket);
    return line;
}

FeedLine FeedLine::AcceptedBy(int iListener) {
    Await(iListener, AcceptMilliseconds, "the feeding program has not started");
    return FeedLine(::accept4(iListener, nullptr, nullptr, SOCK_CLOEXEC));
}

FeedLine::FeedLine(FeedLine&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {}

FeedLine::~FeedLine() {
    if (mDescriptor >= 0) ::close(mDescriptor);
}

void FeedLine::Say(std::string_view word) {
    if (::send(mDescriptor, word.data(), word.size(), MSG_NOSIGNAL) < 0)
        throw std::runtime_error("the other end is gone");
}

std::string FeedLine::Hear() {
    Await(mDescriptor, HearMilliseconds, "the other end is silent");
    std::array<char, 256> word{};
    const ssize_t count = ::recv(mDescriptor, word.data(), word.size(), 0);
    if (count <= 0) throw std::runtime_error("the other end is gone");
    return {word.data(), static_cast<std::size_t>(count)};
}

FeedListener::FeedListener(std::string sSocket) : mPath(std::move(sSocket)), mDescriptor(Socket()) {
    const sockaddr_un address = Address(mPath);
    if (::bind(mDescriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0
        || ::listen(mDescriptor, 1) != 0)
        throw std::runtime_error("cannot listen at " + mPath);
}

FeedListener::~FeedListener() {
    ::close(mDescriptor);
}

} // namespace qncomm::bench
