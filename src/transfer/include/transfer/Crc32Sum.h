#pragma once

#include <cstdint>
#include <string_view>

namespace qncomm::transfer {

/// The CRC-32 (ISO 3309) of bytes that are told piece by piece, as ZModem compares it.
class Crc32Sum {
  public:
    /// The next bytes.
    void Add(std::string_view sBytes);
    /// The sum of all so far.
    [[nodiscard]] std::uint32_t Value() const { return ~mRegister; }

  private:
    std::uint32_t mRegister = 0xFFFFFFFFU;
};

} // namespace qncomm::transfer
