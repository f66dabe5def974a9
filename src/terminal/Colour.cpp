#include "terminal/Colour.h"

#include <array>

namespace qncomm::terminal {
namespace {

constexpr std::uint32_t Packed(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return blue << 16 | green << 8 | red;
}

constexpr std::array<std::uint32_t, 16> BaseColours{
    Packed(0x00, 0x00, 0x00), Packed(0xCD, 0x00, 0x00), Packed(0x00, 0xCD, 0x00),
    Packed(0xCD, 0xCD, 0x00), Packed(0x00, 0x00, 0xEE), Packed(0xCD, 0x00, 0xCD),
    Packed(0x00, 0xCD, 0xCD), Packed(0xE5, 0xE5, 0xE5), Packed(0x7F, 0x7F, 0x7F),
    Packed(0xFF, 0x00, 0x00), Packed(0x00, 0xFF, 0x00), Packed(0xFF, 0xFF, 0x00),
    Packed(0x5C, 0x5C, 0xFF), Packed(0xFF, 0x00, 0xFF), Packed(0x00, 0xFF, 0xFF),
    Packed(0xFF, 0xFF, 0xFF)};

constexpr std::uint32_t FirstOfCube = 16;
constexpr std::uint32_t FirstGrey = 232;

/// The six steps of each side of the colour cube: 0, 95, 135, 175, 215, 255.
constexpr std::uint32_t CubeStep(std::uint32_t step) {
    return step == 0 ? 0 : 55 + 40 * step;
}

std::uint32_t PaletteValue(std::uint32_t index) {
    if (index < FirstOfCube) return BaseColours[index];
    if (index < FirstGrey) {
        const std::uint32_t place = index - FirstOfCube;
        return Packed(CubeStep(place / 36), CubeStep(place / 6 % 6), CubeStep(place % 6));
    }
    const std::uint32_t grey = 8 + 10 * (index - FirstGrey);
    return Packed(grey, grey, grey);
}

} // namespace

std::uint32_t Colour::Value(std::uint32_t own) const {
    if (IsOwn()) return own;
    if ((mCode & DirectMark) != 0) return mCode & ~DirectMark;
    return PaletteValue(mCode - FirstIndexed);
}

} // namespace qncomm::terminal
