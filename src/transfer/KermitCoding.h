#pragma once

#include "KermitTerms.h"

#include <array>

namespace qncomm::transfer {

/// Puts file bytes into the data fields of packets and takes them out again.
class KermitCoding {
  public:
    /// For sending: `terms` as agreed, and how many control characters are prefixed.
    KermitCoding(const KermitTerms& terms, KermitPrefixing prefixing);

    /// Appends as much of `bytes` to `data` as fits into `room` and takes it from `bytes`.
    void Encode(std::string_view& bytes, std::size_t room, std::string& data) const;
    /// The whole of a short text, such as a file name; it is cut where the room ends.
    [[nodiscard]] std::string EncodeText(std::string_view text, std::size_t room) const;
    /// Appends the file bytes of a data field to `bytes`; false when it is not well formed.
    bool Decode(std::string_view data, std::string& bytes) const;

  private:
    enum class Form : std::uint8_t {
        Plain,
        Quoted,  ///< a prefix character itself
        Control, ///< travels as its printable partner
    };

    void EncodeOne(char c, std::string& data) const;
    [[nodiscard]] std::size_t PlainRun(std::string_view bytes, std::size_t room) const;

    char mControlPrefix = '#';      ///< of what is sent
    char mTheirControlPrefix = '#'; ///< of what is received
    char mBitPrefix = 0;
    char mRepeatPrefix = 0;
    std::array<Form, 256> mForms{};
    std::array<bool, 256> mAsIs{}; ///< of what is sent: travels unchanged
    std::array<bool, 256> mEnds{}; ///< of what is received: a prefix
};

} // namespace qncomm::transfer
