#include "console/Charset.h"

#include <gtest/gtest.h>

namespace {

using qncomm::DisplayText;
using qncomm::PrinterFromUtf8;
using qncomm::TypedText;
using qncomm::Utf8FromPrinter;
using qncomm::WithoutControls;
using qncomm::WithoutControlsInJson;

TEST(Charset, ShowsThePrintersUpperHalfAsUtf8) {
    EXPECT_EQ(Utf8FromPrinter("plain"), "plain");
    EXPECT_EQ(Utf8FromPrinter("\x80\x99\xE5"), "€™å");
}

TEST(Charset, BringsEveryByteThereAndBack) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    EXPECT_EQ(PrinterFromUtf8(Utf8FromPrinter(all)), all);
}

TEST(Charset, RefusesWhatThePrinterCannotPrintAndWhatIsNoUtf8) {
    EXPECT_FALSE(PrinterFromUtf8("\u4E2D"));
    EXPECT_FALSE(PrinterFromUtf8("\xE5 alone"));
    EXPECT_FALSE(PrinterFromUtf8("\xC0\xAF"));         // an overlong form
    EXPECT_FALSE(PrinterFromUtf8("\xED\xA0\x80"));     // half of a surrogate pair
    EXPECT_FALSE(PrinterFromUtf8("\xF4\x90\x80\x80")); // beyond the last character
    EXPECT_FALSE(PrinterFromUtf8("\xE2\x82"));         // cut
}

TEST(Charset, TakesATextForThePrintersOnlyWhenItIsNoUtf8) {
    EXPECT_EQ(DisplayText("Can´t"), "Can´t");
    EXPECT_EQ(DisplayText("Can\xB4t"), "Can´t");
}

TEST(Charset, ShowsControlCharactersInsteadOfSendingThem) {
    EXPECT_EQ(WithoutControls("a\x1B[2Jb\x7F\tc"), "a\\x1B[2Jb\\x7F\\x09c");
    EXPECT_EQ(WithoutControls("\xC2\x9B å"), "\\x9B å"); // the one-byte form of ESC [
    EXPECT_EQ(WithoutControls("a\u202Egnp.exe\u2028b"), "a\\u202Egnp.exe\\u2028b");
    EXPECT_EQ(WithoutControls("\xFF\u00E5"), "\xFF\u00E5");
}

TEST(Charset, ControlsInJsonAreItsOwnEscapes) {
    EXPECT_EQ(WithoutControlsInJson("{\"a\":\"\x7F\u009B\u202E\u00E5\"}"),
              "{\"a\":\"\\u007F\\u009B\\u202E\u00E5\"}");
}

TEST(Charset, TypedTextMayBeCutAnywhere) {
    const std::string typed = "\xE2\x82\xAC\xC3\xA5 x";
    for (std::size_t cut = 0; cut <= typed.size(); ++cut) {
        TypedText text;
        const std::string first = text.Feed(typed.substr(0, cut));
        EXPECT_EQ(first + text.Feed(typed.substr(cut)), "\x80\xE5 x") << "cut at " << cut;
    }
    TypedText text;
    EXPECT_EQ(text.Feed("\u4E2D\xFFz"), "??z");
}

} // namespace
