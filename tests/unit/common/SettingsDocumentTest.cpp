#include "common/SettingsDocument.h"
#include "common/MemorySettings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qncomm {
namespace {

TEST(SettingsDocument, ReadsSectionsKeysCommentsAndBlankLines) {
    const auto document =
        SettingsDocument::Parse("; note\r\n\n[Settings]\n Baudrate = 9600 \n[Other]\nKey=\n");
    ASSERT_TRUE(document);
    EXPECT_EQ(document->Value("settings", "BAUDRATE"), "9600");
    EXPECT_EQ(document->Value("Other", "key"), "");
    EXPECT_EQ(document->Value("Other", "none"), std::nullopt);
    EXPECT_EQ(document->Value("None", "key"), std::nullopt);
}

TEST(SettingsDocument, PassesOverALineThatSaysNothingAndKeepsIt) {
    for (const char* stray : {"no equals", "=1", "[Open"}) {
        const std::string text = "[S]\nA=1\n" + std::string(stray) + "\nB=2\n[T]\nC=3\n";
        auto document = SettingsDocument::Parse(text);
        ASSERT_TRUE(document) << text;
        EXPECT_EQ(document->StrayLine(), 3U) << text;
        EXPECT_EQ(document->Value("S", "A"), "1");
        EXPECT_EQ(document->Value("T", "C"), "3");
        EXPECT_EQ(document->Text(), text);
    }
    EXPECT_EQ(SettingsDocument::Parse("Key=1\n[S]\n")->StrayLine(), 1U) << "no section is open";
    EXPECT_EQ(SettingsDocument::Parse("; note\n\n[S]\nA=\n")->StrayLine(), 0U);
}

TEST(SettingsDocument, GivesKeysBehindABrokenHeaderToNoSection) {
    const auto document = SettingsDocument::Parse("[S]\nA=1\n[T\nA=2\n");
    ASSERT_TRUE(document);
    EXPECT_EQ(document->Value("S", "A"), "1");
    EXPECT_EQ(document->Value("T", "A"), std::nullopt);
}

TEST(SettingsDocument, TakesABackslashThatBeginsNoEscapeAsItStands) {
    const auto document = SettingsDocument::Parse("[S]\nA=C:\\temp\nB=\\x4\nC=\\xZZ\nD=\\\n");
    ASSERT_TRUE(document);
    EXPECT_EQ(document->Value("S", "A"), "C:\\temp");
    EXPECT_EQ(document->Value("S", "B"), "\\x4");
    EXPECT_EQ(document->Value("S", "C"), "\\xZZ");
    EXPECT_EQ(document->Value("S", "D"), "\\");
}

TEST(SettingsDocument, RefusesATornText) {
    EXPECT_FALSE(SettingsDocument::Parse(std::string_view("[S]\nA=1\n\0\0\0", 11)));
}

TEST(SettingsDocument, EveryByteComesBack) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    SettingsDocument document;
    document.SetValue("FunctionKeys", "F1", all);
    document.SetValue("FunctionKeys", "F2", " blanks kept ");
    document.SetValue("FunctionKeys", "F3", "[x]=;y");
    const auto read = SettingsDocument::Parse(document.Text());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->Value("FunctionKeys", "F1"), all);
    EXPECT_EQ(read->Value("FunctionKeys", "F2"), " blanks kept ");
    EXPECT_EQ(read->Value("FunctionKeys", "F3"), "[x]=;y");
    EXPECT_EQ(read->Text(), document.Text());
}

TEST(SettingsDocument, OneKeyInTwoSpellingsIsOneEntry) {
    SettingsDocument document;
    document.SetValue("Settings", "Flowcontrol", "1");
    document.SetValue("SETTINGS", "FlowControl", "2");
    EXPECT_EQ(document.Text(), "[Settings]\nFlowcontrol=2\n");
}

/// The text after the values were set, one after the other.
std::string After(std::string_view text, const std::vector<SettingValue>& values) {
    auto document = SettingsDocument::Parse(text);
    EXPECT_TRUE(document) << text;
    if (!document) return {};
    for (const auto& [section, key, value] : values)
        document->SetValue(section, key, value);
    const std::string written = document->Text();
    const auto read = SettingsDocument::Parse(written);
    EXPECT_TRUE(read) << written;
    if (!read) return written;
    EXPECT_EQ(read->Text(), written);
    for (const auto& [section, key, value] : values)
        EXPECT_EQ(read->Value(section, key), value) << written;
    return written;
}

constexpr std::string_view Written = "; the printer in hall 3\n"
                                     "\n"
                                     "[ports]\n"
                                     "  ; by the door\n"
                                     "COM1 = tcp://hall3:9100   \n"
                                     "\n"
                                     ";COM2=/dev/ttyUSB0\n"
                                     "[Settings]\n"
                                     "Parity=None\n"
                                     "\n"
                                     "Baudrate=9600\n"
                                     "; the end\n";

TEST(SettingsDocument, AWriteLeavesEveryOtherLineAsTheUserWroteIt) {
    std::string expected(Written);
    expected.replace(expected.find("None"), 4, "Even");
    EXPECT_EQ(After(Written, {}), Written);
    EXPECT_EQ(After(Written, {{"Settings", "Parity", "Even"}}), expected);
}

