#include "link/Listening.h"

#include <gtest/gtest.h>

#include <bit>
#include <ostream>
#include <string>
#include <vector>

namespace qncomm {

void PrintTo(const LineVerdict& verdict, std::ostream* out) {
    *out << NameOf(verdict.talk) << " fit " << static_cast<int>(verdict.fit) << " parity '"
         << (verdict.parity == 0 ? '-' : verdict.parity) << "' \"" << verdict.sample << '"';
}

namespace testing {
namespace {

using std::string_literals::operator""s;

/// Seven data bits with a parity bit, as a receiver of eight bits reads them.
std::string WithParity(std::string text, int ones) {
    for (char& c : text)
        if (std::popcount(static_cast<unsigned char>(c)) % 2 != ones)
            c = static_cast<char>(static_cast<unsigned char>(c) | 0x80U);
    return text;
}

std::string WithMark(std::string text) {
    for (char& c : text)
        c = static_cast<char>(static_cast<unsigned char>(c) | 0x80U);
    return text;
}

struct HeardCase {
    const char* name;
    HeardLine heard;
    LineVerdict verdict;
};

void PrintTo(const HeardCase& known, std::ostream* out) {
    *out << known.name;
}

LineVerdict Says(LineTalk talk, std::string sample = {}) {
    return {talk, FormatFit::Fits, 0, std::move(sample)};
}

using enum LineTalk;

const LineVerdict Nothing{};
const LineVerdict Garbage{Noise, FormatFit::Wrong, 0, ""};

const std::vector<HeardCase> HeardCases{
    {"Silence", {"", 0, 1000}, Nothing},
    {"ErrorsWithoutABytesAreNoise", {"", 3, 1000}, Garbage},
    {"BytesOfAnotherRate", {"\x00\xFE\xF8\x80\xC0\xE0"s, 6, 60}, Garbage},
    {"NoiseThatTheDeviceTakesForBytes", {"\xFE\xF8\x80\xC0\xE0\xFC", 0, 0}, Garbage},
    {"SevenBitsOfAnotherRate", {"~@x||xx~|@x`|~~|`", 3, 60}, Garbage},
    {"SevenBitsOfAnotherRateWithoutErrors", {"~@x||xx~|@\x7Fx`|~~|`", 0, 60}, Garbage},
    {"SignsWithoutALineError", {"+----+\r\n", 0, 60}, Says(Text, "+----+")},
    {"OneByteOfNoise", {"\xFF", 0, 60}, Garbage},
    {"NulsOfABreak", {"\0\0"s, 0, 60}, Garbage},
    {"ALoopThatPrints", {"2\r\n42\r\n42\r\n4", 0, 0}, Says(Text, "42")},
    {"OneLineThenSilence", {"label 7 printed\r\n", 0, 60}, Says(Text, "label 7 printed")},
    {"HalfALineThenSilence", {"7\r\nlabel", 0, 60}, Says(Text, "label")},
    {"Windows1252",
     {"Gr\xF6\xDF"
      "e 5 \x80\r\n",
      0, 60},
     Says(Text, "Gr\xF6\xDF"
                "e 5 \x80")},
    {"TextWithFrameErrors",
     {"la\xE2"
      "el 7\r\nlabel 8\r\n",
      2, 60},
     {Text, FormatFit::Wrong, 0, "label 8"}},
    {"ALongLineIsCut", {std::string(100, 'x') + "\r\n", 0, 60}, Says(Text, std::string(40, 'x'))},
    {"Prompt", {"42\r\nOk\r\n", 0, 60}, Says(Prompt, "Ok")},
    {"PromptAlone", {"Ok\r\n", 0, LineQuietMs}, Says(Prompt, "Ok")},
    {"AProgramThatPrintsOk", {"Ok\r\nOk\r\n", 0, LineQuietMs - 1}, Says(Text, "Ok")},
    {"OkInALine", {"All Ok\r\n", 0, 60}, Says(Text, "All Ok")},
    {"OkWithoutItsEnd", {"Ok", 0, 60}, Says(Text, "Ok")},
    {"Question", {"RUN\r\nArticle? ", 0, 60}, Says(Question, "Article? ")},
    {"QuestionOfNoText", {"? ", 0, 60}, Says(Question, "? ")},
    {"AQuestionThatIsPrinted", {"Why? \r\n", 0, 60}, Says(Text, "Why? ")},
    {"TheQuestionInTheMiddleOfATalk", {"Why? ", 0, 10}, Says(Text, "Why? ")},
    {"Kermit", {"\x01# N3\r", 0, 60}, Says(KermitReceiver)},
    {"KermitBehindText", {"Ok\r\n\x01# N3\r\x01# N3\r", 0, 60}, Says(KermitReceiver)},
    {"KermitByEvenParity",
     {WithParity("\x01# N3\r", 0), 0, 60},
     {KermitReceiver, FormatFit::Parity, 'e', ""}},
    {"APacketWithAWrongCheckIsNone", {"\x01# N4\r", 0, 60}, Says(Text, "# N4")},
    {"APacketThatEndsEarlyIsNone", {"abc\x01# N", 0, 60}, Says(Text, "abc# N")},
    {"ZModem",
     {"**\x18"
      "B0100000023be50\r\x8A\x11",
      0, 60},
     Says(ZModemReceiver)},
    {"ZModemBehindItsPrompt",
     {"rz waiting to receive.**\x18"
      "B0100000023be50\r\n\x11",
      0, 60},
     Says(ZModemReceiver)},
    {"ABootingPrinter", {"\r\nFirmware 6.13\r\nR7G\r\n", 0, 60}, Says(Boot, "R7G")},
    {"ABootThatIsOver", {"\r\nFirmware 6.13\r\nR7G\r\nOk\r\n", 0, 60}, Says(Prompt, "Ok")},
    {"AModelAloneIsNoGreeting", {"R7G\r\n", 0, 60}, Says(Text, "R7G")},
    {"Echo", {"\x11\rPRINT 1\r", 0, 60, "\x11\rPRINT 1\r"}, Says(Echo, "PRINT 1")},
    {"EchoWithoutItsControlBytes",
     {"PRINT 1\r\n", 0, 60, "\x11\rPRINT 1\r"},
     Says(Echo, "PRINT 1")},
    {"AnEchoAndMore", {"PRINT 1\r\n1\r\n", 0, 60, "PRINT 1\r"}, Says(Text, "1")},
    {"ADigitOfWhatWasSentIsNoEcho", {"1\r\n", 0, 60, "PRINT 1\r"}, Says(Text, "1")},
    {"EvenParity",
     {WithParity("label 7 printed\r\n", 0), 0, 60},
     {Text, FormatFit::Parity, 'e', "label 7 printed"}},
    {"OddParity",
     {WithParity("label 7 printed\r\n", 1), 0, 60},
     {Text, FormatFit::Parity, 'o', "label 7 printed"}},
    {"MarkParity", {WithMark("label 7\r\n"), 0, 60}, {Text, FormatFit::Parity, 'm', "label 7"}},
    {"AQuestionByMarkParity",
     {WithMark("Article? "), 0, 60},
     {Question, FormatFit::Parity, 'm', "Article? "}},
    {"TooLittleForAParity", {"\xB4\xB2", 0, 60}, Garbage},
};

class Listening : public ::testing::TestWithParam<HeardCase> {};

TEST_P(Listening, SaysWhatALineSays) {
    EXPECT_EQ(Classify(GetParam().heard), GetParam().verdict);
}

INSTANTIATE_TEST_SUITE_P(Lines, Listening, ::testing::ValuesIn(HeardCases),
                         [](const auto& known) { return std::string(known.param.name); });

TEST(ListeningTexts, NameEachKindAndQuoteWhatWasHeard) {
    EXPECT_EQ(NameOf(LineTalk::Silence), "silence");
    EXPECT_EQ(NameOf(LineTalk::KermitReceiver), "kermit");
    EXPECT_EQ(SentenceFor(Classify({"42\r\n42\r\n", 0, 0})), "a program is running; it says: 42");
    EXPECT_EQ(SentenceFor(Classify({"Article? ", 0, 60})),
              "a program is running; it asks and waits: Article?");
    EXPECT_EQ(SentenceFor(LineVerdict{}), "the line is silent");
}

} // namespace
} // namespace testing
} // namespace qncomm
