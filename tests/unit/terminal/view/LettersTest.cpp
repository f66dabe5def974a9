#include "terminal/view/Letters.h"

#include <gtest/gtest.h>

#include <string>

namespace qncomm::testing {
namespace {

TEST(Letters, CapitalsBecomeSmallAndAllElseStays) {
    EXPECT_EQ(WithSmallLetters("FILES \"ram:A[1]\" @Z{z}"), "files \"ram:a[1]\" @z{z}");
    EXPECT_EQ(WithSmallLetters("\xC4\xD6\xDC \xD7 \xDF\xFF"), "\xE4\xF6\xFC \xD7 \xDF\xFF");
    EXPECT_EQ(WithSmallLetters("\x8A\x8C\x8E\x9F"), "\x9A\x9C\x9E\xFF");
    EXPECT_EQ(WithSmallLetters(""), "");
}

TEST(Letters, EveryByteKeepsItsPlaceAndASmallLetterStaysSmall) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    const std::string small = WithSmallLetters(all);
    EXPECT_EQ(small.size(), all.size());
    EXPECT_EQ(WithSmallLetters(small), small);
    const auto changed = [&] {
        std::size_t count = 0;
        for (std::size_t i = 0; i < all.size(); ++i)
            count += all[i] != small[i] ? 1 : 0;
        return count;
    }();
    EXPECT_EQ(changed, 26U + 30U + 4U) << "ASCII, the upper half, and four between";
}

TEST(Letters, LettersAndNumbersAreTold) {
    for (const char byte : std::string("09AZaz\x8A\x9F\xAA\xB2\xBC\xC0\xDF\xFF"))
        EXPECT_TRUE(IsLetterOrNumber(byte)) << static_cast<int>(byte);
    for (const char byte : std::string(" @[`{\x80\x95\xA0\xB7\xD7\xF7\x1F\x7F"))
        EXPECT_FALSE(IsLetterOrNumber(byte)) << static_cast<int>(byte);
}

} // namespace
} // namespace qncomm::testing
