#include "common/Windows1252.h"

#include <gtest/gtest.h>

#include <set>

namespace qncomm {
namespace {

TEST(Windows1252, EveryByteIsACharacterOfItsOwnAndComesBack) {
    std::set<char16_t> characters;
    for (int byte = 0; byte < 256; ++byte) {
        const char16_t character = CharacterOf(static_cast<char>(byte));
        characters.insert(character);
        EXPECT_EQ(LineByteOf(character), static_cast<char>(byte)) << byte;
    }
    EXPECT_EQ(characters.size(), 256U);
}

TEST(Windows1252, DiffersFromUnicodeOnlyFrom0x80To0x9F) {
    EXPECT_EQ(CharacterOf('A'), u'A');
    EXPECT_EQ(CharacterOf('\x80'), u'\u20AC');
    EXPECT_EQ(CharacterOf('\x9F'), u'\u0178');
    EXPECT_EQ(CharacterOf('\x81'), char16_t{0x81}) << "undefined there: the control character";
    EXPECT_EQ(CharacterOf('\xE4'), u'\u00E4');
}

TEST(Windows1252, LacksMostCharacters) {
    for (const char32_t character : {U'\u0100', U'\u0080', U'\u2603', U'\U0001F600'})
        EXPECT_EQ(LineByteOf(character), std::nullopt) << static_cast<unsigned>(character);
}

} // namespace
} // namespace qncomm
