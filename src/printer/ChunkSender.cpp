#include "ChunkSender.h"

#include "common/Numbers.h"

#include <algorithm>
#include <utility>

namespace qncomm {
namespace {

constexpr std::uintmax_t ChunkSize = 1024;
constexpr std::int16_t TransferEnded = -1;

} // namespace

ChunkSender::ChunkSender(Send send, Report report)
    : mSend(std::move(send)), mReport(std::move(report)) {}

void ChunkSender::SendFile(HostFile& file) const {
    SendPieces(file.Path(), file.Length(),
               [&](std::size_t /*from*/, std::size_t bytes) { return file.Read(bytes); });
}

void ChunkSender::SendText(std::string_view sName, std::string_view sText) const {
    SendPieces(sName, sText.size(), [&](std::size_t from, std::size_t bytes) {
        return std::string(sText.substr(from, bytes));
    });
}

void ChunkSender::SendPieces(std::string_view name, std::uintmax_t length,
                             const NextPiece& next) const {
    std::string message = "Downloading " + std::string(name);
    const double step = 100.0 / (static_cast<double>(length) / static_cast<double>(ChunkSize));
    double progress = 0;
    for (std::uintmax_t sent = 0; sent < length; sent += ChunkSize) {
        mReport(message, ToInt16(progress));
        progress += step;
        mSend(next(sent, std::min(ChunkSize, length - sent)));
    }
    mReport(message, TransferEnded);
}

} // namespace qncomm
