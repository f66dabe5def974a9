#pragma once

#include <cstdint>
#include <string_view>

namespace qncomm::transfer {

/// CRC-16 as ZModem has it (x^16+x^12+x^5+1, high bit first, starts at 0).
std::uint16_t Crc16High(std::uint16_t crc, std::string_view bytes);

/// CRC-16 as Kermit has it (the same polynomial, low bit first, starts at 0).
std::uint16_t Crc16Low(std::uint16_t crc, std::string_view bytes);

/// CRC-32 as in ISO 3309. `crc` is the register: start with Crc32Start, the sum that travels is its
/// complement.
inline constexpr std::uint32_t Crc32Start = 0xFFFFFFFFU;
std::uint32_t Crc32(std::uint32_t crc, std::string_view bytes);

} // namespace qncomm::transfer
