#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qncomm::terminal {

/// An escape or control sequence that has been read to its final byte.
struct ControlSequence {
    static constexpr std::size_t MostSequenceValues = 32;
    static constexpr std::uint16_t LargestValue = 65535;
    /// Stands in `intermediate` for two or more of them.
    static constexpr char Several = '\x7F';

    char mark = 0;         ///< one of < = > ? before the first value
    char intermediate = 0; ///< the byte 0x20 to 0x2F before the final one
    char final = 0;
    std::uint8_t count = 0;   ///< values given
    std::uint32_t joined = 0; ///< a bit for each value that stood behind a colon
    std::array<std::uint16_t, MostSequenceValues> values{};

    /// Value i, 0 when it was left out.
    std::uint16_t Value(std::size_t i) const { return i < count ? values[i] : std::uint16_t{0}; }
    /// Value i as a count or a place: 1 when it was left out or is 0.
    std::uint16_t CountOf(std::size_t i) const {
        const std::uint16_t value = Value(i);
        return value == 0 ? std::uint16_t{1} : value;
    }
    /// Whether value i belongs to the one before it.
    bool Joined(std::size_t i) const { return (joined >> i & 1U) != 0; }
};

} // namespace qncomm::terminal
