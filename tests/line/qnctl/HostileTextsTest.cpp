// What a printer, a file or a name says reaches terminal, JSON and trace as text: no control of
// its and no mark that turns a text around passes.

#include "testing/line/BentLine.h"
#include "testing/programs/QnctlFixture.h"

#include <array>
#include <cctype>

namespace {

using nlohmann::json;
using qncomm::testing::Arguments;
using qncomm::testing::BentLine;
using qncomm::testing::Ended;
using testing::HasSubstr;
using testing::IsEmpty;

/// ESC [ 2 J, DEL, a C1 control of the line's character set, NUL and another C1.
const std::string Hostile10("\x1B[2J\x7F\x81\0\x9DOK", 10);
/// The same for a terminal.
const std::string Shown = "\\x1B[2J\\x7F\\x81\\x00\\x9DOK";
/// How a document of JSON writes it.
const std::string Escaped = R"(\u001b[2J\u007F\u0081\u0000\u009DOK)";
/// Names of this machine: with marks that turn it around, and with a byte that is no UTF-8.
const std::string TurningName = "\u202Egnp.\u2066\x1B[31m\u009B\x7Fprg";
const std::string LoneName = "a\x9B[2J\x1B[31m.prg";

/// The controls of a text that lines may not hold, as numbers.
std::vector<int> ControlsIn(const std::string& text) {
    std::vector<int> controls;
    constexpr std::array<std::string_view, 4> marks{"\u202E", "\u2066", "\u200F", "\u2028"};
    for (const std::string_view mark : marks)
        if (text.find(mark) != std::string::npos) controls.push_back(0x2000);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool second = i > 0 && static_cast<unsigned char>(text[i - 1]) >= 0xC2;
        const bool control = (byte < 0x20 && byte != '\n') || byte == 0x7F;
        const bool late = byte >= 0x80 && byte < 0xA0
                          && (!second || static_cast<unsigned char>(text[i - 1]) == 0xC2);
        const bool third = i > 1 && static_cast<unsigned char>(text[i - 2]) >= 0xE0;
        if (control || (late && !third)) controls.push_back(byte);
    }
    return controls;
}

class HostileTexts : public qncomm::testing::QnctlFixture {
  protected:
    /// Runs a command on a printer whose files, fonts, setup, firmware and errors are hostile.
    Ended OnHostile(Arguments arguments, const Arguments& more = {}) {
        if (!mLine) {
            StartSimulator({"--model", "R7A"});
            const auto ten = [](std::string text) { return text.substr(0, 10); };
            mLine.emplace(Printer(), std::vector<BentLine::Bend>{
                                         {"LAYOUT.LBL", Hostile10},
                                         {"MS030RMN.1", Hostile10},
                                         {"FEED ADJUS", Hostile10},
                                         {ten("File not found"), Hostile10},
                                         {ten("Undefined line number"), Hostile10},
                                     });
        }
        arguments.insert(arguments.end(), {"--port", mLine->Path()});
        arguments.insert(arguments.end(), more.begin(), more.end());
        Ended ended = Run(arguments);
        EXPECT_THAT(ControlsIn(ended.out), IsEmpty()) << ended.out;
        EXPECT_THAT(ControlsIn(ended.err), IsEmpty()) << ended.err;
        return ended;
    }

  private:
    std::optional<BentLine> mLine;
};

TEST_F(HostileTexts, OfListingsAndTheSetupAreShown) {
    EXPECT_THAT(OnHostile({"files", "ram:"}).out, HasSubstr(Shown));
    EXPECT_THAT(OnHostile({"fonts"}).out, HasSubstr(Shown));
    EXPECT_THAT(OnHostile({"setup", "list"}).out, HasSubstr(Shown));
    EXPECT_THAT(OnHostile({"call", "Files", "ram:"}).out, HasSubstr(Shown));
}

TEST_F(HostileTexts, AreEscapedInJsonAndReadBack) {
    for (const Arguments& command : {Arguments{"files", "ram:"}, Arguments{"fonts"},
                                     Arguments{"setup", "list"}, Arguments{"call", "Fonts"}}) {
        const Ended ended = OnHostile(command, {"--json"});
        EXPECT_THAT(ended.out, HasSubstr(Escaped)) << command.front();
        EXPECT_TRUE(ended.Document().is_object());
    }
    const json name = OnHostile({"files", "ram:"}, {"--json"}).Document()["files"][0]["name"];
    EXPECT_EQ(name.get<std::string>(), std::string("\x1B[2J\x7F\xC2\x81\0\xC2\x9DOK", 12));
}

TEST_F(HostileTexts, OfErrorsAreShown) {
    const Ended ended = OnHostile({"kill", "ram:NOPE"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.err, HasSubstr(Shown));
    EXPECT_THAT(OnHostile({"kill", "ram:NOPE"}, {"--json"}).err, HasSubstr(Escaped));
}

TEST_F(HostileTexts, StandInATraceAsPrintingCharacters) {
    OnHostile({"files", "ram:"}, {"--trace", PathOf("trace")});
    const std::string trace = HostFile("trace");
    EXPECT_THAT(trace, HasSubstr(R"(\u001b[2J\u007f\u0081\u0000\u009dOK)"));
    for (const char byte : trace)
        ASSERT_TRUE(byte == '\n' || std::isprint(static_cast<unsigned char>(byte)) != 0);
}

TEST_F(HostileTexts, OfNamesOfThisMachineAreShown) {
    WriteHostFile("batch\u202E", "NoSuchMember\n");
    for (const std::string& name : {TurningName, LoneName}) {
        WriteHostFile(name, "10 PRIMT\n");
        OnHostile({"module", "upload", PathOf(name), "--target", "ram:M"});
        for (const Arguments& command :
             {Arguments{"batch", PathOf("batch\u202E")}, Arguments{"batch", name},
              Arguments{"call", name}, Arguments{"key", name},
              Arguments{"trace", "redact", name, PathOf("to")},
              Arguments{"info", "--port", "/dev/" + name}, Arguments{"files", name}}) {
            const Ended ended = Run(command);
            EXPECT_THAT(ControlsIn(ended.err), IsEmpty()) << command.front() << ended.err;
            EXPECT_NE(ended.err, "");
        }
    }
    Run({"macros", "set", "F1", "file", TurningName});
    EXPECT_THAT(OnHostile({"macros", "list"}).out, HasSubstr("\\u202Egnp.\\u2066\\x1B[31m"));
}

} // namespace
