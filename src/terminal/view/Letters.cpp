#include "terminal/view/Letters.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

/// Bytes first to last, and what is added to a capital among them to make it small.
struct ByteRange {
    unsigned char first;
    unsigned char last;
    int toSmall;
};

constexpr std::array LettersAndNumbers{
    ByteRange{'0', '9', 0},      ByteRange{'A', 'Z', 0x20},   ByteRange{'a', 'z', 0},
    ByteRange{0x83, 0x83, 0},    ByteRange{0x88, 0x88, 0},    ByteRange{0x8A, 0x8A, 0x10},
    ByteRange{0x8C, 0x8C, 0x10}, ByteRange{0x8E, 0x8E, 0x10}, ByteRange{0x9A, 0x9A, 0},
    ByteRange{0x9C, 0x9C, 0},    ByteRange{0x9E, 0x9E, 0},    ByteRange{0x9F, 0x9F, 0x60},
    ByteRange{0xAA, 0xAA, 0},    ByteRange{0xB2, 0xB3, 0},    ByteRange{0xB5, 0xB5, 0},
    ByteRange{0xB9, 0xBA, 0},    ByteRange{0xBC, 0xBE, 0},    ByteRange{0xC0, 0xD6, 0x20},
    ByteRange{0xD8, 0xDE, 0x20}, ByteRange{0xDF, 0xF6, 0},    ByteRange{0xF8, 0xFF, 0},
};

const ByteRange* RangeOf(char cell) {
    const auto byte = static_cast<unsigned char>(cell);
    const auto found = std::ranges::find_if(LettersAndNumbers, [&](const ByteRange& each) {
        return byte >= each.first && byte <= each.last;
    });
    return found == LettersAndNumbers.end() ? nullptr : &*found;
}

/// Each byte's small letter: a search reads every cell that is kept.
const std::array<char, 256>& SmallLetters() {
    static const std::array<char, 256> table = [] {
        std::array<char, 256> letters{};
        for (std::size_t byte = 0; byte < letters.size(); ++byte) {
            const auto cell = static_cast<char>(byte);
            const ByteRange* range = RangeOf(cell);
            letters[byte] = static_cast<char>(cell + (range == nullptr ? 0 : range->toSmall));
        }
        return letters;
    }();
    return table;
}

} // namespace

bool IsLetterOrNumber(char cByte) {
    return RangeOf(cByte) != nullptr;
}

std::string WithSmallLetters(std::string_view sText) {
    std::string small(sText);
    for (char& cell : small)
        cell = SmallLetters()[static_cast<unsigned char>(cell)];
    return small;
}

} // namespace qncomm
