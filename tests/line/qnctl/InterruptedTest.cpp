// Ctrl-C in what is sent to a printer while the device still holds much of it.

#include "TransferFixture.h"
#include "testing/printer/TestPictures.h"

#include <csignal>

namespace {

using qncomm::testing::Arguments;
using qncomm::testing::Program;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

struct Payload {
    const char* name;
    Arguments command;
    const char* file;  ///< follows the command; none when empty
    const char* shown; ///< once it has begun
    const char* said;  ///< when it was cancelled
    Arguments listing; ///< in which nothing of it may stand
};

class InterruptedPayload : public qncomm::testing::TransferFixture,
                           public testing::WithParamInterface<Payload> {
  protected:
    void SetUp() override {
        PrinterOnPty({"--paced", "--baud", "19200"});
        ASSERT_EQ(Carry({"send", "PRINT 7"}).out, "7\n");
        WriteHostFile("SMALL.BIN", Content(9000)); // five seconds, all of them in the device
        WriteHostFile("PICTURE.PCX", qncomm::testing::TestPcx(400, 200, [](int x, int y) {
                          return (x * 7 + y * 13 + x * y) % 5 < 2; // not to be packed
                      }));
        std::string lines;
        std::string macro;
        for (int i = 1; i < 600; ++i) {
            lines += std::to_string(i) + " PRINT \"a line of a module\"\n";
            macro += "A%=1<CR>";
        }
        WriteHostFile("MODULE.PRG", lines);
        ASSERT_EQ(Run({"macros", "set", "F1", "text", macro}).status, 0);
    }
};

TEST_P(InterruptedPayload, LeavesThePrinterAtItsPromptAndThePortFree) {
    Arguments command = GetParam().command;
    if (*GetParam().file != '\0') command.push_back(PathOf(GetParam().file));
    const auto program = Start(OnPort(std::move(command)), Program::Stdio::Terminal);
    ASSERT_TRUE(program->WaitForOut(GetParam().shown)) << program->Out();
    program->Signal(SIGINT);
    EXPECT_EQ(program->Wait(), 130);
    EXPECT_THAT(program->Out(), ContainsRegex(GetParam().said));
    EXPECT_THAT(program->Out(), HasSubstr("Cancelled."));
    const auto next = Carry({"send", "PRINT 7"});
    EXPECT_EQ(next.out, "7\n") << next.err;
    EXPECT_THAT(Carry(GetParam().listing).out, Not(HasSubstr(GetParam().name)));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, InterruptedPayload,
    testing::Values(
        Payload{
            "SMALL", {"fileload"}, "SMALL.BIN", "kB/s", "stays deaf for up to 1", {"files", "c:"}},
        Payload{"PICTURE",
                {"image", "install"},
                "PICTURE.PCX",
                "kB/s",
                "stays deaf for up to [12]",
                {"images"}},
        Payload{"MODULE",
                {"module", "upload"},
                "MODULE.PRG",
                "Transfering Module",
                "",
                {"files", "tmp:"}},
        Payload{"macro", {"key", "F1"}, "", "A%=1", "", {"files", "c:"}}),
    [](const auto& payload) { return payload.param.name; });

class InterruptedLong : public qncomm::testing::TransferFixture {};

TEST_F(InterruptedLong, SaysForHowLongThePrinterStaysDeafAndLeaves) {
    PrinterOnPty({"--paced"});
    ASSERT_EQ(Carry({"send", "PRINT 7"}).out, "7\n");
    WriteHostFile("FONT.TTF", qncomm::testing::TestFont().substr(0, 40'000)); // 46 s
    const auto program = Start(OnPort({"font", "install", PathOf("FONT.TTF"), "--json"}));
    ASSERT_TRUE(program->WaitForOut("\"bytes\":2")) << program->Out();
    program->Signal(SIGINT);
    EXPECT_EQ(program->Wait(), 130);
    EXPECT_THAT(program->Err(),
                ContainsRegex("Cancelled. The printer stays deaf for up to [3-6][0-9] s: it waits "
                              "for the rest of a load."));
}

} // namespace
