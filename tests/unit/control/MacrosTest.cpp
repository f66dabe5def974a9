#include "control/Macros.h"

#include "common/ControlNames.h"
#include "common/MemorySettings.h"
#include "common/Text.h"
#include "testing/core/DeskTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScriptedInputs;

TEST(ControlNamesInMacros, EachIsReplacedAllUpperOrAllLowerOnly) {
    for (std::size_t code = 0; code < ControlCharacterNames.size(); ++code) {
        const std::string mark = "<" + std::string(ControlCharacterNames[code]) + ">";
        const std::string character(1, static_cast<char>(code));
        EXPECT_EQ(ReplaceControlNames(mark), character) << mark;
        EXPECT_EQ(ReplaceControlNames(LowerCase(mark)), character) << mark;
    }
    EXPECT_EQ(ReplaceControlNames("a<CR><lf>b<Cr><cR>"), "a\r\nb<Cr><cR>");
    EXPECT_EQ(ReplaceControlNames("x<NUL>y"), std::string("x\0y", 3));
}

TEST(ControlNamesInMacros, WhatIsNoNameStays) {
    for (const char* text :
         {"", "<", "<>", "<CR", "CR>", "< CR>", "<CRX>", "<dc5>", "<<<", "a<b>c"})
        EXPECT_EQ(ReplaceControlNames(text), text);
    EXPECT_EQ(ReplaceControlNames("<<CR>CR>"), "<\rCR>");
    EXPECT_EQ(ReplaceControlNames("<DC1><DC4>"), "\x11\x14");
}

