// Loads by the command line on a paced pseudo-terminal, and what a run that broke leaves behind.

#include "TransferFixture.h"
#include "testing/printer/TestPictures.h"

#include <csignal>
#include <fstream>

namespace {

using qncomm::testing::Ended;
using testing::ContainsRegex;
using testing::HasSubstr;

class Loads : public qncomm::testing::TransferFixture {
  protected:
    void SetUp() override {
        PrinterOnPty({"--paced", "--baud", "57600"});
        WriteHostFile("LOAD.BIN", Content(30'000)); // about six seconds
        ASSERT_EQ(Carry({"send", "PRINT 7"}).out, "7\n");
    }

    /// Presses Ctrl-C at a terminal once the load has begun, and again when what is shown then asks
    /// for it.
    std::unique_ptr<qncomm::testing::Program> Interrupted() {
        WriteHostFile("BIG.BIN", Content(100'000)); // more than a pseudo-terminal takes at once
        auto program = Start(OnPort({"fileload", PathOf("BIG.BIN")}),
                             qncomm::testing::Program::Stdio::Terminal);
        EXPECT_TRUE(program->WaitForOut("kB/s")) << program->Out();
        program->Signal(SIGINT);
        return program;
    }
};

TEST_F(Loads, CtrlCLeavesThePrinterAtItsPromptAndNoFile) {
    const auto program = Interrupted();
    EXPECT_EQ(program->Wait(), 130);
    EXPECT_THAT(program->Out(), ContainsRegex("The printer stays deaf for up to 1[0-9] s"));
    EXPECT_THAT(program->Out(), HasSubstr("Cancelled."));
    EXPECT_EQ(Carry({"send", "PRINT 7"}).out, "7\n");
    EXPECT_THAT(Carry({"files", "c:"}).out, testing::Not(HasSubstr("BIG.BIN")));
}

TEST_F(Loads, ASecondCtrlCSaysHowLongThePrinterStaysDeaf) {
    const auto program = Interrupted();
    EXPECT_TRUE(program->WaitForOut("stays deaf"));
    program->Signal(SIGINT);
    EXPECT_EQ(program->Wait(), 130);
    EXPECT_THAT(program->Out(),
                ContainsRegex("Cancelled. The printer stays deaf for up to [0-9]+ s: it waits for "
                              "the rest of a load."));
}

TEST_F(Loads, APipeIsToldEachTenthWithRateAndTimeLeft) {
    const Ended ended = Carry({"fileload", PathOf("LOAD.BIN")});
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.err, HasSubstr("Downloading " + PathOf("LOAD.BIN") + "\n"));
    EXPECT_THAT(ended.err, ContainsRegex("\n[5-7]0 %, [0-9.]+ kB/s, 0:0[0-9] left\n"));
}

TEST_F(Loads, ProgramsGetAReadingALineAndTheResult) {
    const Ended ended = Carry({"fileload", PathOf("LOAD.BIN"), "--json"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(
        ended.out,
        ContainsRegex("\"progress\":[0-9]+,\"bytes\":[0-9]+,\"size\":30000,\"rate\":[0-9]+,"));
    EXPECT_THAT(ended.out, HasSubstr("\"done\":true"));
    EXPECT_THAT(ended.out, HasSubstr("\"bytes\":30000"));
}

TEST_F(Loads, ALineThatARunHasLeftUnendedIsNotCarriedOutByTheNext) {
    std::ofstream(Printer()) << "A%=5:" << std::flush;
    EXPECT_EQ(Carry({"send", "PRINT A%"}).out, "0\n");
}

// -- A death in a load

using qncomm::testing::Arguments;

struct Killed {
    const char* name;
    Arguments command; ///< the file follows
    const char* file;
    const char* ending; ///< what the next program says
    Arguments listing;  ///< in which nothing of it may stand
};

class KilledLoad : public qncomm::testing::TransferFixture,
                   public testing::WithParamInterface<Killed> {
  protected:
    void SetUp() override {
        PrinterOnPty({"--paced", "--baud", "115200"});
        ASSERT_EQ(Carry({"send", "PRINT 7"}).out, "7\n");
        WriteHostFile("LITTLE.BIN", Content(16'000)); // less than two seconds
        WriteHostFile("BIG.BIN", Content(100'000));   // more than a pseudo-terminal takes at once
        WriteHostFile("PICTURE.PCX", qncomm::testing::TestPcx(2000, 1000, [](int x, int y) {
                          return (x * 7 + y * 13 + x * y) % 5 < 2; // not to be packed
                      }));
        WriteHostFile("FONT.TTF", qncomm::testing::TestFont());
    }

    /// Ends qnctl by SIGKILL in the middle of the load.
    void Kill() {
        Arguments command = GetParam().command;
        command.push_back(PathOf(GetParam().file));
        command.push_back("--json");
        const auto program = Start(OnPort(std::move(command)));
        EXPECT_TRUE(program->WaitForOut("\"bytes\":1")) << program->Err();
        program->Signal(SIGKILL);
        EXPECT_EQ(program->Wait(), 1000 + SIGKILL);
    }
};

TEST_P(KilledLoad, LeavesAPrinterThatTheNextProgramBringsBack) {
    Kill();
    EXPECT_THAT(SettingsText(), ContainsRegex("\nLoad=[0-9]+\n"));
    const auto next =
        Start(OnPort({"info"}), qncomm::testing::Program::Stdio::Terminal); // which shows it all
    EXPECT_EQ(next->Wait(), 0) << next->Out();
    EXPECT_THAT(next->Out(), HasSubstr("R7G"));
    EXPECT_THAT(next->Out(), ContainsRegex("A load of [0-9]+ bytes was broken off"));
    EXPECT_THAT(next->Out(), HasSubstr(GetParam().ending));
    EXPECT_THAT(next->Out(), testing::Not(HasSubstr("Searching")));
    EXPECT_THAT(SettingsText(), HasSubstr("\nLoad=\n"));
    EXPECT_THAT(Carry(GetParam().listing).out, testing::Not(HasSubstr(GetParam().file)));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, KilledLoad,
    testing::Values(
        Killed{"LittleFile", {"fileload"}, "LITTLE.BIN", "bringing", {"files", "c:"}},
        Killed{"BigFile", {"fileload"}, "BIG.BIN", "stays deaf for up to 1", {"files", "c:"}},
        Killed{"Image", {"image", "install"}, "PICTURE.PCX", "bringing", {"images"}},
        Killed{"Font", {"font", "install"}, "FONT.TTF", "bringing", {"fonts"}}),
    [](const auto& killed) { return killed.param.name; });

} // namespace
