#include "TamperedChannel.h"

#include <algorithm>
#include <utility>

namespace qncomm::fuzz {
namespace {

constexpr std::size_t MostAtOnce = 4096;

const IoResult Lost{IoStatus::Lost, 0, "the line is cut"};

/// The fuzzer's text with its bars as line ends.
std::string Lines(std::string_view text) {
    std::string lines;
    for (const char c : text)
        lines += c == '|' ? std::string("\r\n") : std::string(1, c);
    return lines;
}

} // namespace

IoResult TamperedChannel::Open(const LineSettings& settings) {
    if (mLost) return {IoStatus::Missing, 0, "the line is gone"};
    mMore.clear();
    return mInner->Open(settings);
}

void TamperedChannel::Tamper(std::string& read) {
    const std::size_t echo = std::min(read.find('\n'), read.size() - 1) + 1;
    switch (mChoices.Next() % 16) {
    case 8: // another answer to the same command
        read.replace(echo, std::string::npos, Lines(mChoices.Text()) + "\r\nOk\r\n");
        break;
    case 9: // the same without its end
        read.replace(echo, std::string::npos, Lines(mChoices.Text()));
        break;
    case 10:
        read += Lines(mChoices.Text());
        break;
    case 11:
        read.insert(0, Lines(mChoices.Text()));
        break;
    case 12:
        read.clear();
        break;
    case 13:
        read += read;
        break;
    case 14:
        read[mChoices.Next() % read.size()] = static_cast<char>(mChoices.Next());
        break;
    case 15:
        mLost = mChoices.Next() % 4 == 3;
        break;
    default:
        break;
    }
}

IoCount TamperedChannel::Read(std::span<char> buffer) {
    if (mMore.empty()) {
        std::string read(MostAtOnce, '\0');
        const IoCount inner = mInner->Read(read);
        read.resize(inner.count);
        if (!read.empty()) Tamper(read);
        if (mLost) return {0, Lost};
        mMore = std::move(read);
        if (mMore.empty()) return {0, inner.result};
    }
    const std::size_t count = mMore.copy(buffer.data(), buffer.size());
    mMore.erase(0, count);
    return {count, {}};
}

IoCount TamperedChannel::Write(std::string_view bytes) {
    return mLost ? IoCount{0, Lost} : mInner->Write(bytes);
}

void TamperedChannel::DiscardInput() {
    mMore.clear();
    mInner->DiscardInput();
}

FdEvents TamperedChannel::Wait(FdEvents events, std::int64_t lLimitUs) {
    if (events.readable && !mMore.empty()) return {.readable = true};
    return mInner->Wait(events, lLimitUs);
}

} // namespace qncomm::fuzz
