#include "ReceivePath.h"

#include <algorithm>
#include <string_view>

namespace qncomm {

void ReceivePath::SetCapacity(std::size_t capacity) {
    const std::string waiting = TakeAll();
    mBytes.resize(std::max(capacity, waiting.size()));
    std::copy(waiting.begin(), waiting.end(), mBytes.begin());
    mEnd = waiting.size();
}

std::span<char> ReceivePath::Space() {
    if (mBegin > 0) {
        std::copy(mBytes.data() + mBegin, mBytes.data() + mEnd, mBytes.data());
        mEnd -= mBegin;
        mBegin = 0;
    }
    return std::span(mBytes).subspan(mEnd);
}

std::string ReceivePath::TakeAll() {
    std::string all(mBytes.data() + mBegin, Count());
    Clear();
    return all;
}

std::optional<std::string> ReceivePath::TakeLine(bool bLastCrEnds) {
    const std::string_view waiting(mBytes.data() + mBegin, Count());
    const std::size_t end = waiting.find_first_of("\r\n");
    if (end == std::string_view::npos) return std::nullopt;
    std::size_t taken = end + 1;
    if (waiting[end] == '\r') {
        if (taken == waiting.size() && !bLastCrEnds) return std::nullopt;
        if (taken < waiting.size() && waiting[taken] == '\n') ++taken;
    }
    std::string line(waiting.substr(0, end));
    mBegin += taken;
    if (mBegin == mEnd) Clear();
    return line;
}

} // namespace qncomm
