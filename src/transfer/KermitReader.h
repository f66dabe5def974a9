#pragma once

#include "KermitFrame.h"

namespace qncomm::transfer {

/// Finds packets among the bytes of the line, cut anywhere.
class KermitReader {
  public:
    enum class Item {
        None,   ///< the bytes are used up
        Packet, ///< Packet() stands
        Damage, ///< something began like a packet and is not one
    };

    /// Takes bytes from the front of `in` up to the end of one item.
    Item Next(std::string_view& in);

    /// The kind of block check that was agreed on; packets that open a session have kind 1 always.
    void SetCheck(unsigned kind) { mCheck = kind; }
    /// The top bit of what arrives is parity.
    void StripParity(bool bStrip) { mStrip = bStrip; }
    /// Forgets a packet that has begun.
    void Reset() { mInside = false; }

    [[nodiscard]] const KermitPacket& Packet() const { return mPacket; }

  private:
    Item NextStripped(std::string_view& in);
    void TakeBody(std::string_view& in);
    [[nodiscard]] std::size_t Needed() const;
    [[nodiscard]] bool HeaderIsWrong() const;
    Item Finish();
    [[nodiscard]] bool TakeWith(unsigned check, std::size_t start);

    unsigned mCheck = 1;
    bool mStrip = false;
    bool mInside = false;
    std::string mBody; ///< from the length on
    std::string mStripped;
    KermitPacket mPacket;
};

} // namespace qncomm::transfer
