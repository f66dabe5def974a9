#pragma once

#include "ControlSequence.h"

#include <cstdint>
#include <string_view>

namespace qncomm::terminal {

/// What a parser has found, in the order of the bytes.
class ControlEvents {
  public:
    virtual ~ControlEvents() = default;

    /// Characters to show: 0x20 to 0x7E and 0x80 to 0xFF.
    virtual void Print(std::string_view text) = 0;
    /// A single control character, also from within a sequence.
    virtual void Execute(char control) = 0;
    /// ESC and a final byte.
    virtual void Escape(const ControlSequence& sequence) = 0;
    /// ESC [ and a final byte.
    virtual void Control(const ControlSequence& sequence) = 0;
};

/// Cuts bytes into text, control characters and sequences. The bytes may come in pieces of any
/// length: the events are the same, but that text comes in pieces too.
///
/// Text is 8-bit: no byte from 0x80 on is a control, and one inside a sequence breaks it off.
/// Strings (ESC P, X, ], ^, _) are swallowed, up to a bound at which text is shown again.
class ControlParser {
  public:
    /// Bytes of a string that never ends.
    static constexpr std::size_t LongestString = 4096;

    void Feed(std::string_view bytes, ControlEvents& events);

    /// Forgets what has been begun.
    void Reset() { *this = ControlParser(); }

  private:
    void Step(char byte, ControlEvents& events);
    void Collect(char byte);
    void TakeParameterByte(char byte);
    void CountStringByte();

    std::uint8_t mState = 0;
    bool mValuesFull = false;
    std::size_t mStringBytes = 0;
    ControlSequence mSequence;
};

} // namespace qncomm::terminal
