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

// Packet types.
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

/// A small number, 0 to 94, as a printable character.
inline char ToChar(unsigned value) {
    return static_cast<char>(value + 32U);
}
/// The number that ToChar made a character of; a character below blank gives one above 94.
inline unsigned FromChar(char c) {
    return (static_cast<unsigned char>(c) - 32U) & 0xFFU;
}
/// A control character as the printable one that travels for it, and back.
inline char Control(char c) {
    return static_cast<char>(c ^ 0x40);
}
/// The sequence after this one; they run from 0 to 63 and begin again.
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
