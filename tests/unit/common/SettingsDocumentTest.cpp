#include "common/SettingsDocument.h"
#include "common/MemorySettings.h"

#include <gtest/gtest.h>

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

TEST(SettingsDocument, RefusesWhatItWouldNotHaveWritten) {
    for (const char* text : {"Key=1\n", "[Open\nKey=1\n", "[S]\nno equals\n", "[S]\n=1\n",
                             "[S]\nK=\\q\n", "[S]\nK=\\x4\n", "[S]\nK=\\xZZ\n", "[S]\nK=\\\n"})
        EXPECT_FALSE(SettingsDocument::Parse(text)) << text;
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

TEST(MemorySettings, GivesTheDefaultUntilAValueIsWritten) {
    MemorySettings settings;
    EXPECT_EQ(settings.ReadValue("Settings", "Baudrate", "Nada"), "Nada");
    settings.WriteValues({{"Settings", "Baudrate", "9600"}, {"Settings", "Parity", "None"}});
    EXPECT_EQ(settings.ReadValue("settings", "baudrate", "Nada"), "9600");
    EXPECT_EQ(settings.ReadValue("settings", "parity", "Nada"), "None");
}

} // namespace
} // namespace qncomm