TEST(ControlNamesInMacros, AMillionMarksAreReplaced) {
    std::string text;
    for (int i = 0; i < 200'000; ++i)
        text += "<CR><";
    const std::string replaced = ReplaceControlNames(text);
    EXPECT_EQ(replaced.size(), 400'000U);
}

TEST(MacroRecords, AreSplitAtTheFirstSeparator) {
    MemorySettings settings;
    settings.WriteValue("FunctionKeys", "F1", "0;PRINT A;B");
    settings.WriteValue("FunctionKeys", "F2", "2");
    EXPECT_EQ(ReadMacro(&settings, "F1").kind, "0");
    EXPECT_EQ(ReadMacro(&settings, "F1").argument, "PRINT A;B");
    EXPECT_EQ(ReadMacro(&settings, "F2").kind, "2");
    EXPECT_EQ(ReadMacro(&settings, "F2").argument, "");
    EXPECT_EQ(MacroTip(ReadMacro(&settings, "F3")), "");
    EXPECT_EQ(MacroTip(ReadMacro(nullptr, "F1")), "");
}

TEST(MacroTips, NameTheKindAndQuoteTheArgument) {
    EXPECT_EQ(MacroTip({"0", "abc"}), "Text:\"abc\"");
    EXPECT_EQ(MacroTip({"1", "/a"}), "File:\"/a\"");
    EXPECT_EQ(MacroTip({"2", "ls"}), "Run:\"ls\"");
    EXPECT_EQ(MacroTip({"0", ""}), "Text:\"\"");
    EXPECT_EQ(MacroTip({"Nada", ""}), "");
    EXPECT_EQ(MacroTip({"3", "x"}), "");
}

TEST(MacroTips, KeepFortyCharacters) {
    const std::string forty(40, 'x');
    EXPECT_EQ(MacroTip({"0", forty}), "Text:\"" + forty + "\"");
    EXPECT_EQ(MacroTip({"0", forty + "y"}), "Text:\"" + forty + "...\"");
    std::string umlauts;
    for (int i = 0; i < 41; ++i)
        umlauts += "\xC3\xA4"; // one character of a path
    EXPECT_EQ(MacroTip({"1", umlauts}), "File:\"" + umlauts.substr(0, 80) + "...\"");
    EXPECT_EQ(MacroTip({"0", umlauts}), "Text:\"" + umlauts.substr(0, 40) + "...\"");
}

struct CommandLineCase {
    std::string line;
    LaunchRequest request;
};

TEST(CommandLines, AreTakenApart) {
    const std::vector<CommandLineCase> cases = {
        {"ls", {"ls", {}, ""}},
        {"  /usr/bin/ls -l  /tmp ", {"/usr/bin/ls", {"-l", "/tmp"}, "/usr/bin/"}},
        {"\"/opt/my tool/run\" a \"b c\"", {"/opt/my tool/run", {"a", "b c"}, "/opt/my tool/"}},
        {"\"/opt/run", {"/opt/run", {}, "/opt/"}},
        {"C:\\Apps\\edit.exe x.txt", {"C:\\Apps\\edit.exe", {"x.txt"}, "C:\\Apps\\"}},
        {"run $(reboot); `x` 'a b'", {"run", {"$(reboot);", "`x`", "'a", "b'"}, ""}},
        {"run a\"b c\"d \"\"", {"run", {"ab cd", ""}, ""}},
        {"", {"", {}, ""}},
        {"\"", {"", {}, ""}},
    };
    for (const CommandLineCase& item : cases)
        EXPECT_EQ(ParseCommandLine(item.line), item.request) << item.line;
}

class Prompts : public ::testing::Test {
  protected:
    ScriptedInputs mInputs;
    int mTurns = 0;
    MacroPrompts mPrompts{mInputs, [this] { ++mTurns; }};
};

TEST_F(Prompts, ATextWithoutDelimitersStays) {
    EXPECT_EQ(mPrompts.Expand("PRINT 1 & 2"), "PRINT 1 & 2");
    EXPECT_EQ(mPrompts.Expand(""), "");
}

TEST_F(Prompts, TheAnswerTakesThePlaceAndIsOfferedTheNextTime) {
    mInputs.mAnswers = {"5"};
    EXPECT_EQ(mPrompts.Expand("PF &&?Count&&:X"), "PF 5:X");
    EXPECT_EQ(mInputs.mBoxes[0].prompt, "Input new value for 'Count'.");
    EXPECT_EQ(mInputs.mBoxes[0].title, "Input new value...");
    EXPECT_EQ(mInputs.mBoxes[0].answer, "");
    EXPECT_EQ(mTurns, 1);
    EXPECT_EQ(mPrompts.Expand("PF &&?COUNT&&"), "PF 5") << "cancelled: what is remembered";
    EXPECT_EQ(mInputs.mBoxes[1].answer, "5");
    mInputs.mAnswers = {"6"};
    EXPECT_EQ(mPrompts.Expand("PF &&?count&&"), "PF 6");
    EXPECT_EQ(mPrompts.Expand("PF &&count&&"), "PF 6") << "in place of what was remembered";
}

TEST_F(Prompts, APromptOfItsOwnStandsInQuotes) {
    mInputs.mAnswers = {"7"};
    EXPECT_EQ(mPrompts.Expand("&&?n\"How many?\"&&/&&N&&/&&n&&"), "7/7/7");
    EXPECT_EQ(mInputs.mBoxes[0].prompt, "How many?");
    EXPECT_EQ(mPrompts.Expand("&&?n\"open"), std::nullopt);
    mPrompts.Expand("&&?n\"open&&");
    EXPECT_EQ(mInputs.mBoxes[1].prompt, "open");
}

TEST_F(Prompts, APlainReferenceAsksNobodyAndIsEmptyWhenNothingIsRemembered) {
    EXPECT_EQ(mPrompts.Expand("a&&X&&b&&&&c"), "abc");
    EXPECT_THAT(mInputs.mBoxes, IsEmpty());
}

TEST_F(Prompts, AnOddNumberOfDelimitersAsksNothing) {
    for (const char* text : {"&&", "a&&?X", "&&?A&&&&", "&&?A&& &&?B", "&&&&&&"})
        EXPECT_EQ(mPrompts.Expand(text), std::nullopt) << text;
    EXPECT_EQ(mPrompts.Expand("&&&"), std::nullopt);
    EXPECT_THAT(mInputs.mBoxes, IsEmpty());
}

TEST_F(Prompts, AnAnswerIsNotExpandedAgain) {
    mInputs.mAnswers = {"&&B&&"};
    EXPECT_EQ(mPrompts.Expand("&&?A&&"), "&&B&&");
}

} // namespace
} // namespace qncomm
