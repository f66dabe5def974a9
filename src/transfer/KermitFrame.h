#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm::transfer {

// The bytes and numbers of Kermit that both sides share.
namespace kermit {

inline constexpr char Mark = '\x01';
inline constexpr char EndOfLine = '\r';
inline constexpr unsigned Sequences = 64;
inline constexpr std::size_t LongestShort = 94;
inline constexpr std::size_t LongestLong = 9024;
inline constexpr unsigned MostSlots = 31;

/// Packet types.
inline constexpr char SendInit = 'S';
inline constexpr char ServerInit = 'I';
inline constexpr char FilePacket = 'F';
inline constexpr char AttributesPacket = 'A';
inline constexpr char DataPacket = 'D';
inline constexpr char EofPacket = 'Z';
inline constexpr char BreakPacket = 'B';
inline constexpr char Ack = 'Y';
inline constexpr char Nak = 'N';
inline constexpr char Error = 'E';

/// In a negative acknowledgement: what streams is not whole; the file is to be announced again
/// under this sequence and to go on in windows. Programs that do not know it see an ordinary one.
inline constexpr std::string_view StopStreamingText = "S";

/// A small number as a printable character, and back. A character below blank gives a number
/// above 94.
inline char ToChar(unsigned value) {
    return static_cast<char>(value + 32U);
}
inline unsigned FromChar(char c) {
    return (static_cast<unsigned char>(c) - 32U) & 0xFFU;
}
inline char Control(char c) {
    return static_cast<char>(c ^ 0x40);
}
inline unsigned Next(unsigned sequence) {
    return (sequence + 1) % Sequences;
}
/// How far `sequence` is after `from`, 0 to 63.
inline unsigned After(unsigned from, unsigned sequence) {
    return (sequence - from) % Sequences;
}

} // namespace kermit

struct KermitPacket {
    char type = 0;
    unsigned sequence = 0;
    std::string data; ///< as it travels, still prefixed
};

} // namespace qncomm::transfer
