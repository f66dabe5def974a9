#include "Crc.h"

#include "transfer/Crc32Sum.h"

#include <array>
#include <cstddef>

namespace qncomm::transfer {

namespace {

using Table16 = std::array<std::uint16_t, 256>;
using Table32 = std::array<std::array<std::uint32_t, 256>, 4>;

constexpr Table16 MakeHigh() {
    Table16 table{};
    for (unsigned i = 0; i < 256; ++i) {
        unsigned crc = i << 8U;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 0x8000U) != 0 ? (crc << 1U) ^ 0x1021U : crc << 1U;
        }
        table[i] = static_cast<std::uint16_t>(crc);
    }
    return table;
}

constexpr Table16 MakeLow() {
    Table16 table{};
    for (unsigned i = 0; i < 256; ++i) {
        unsigned crc = i;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0 ? (crc >> 1U) ^ 0x8408U : crc >> 1U;
        }
        table[i] = static_cast<std::uint16_t>(crc);
    }
    return table;
}

// Four tables, so that four bytes are taken in one step.
constexpr Table32 Make32() {
    Table32 table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t crc = i;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0 ? (crc >> 1U) ^ 0xEDB88320U : crc >> 1U;
        }
        table[0][i] = crc;
    }
    for (std::size_t i = 0; i < 256; ++i) {
        for (std::size_t k = 1; k < 4; ++k) {
            table[k][i] = (table[k - 1][i] >> 8U) ^ table[0][table[k - 1][i] & 0xFFU];
        }
    }
    return table;
}

constexpr Table16 High = MakeHigh();
constexpr Table16 Low = MakeLow();
constexpr Table32 K32 = Make32();

std::uint32_t Byte(char c) {
    return static_cast<unsigned char>(c);
}

} // namespace

std::uint16_t Crc16High(std::uint16_t crc, std::string_view bytes) {
    for (const char c : bytes) {
        crc = static_cast<std::uint16_t>((crc << 8U) ^ High[((crc >> 8U) ^ Byte(c)) & 0xFFU]);
    }
    return crc;
}

std::uint16_t Crc16Low(std::uint16_t crc, std::string_view bytes) {
    for (const char c : bytes) {
        crc = static_cast<std::uint16_t>((crc >> 8U) ^ Low[(crc ^ Byte(c)) & 0xFFU]);
    }
    return crc;
}

std::uint32_t Crc32(std::uint32_t crc, std::string_view bytes) {
    while (bytes.size() >= 4) {
        crc ^=
            Byte(bytes[0]) | Byte(bytes[1]) << 8U | Byte(bytes[2]) << 16U | Byte(bytes[3]) << 24U;
        crc = K32[3][crc & 0xFFU] ^ K32[2][(crc >> 8U) & 0xFFU] ^ K32[1][(crc >> 16U) & 0xFFU]
              ^ K32[0][crc >> 24U];
        bytes.remove_prefix(4);
    }
    for (const char c : bytes) {
        crc = (crc >> 8U) ^ K32[0][(crc ^ Byte(c)) & 0xFFU];
    }
    return crc;
}

void Crc32Sum::Add(std::string_view sBytes) {
    mRegister = Crc32(mRegister, sBytes);
}

} // namespace qncomm::transfer
