#pragma once

// The letter shapes of the built-in bitmap fonts.

#include <array>
#include <cstdint>

namespace qnsim {

constexpr int GlyphWidth = 5;
constexpr int GlyphHeight = 8; ///< seven rows above the base line, one below

/// The rows of a character, the leftmost dot in bit 4. What has no shape gets an empty box.
std::array<std::uint8_t, GlyphHeight> GlyphOf(char character);

} // namespace qnsim