TEST(SettingsDocument, AWriteKeepsTheSpellingAndTheBlanksOfItsOwnLine) {
    std::string expected(Written);
    expected.replace(expected.find("tcp://hall3:9100"), 16, "\\x20x");
    EXPECT_EQ(After(Written, {{"Ports", "com1", " x"}}), expected);
    EXPECT_EQ(After("[S]\nK =\n", {{"S", "K", "v"}}), "[S]\nK =v\n");
    EXPECT_EQ(After("[S]\n K= v \n", {{"S", "K", ""}}), "[S]\n K=  \n");
    EXPECT_EQ(After("[S]\nK=a=b\n", {{"S", "K", "c=d=e"}}), "[S]\nK=c=d=e\n");
}

TEST(SettingsDocument, ANewKeyGoesToTheEndOfItsSection) {
    std::string expected(Written);
    expected.insert(expected.find("\n\n;COM2") + 1, "COM3=sim:R7G\n");
    expected += "Commport=3\nStop=1\n";
    EXPECT_EQ(After(Written, {{"Ports", "COM3", "sim:R7G"},
                              {"Settings", "Commport", "3"},
                              {"Settings", "Stop", "1"}}),
              expected);
}

TEST(SettingsDocument, ACommentCloselyAboveASectionStaysThere) {
    EXPECT_EQ(After("[A]\nK=1\n; of B\n[B]\n", {{"A", "L", "2"}}), "[A]\nK=1\nL=2\n; of B\n[B]\n");
    EXPECT_EQ(After("[A]\nK=1\n; of A\n\n[B]\n", {{"A", "L", "2"}}),
              "[A]\nK=1\n; of A\nL=2\n\n[B]\n");
    EXPECT_EQ(After("[A]\n; of A\n\n[B]\n", {{"A", "L", "2"}}), "[A]\n; of A\nL=2\n\n[B]\n");
}

TEST(SettingsDocument, ANewSectionGoesToTheEnd) {
    const std::vector<SettingValue> values = {{"New", "Key", "1"}, {"New", "Other", "2"}};
    const std::string section = "[New]\nKey=1\nOther=2\n";
    EXPECT_EQ(After("", values), section);
    EXPECT_EQ(After(Written, values), std::string(Written) + "\n" + section);
    EXPECT_EQ(After("; alone", values), "; alone\n\n" + section);
    EXPECT_EQ(After("[A]\nK=1\n \n", values), "[A]\nK=1\n \n" + section);
}

TEST(SettingsDocument, ASectionInTwoPartsIsOne) {
    constexpr std::string_view text = "[A]\nK=1\n[B]\n[a]\nL=2\nk=3\n";
    const auto document = SettingsDocument::Parse(text);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->Value("A", "K"), "3") << "the last one counts";
    EXPECT_EQ(After(text, {{"A", "K", "4"}, {"A", "M", "5"}}),
              "[A]\nK=1\n[B]\n[a]\nL=2\nk=4\nM=5\n");
}

TEST(SettingsDocument, KeepsTheByteOrderMarkAndTheLineEndsOfOtherSystems) {
    const std::string text = "\xEF\xBB\xBF[A]\r\nK=1\r\n; note\r\n";
    const auto document = SettingsDocument::Parse(text);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->Value("A", "K"), "1");
    EXPECT_EQ(After(text, {{"A", "K", "2"}, {"A", "L", "3"}, {"B", "M", "4"}}),
              "\xEF\xBB\xBF[A]\r\nK=2\r\n; note\r\nL=3\r\n\r\n[B]\r\nM=4\r\n");
    EXPECT_TRUE(SettingsDocument::Parse("\xEF\xBB\xBF"));
}

// In time that grew with the square of the keys this would outlast the test's time limit.
TEST(SettingsDocument, HasRoomForManyKeys) {
    constexpr int keys = 250'000;
    std::string text = "[S]\n";
    for (int n = 0; n < keys; ++n)
        text += "Key" + std::to_string(n) + "=" + std::to_string(n) + "\n";
    auto document = SettingsDocument::Parse(text);
    ASSERT_TRUE(document);
    for (int n = 0; n < keys; ++n)
        document->SetValue("S", "Key" + std::to_string(keys - n), "x");
    EXPECT_EQ(document->Value("S", "key0"), "0");
    EXPECT_EQ(document->Value("S", "key1"), "x");
    EXPECT_EQ(document->Value("S", "key" + std::to_string(keys)), "x") << "a new one";
}

TEST(MemorySettings, GivesTheDefaultUntilAValueIsWritten) {
    MemorySettings settings;
    EXPECT_EQ(settings.ReadValue("Settings", "Baudrate", "Nada"), "Nada");
    settings.WriteValues({{"Settings", "Baudrate", "9600"}, {"Settings", "Parity", "None"}});
    EXPECT_EQ(settings.ReadValue("settings", "baudrate", "Nada"), "9600");
    EXPECT_EQ(settings.ReadValue("settings", "parity", "Nada"), "None");
}

} // namespace
} // namespace qncomm
