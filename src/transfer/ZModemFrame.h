#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm::transfer {

// The bytes and numbers of ZModem that both sides share.
namespace zm {

inline constexpr char PadByte = '*';
inline constexpr char Dle = '\x18'; ///< also CAN
inline constexpr char Bin16 = 'A';
inline constexpr char HexFormat = 'B';
inline constexpr char Bin32 = 'C';

// How a data subpacket ends.
inline constexpr char EndFrame = 'h'; ///< the frame is over, a header follows
inline constexpr char EndGo = 'i';    ///< the next subpacket follows
inline constexpr char EndQuery = 'j'; ///< the next follows, an acknowledgement is wanted
inline constexpr char EndWait = 'k';  ///< the frame is over, an acknowledgement is awaited

enum Type : std::uint8_t {
    RqInit = 0,
    RInit = 1,
    SInit = 2,
    Ack = 3,
    File = 4,
    Skip = 5,
    Nak = 6,
    Abort = 7,
    Fin = 8,
    RPos = 9,
    Data = 10,
    Eof = 11,
    FErr = 12,
    Crc = 13,
    Challenge = 14,
    Compl = 15,
    Can = 16,
    FreeCnt = 17,
    Command = 18,
    StdErr = 19,
};

// Flags of RInit (in the last byte of the header): what the receiver can do.
inline constexpr std::uint8_t CanFullDuplex = 0x01;
inline constexpr std::uint8_t CanOverlapIo = 0x02;
inline constexpr std::uint8_t CanBreak = 0x04;
inline constexpr std::uint8_t CanCrc32 = 0x20;
inline constexpr std::uint8_t EscapeControlsFlag = 0x40; ///< of RInit and of SInit

// Conversion (last byte of File): how the file is to be taken.
inline constexpr std::uint8_t ConvertBinary = 1;
inline constexpr std::uint8_t ConvertText = 2;
inline constexpr std::uint8_t ConvertResume = 3;

/// How many positions of a file a header can name: it carries 32 bits.
inline constexpr std::uint64_t MostPositions = std::uint64_t{4} << 30U;

/// What ends a session by force: enough CANs for any receiver, then backspaces that clean a command
/// line.
inline constexpr std::string_view CancelText =
    "\x18\x18\x18\x18\x18\x18\x18\x18\b\b\b\b\b\b\b\b\b\b";
/// So many CANs in a row end the session for the side that hears them.
inline constexpr int CansToCancel = 5;

} // namespace zm

/// A header: its type and four bytes that are a position (low byte first) or flags (the first flag
/// byte is the last).
struct ZModemHeader {
    std::uint8_t type = 0;
    std::array<std::uint8_t, 4> bytes{};

    [[nodiscard]] std::uint32_t Position() const {
        return bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8U
               | static_cast<std::uint32_t>(bytes[2]) << 16U
               | static_cast<std::uint32_t>(bytes[3]) << 24U;
    }
    [[nodiscard]] std::uint8_t Flags() const { return bytes[3]; }

    static ZModemHeader At(std::uint8_t type, std::uint32_t position) {
        return {type,
                {static_cast<std::uint8_t>(position), static_cast<std::uint8_t>(position >> 8U),
                 static_cast<std::uint8_t>(position >> 16U),
                 static_cast<std::uint8_t>(position >> 24U)}};
    }
    static ZModemHeader WithFlags(std::uint8_t type, std::uint8_t flags) {
        return {type, {0, 0, 0, flags}};
    }
};

} // namespace qncomm::transfer
