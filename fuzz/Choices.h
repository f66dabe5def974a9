#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace qncomm::fuzz {

/// Ends the run with the input kept when a property does not hold.
inline void Promise(bool bKept) {
    if (!bKept) std::abort();
}

/// The fuzzer's bytes, taken from their beginning; zeros and empty texts when they are used up.
class Choices {
  public:
    Choices(const std::uint8_t* data, std::size_t size)
        : mRest(static_cast<const char*>(static_cast<const void*>(data)), size) {}

    /// Whether everything was taken.
    [[nodiscard]] bool IsOver() const { return mRest.empty(); }
    /// One byte.
    std::uint8_t Next() {
        if (mRest.empty()) return 0;
        const auto byte = static_cast<std::uint8_t>(mRest.front());
        mRest.remove_prefix(1);
        return byte;
    }
    /// Two bytes as a number, the lower one first.
    std::uint16_t NextWord() {
        const unsigned low = Next();
        return static_cast<std::uint16_t>(low | unsigned{Next()} << 8U);
    }
    /// At most so many bytes; valid as long as the fuzzer's.
    std::string_view Take(std::size_t count) {
        const auto part = mRest.substr(0, count);
        mRest.remove_prefix(part.size());
        return part;
    }
    /// What stands before the next byte of that value, which is taken, too; else all that is left.
    std::string_view TakeUntil(char end) {
        const std::string_view part = Take(std::min(mRest.find(end), mRest.size()));
        Next();
        return part;
    }
    /// A text of at most 255 bytes, its length first.
    std::string_view Text() { return Take(Next()); }
    /// All that is left.
    std::string_view Rest() { return Take(mRest.size()); }

  private:
    std::string_view mRest;
};

} // namespace qncomm::fuzz
