#pragma once

#include <cstdint>

namespace qncomm::terminal {

/// A colour of a cell: the terminal's own (its text or background colour, whichever asks), one of
/// the 256 of the palette, or red, green and blue.
class Colour {
  public:
    /// The terminal's own.
    constexpr Colour() = default;

    /// 0 to 7 the dark ones, 8 to 15 the bright ones, 16 to 231 the colour cube, 232 to 255 greys.
    static constexpr Colour Indexed(std::uint8_t index) { return Colour(FirstIndexed + index); }

    /// Any colour, each part from 0 (none of it) to 255.
    static constexpr Colour Rgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
        return Colour(DirectMark | static_cast<std::uint32_t>(blue << 16 | green << 8 | red));
    }

    /// Whether it is the terminal's own colour.
    constexpr bool IsOwn() const { return mCode == 0; }

    /// As 0x00BBGGRR; own is what the terminal's own colour is.
    std::uint32_t Value(std::uint32_t own) const;

    /// The colour as a number below 2 to the power of 25; 0 is the terminal's own.
    constexpr std::uint32_t Code() const { return mCode; }
    /// The colour that has this code; for any other number the result is undefined.
    static constexpr Colour FromCode(std::uint32_t code) { return Colour(code); }

    /// Whether both are the same choice: an indexed colour never equals one of red, green and blue.
    constexpr bool operator==(const Colour&) const = default;

  private:
    static constexpr std::uint32_t FirstIndexed = 1;
    static constexpr std::uint32_t DirectMark = 1U << 24;

    explicit constexpr Colour(std::uint32_t code) : mCode(code) {}

    std::uint32_t mCode = 0;
};

} // namespace qncomm::terminal
