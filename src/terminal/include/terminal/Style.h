#pragma once

#include "terminal/Colour.h"

#include <cstdint>

namespace qncomm::terminal {

/// How a cell is drawn, beside its colours; a style holds any set of them.
enum class Attribute : std::uint16_t {
    Bold = 1 << 0,            ///< heavier strokes
    Faint = 1 << 1,           ///< text nearer to its background
    Italic = 1 << 2,          ///< slanted
    Underline = 1 << 3,       ///< one line below
    DoubleUnderline = 1 << 4, ///< two lines below
    Blink = 1 << 5,           ///< comes and goes, as often as the face lets its cursor
    Inverse = 1 << 6,         ///< text and background colour change places
    Conceal = 1 << 7,         ///< text in the colour of its background
    Strike = 1 << 8,          ///< a line through the middle
    Overline = 1 << 9,        ///< a line above
};

/// Attributes together, one bit each.
using AttributeSet = std::uint16_t;

/// The set of these attributes, at least one.
template <class... Attributes>
constexpr AttributeSet SetOf(Attributes... attributes) {
    return static_cast<AttributeSet>((static_cast<unsigned>(attributes) | ...));
}

/// The look of a cell: text colour, background colour and attributes in one word, so that a styled
/// run of cells is one fill. The default one has the terminal's own colours and no attribute.
class Style {
  public:
    /// The terminal's own colours and no attribute.
    constexpr Style() = default;

    /// The text colour.
    constexpr Colour Foreground() const { return Colour::FromCode(Field(ForegroundAt)); }
    /// The background colour.
    constexpr Colour Background() const { return Colour::FromCode(Field(BackgroundAt)); }
    /// Takes another text colour; all else stays.
    constexpr void SetForeground(Colour colour) { SetField(ForegroundAt, colour.Code()); }
    /// Takes another background colour; all else stays.
    constexpr void SetBackground(Colour colour) { SetField(BackgroundAt, colour.Code()); }

    /// Whether the attribute is set.
    constexpr bool Has(Attribute attribute) const { return (mBits & Bit(attribute)) != 0; }
    /// Sets the attribute, or takes it back.
    constexpr void Set(Attribute attribute, bool bOn = true) {
        mBits = bOn ? mBits | Bit(attribute) : mBits & ~Bit(attribute);
    }
    /// Takes back the attributes of the one set, then sets those of the other.
    constexpr void Change(AttributeSet set, AttributeSet clear) {
        mBits &= ~(std::uint64_t{clear} << AttributesAt);
        mBits |= std::uint64_t{set} << AttributesAt;
    }

    /// What erasing in this style leaves behind: its background and nothing else.
    constexpr Style Erased() const {
        Style blank;
        blank.SetBackground(Background());
        return blank;
    }

    /// Whether it has the terminal's own colours and no attribute.
    constexpr bool IsDefault() const { return mBits == 0; }

    /// The whole style as a number; 0 is the default one.
    constexpr std::uint64_t Bits() const { return mBits; }
    /// The style that has these bits; for any other number the result is undefined.
    static constexpr Style FromBits(std::uint64_t bits) {
        Style style;
        style.mBits = bits;
        return style;
    }

    /// Whether both look the same on every cell.
    constexpr bool operator==(const Style&) const = default;

  private:
    static constexpr unsigned ColourBits = 25;
    static constexpr unsigned ForegroundAt = 0;
    static constexpr unsigned BackgroundAt = ColourBits;
    static constexpr unsigned AttributesAt = 2 * ColourBits;
    static constexpr std::uint64_t ColourMask = (std::uint64_t{1} << ColourBits) - 1;

    static constexpr std::uint64_t Bit(Attribute attribute) {
        return std::uint64_t{static_cast<std::uint16_t>(attribute)} << AttributesAt;
    }
    constexpr std::uint32_t Field(unsigned at) const {
        return static_cast<std::uint32_t>(mBits >> at & ColourMask);
    }
    constexpr void SetField(unsigned at, std::uint32_t code) {
        mBits = (mBits & ~(ColourMask << at)) | std::uint64_t{code} << at;
    }

    std::uint64_t mBits = 0;
};

} // namespace qncomm::terminal
