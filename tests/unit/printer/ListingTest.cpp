#include "printer/Listing.h"
#include "common/QNError.h"
#include "testing/core/ExpectRaised.h"

#include <gmock/gmock.h>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> Row(std::string_view line) {
    const auto files = ParseFileRow(line);
    if (!files) return {"not told apart"};
    std::vector<std::string> texts;
    for (const clsPrinterFile& file : *files)
        texts.push_back(file.Name + "=" + std::to_string(file.Size));
    return texts;
}

std::vector<std::string> FontRow(std::string_view line) {
    const auto fonts = ParseFontRow(line);
    if (!fonts) return {"not told apart"};
    std::vector<std::string> texts;
    for (const clsPrinterFile& font : *fonts)
        texts.push_back(font.Name + "=" + std::to_string(font.Size));
    return texts;
}

TEST(FileRow, HoldsOneFileOrTwoSideBySide) {
    EXPECT_THAT(Row("  A.PRG    120  "), ElementsAre("A.PRG=120"));
    EXPECT_THAT(Row("A.PRG  120      B C.PRG  7"), ElementsAre("A.PRG=120", "B C.PRG=7"));
}

TEST(FileRow, WithAnotherCountOfFieldsIsNotToldApart) {
    for (const char* line : {"A.PRG", "", "   ", "A.PRG 120", "A  B  120", "A  1  B  2  C",
                             "a  b  c  d  e  f  g  h  i  j  k  l  m"})
        EXPECT_THAT(Row(line), ElementsAre("not told apart")) << line;
}

TEST(FileRow, TakesTheNumberAtTheStartOfASize) {
    EXPECT_THAT(Row("A  12 bytes"), ElementsAre("A=12"));
    EXPECT_THAT(Row("A  bytes"), ElementsAre("A=0"));
    EXPECT_THAT(Row("A  2.5"), ElementsAre("A=2")) << "halves go to the even number";
}

TEST(FileRow, LeavesOutAFileWhoseSizeIsTooLarge) {
    EXPECT_THAT(Row("A  2147483648"), IsEmpty());
    EXPECT_THAT(Row("A  2147483648  B  2147483647"), ElementsAre("B=2147483647"));
    EXPECT_THAT(Row("A  1E999"), IsEmpty());
}

TEST(FontRow, HoldsOneFontOrTwoSideBySide) {
    EXPECT_THAT(FontRow(" MS030RMN.1 "), ElementsAre("MS030RMN.1=0"));
    EXPECT_THAT(FontRow("SW 120.1   SW120.2"), ElementsAre("SW 120.1=0", "SW120.2=0"));
    EXPECT_THAT(FontRow("A  B  C"), ElementsAre("not told apart"));
    EXPECT_THAT(FontRow("  "), ElementsAre("not told apart"));
}

TEST(ByteCountsLine, IsReadInAnyCaseAndSpacing) {
    const ByteCounts counts = ParseByteCounts("  1234567 Bytes free   89 bYTES USED");
    EXPECT_EQ(counts.free, 1234567);
    EXPECT_EQ(counts.used, 89);
}

TEST(ByteCountsLine, WithoutItsWordsTellsNothing) {
    EXPECT_EQ(ParseByteCounts("FILES ON ram:").free, std::nullopt);
    EXPECT_EQ(ParseByteCounts("").used, std::nullopt);
    EXPECT_EQ(ParseByteCounts("12 BYTES USED").used, std::nullopt);
    EXPECT_EQ(ParseByteCounts("12 BYTES FREE").used, std::nullopt);
    EXPECT_EQ(ParseByteCounts("12 BYTES FREE").free, 12);
    EXPECT_EQ(ParseByteCounts("9 BYTES USED 12 BYTES FREE x").used, std::nullopt);
}

TEST(ByteCountsLine, OfALargeCardTellsTheLargestCountThereIs) {
    const ByteCounts large = ParseByteCounts("2147483648 BYTES FREE 99999999999 BYTES USED");
    EXPECT_EQ(large.free, 2'147'483'647);
    EXPECT_EQ(large.used, 2'147'483'647);
}

TEST(DeviceWord, EndsAtTheFirstColon) {
    EXPECT_EQ(ParseDeviceWord("FILES ON ram: and c:"), "ram:");
    EXPECT_EQ(ParseDeviceWord("card1:"), "card1:");
    EXPECT_EQ(ParseDeviceWord("no device"), std::nullopt);
}

TEST(VersionNumber, IsTheFirstRunOfDigitsAndDots) {
    EXPECT_EQ(ParseVersionNumber("Quorin v8.10 b3"), "8.10");
    EXPECT_EQ(ParseVersionNumber("v.7.2"), "7.2");
    EXPECT_EQ(ParseVersionNumber("7.20"), "7.20");
    EXPECT_EQ(ParseVersionNumber("none"), "");
    EXPECT_EQ(ParseVersionNumber(""), "");
}

} // namespace
} // namespace qncomm::testing
