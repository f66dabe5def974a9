#pragma once

#include "ZModemFrame.h"

#include <string_view>

namespace qncomm::transfer {

/// Puts headers and data subpackets into line form.
class ZModemWriter {
  public:
    /// All control characters are escaped, not only those that lines and modems eat.
    void EscapeControls(bool bAll) { mEscapeAll = bAll; }
    /// Sums of binary headers and subpackets have 32 bits instead of 16.
    void UseCrc32(bool bUse) { mCrc32 = bUse; }

    void Hex(std::string& out, const ZModemHeader& header) const;
    void Binary(std::string& out, const ZModemHeader& header) const;
    /// `end` is one of zm::End…
    void Subpacket(std::string& out, std::string_view data, char end) const;

  private:
    void Escape(std::string& out, std::string_view bytes) const;
    void Sum(std::string& out, std::string_view summed, char end) const;

    bool mEscapeAll = false;
    bool mCrc32 = false;
};

} // namespace qncomm::transfer
