#include "KernelMessages.h"

#include "diagnosis/MachineFacts.h"
#include "platform/Fd.h"
#include "platform/FileOpening.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <unistd.h>

namespace qncomm {
namespace {

constexpr std::size_t MostMessages = 3;

/// All that the kernel keeps. It gives one record a read, and EPIPE for one that was overwritten
/// meanwhile.
std::optional<std::string> ReadAll(int fd) {
    std::string all;
    std::array<char, 8192> piece{};
    for (;;) {
        const ssize_t count = ::read(fd, piece.data(), piece.size());
        if (count < 0 && (errno == EPIPE || errno == EINTR)) continue;
        if (count == 0 || (count < 0 && errno == EAGAIN)) return all;
        if (count < 0) return std::nullopt;
        all.append(piece.data(), static_cast<std::size_t>(count));
    }
}

bool IsWordByte(char byte) {
    return std::isalnum(static_cast<unsigned char>(byte)) != 0;
}

/// Whether the text names the device, and not one whose name only holds it.
bool Names(std::string_view text, std::string_view device) {
    for (std::size_t at = text.find(device); at != std::string_view::npos;
         at = text.find(device, at + 1)) {
        const std::size_t end = at + device.size();
        const bool begins = at == 0 || !IsWordByte(text[at - 1]);
        if (begins && (end == text.size() || !IsWordByte(text[end]))) return true;
    }
    return false;
}

} // namespace

std::optional<std::vector<std::string>> ReadKernelMessages(const std::string& sFile,
                                                           std::string_view sDevice) {
    Fd file;
    if (!OpenToRead(sFile, {.streams = true}, file).Ok()) return std::nullopt;
    const auto read = ReadAll(file.Get());
    if (!read) return std::nullopt;
    const std::string& all = *read;
    std::vector<std::string> messages;
    for (std::size_t begin = 0; begin < all.size();) {
        const std::size_t end = std::min(all.find('\n', begin), all.size());
        const std::string_view line = std::string_view(all).substr(begin, end - begin);
        begin = end + 1;
        if (line.starts_with(' ')) continue; // an attribute of the message before it
        const std::string_view text = line.substr(line.find(';') + 1);
        const bool taken = text.find("usbfs: interface") != std::string_view::npos;
        if (Names(text, sDevice) || taken) messages.emplace_back(text);
    }
    if (messages.size() > MostMessages)
        messages.erase(messages.begin(), messages.end() - MostMessages);
    return messages;
}

bool TellsOfLoss(std::string_view sMessage) {
    return sMessage.find("disconnected") != std::string_view::npos;
}

} // namespace qncomm
