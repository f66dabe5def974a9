#include "TransferFixture.h"

#include <gmock/gmock.h>

#include <string>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// A program whose output goes nowhere: a full disk, a reader that has left.
class OutputEnds : public TransferFixture {
  protected:
    OutputEnds() { PrinterInProcess(); }
};

TEST_F(OutputEnds, InTheFullDeviceAreStatus1AndAWord) {
    for (const Arguments& command : {Arguments{"ports"},
                                     {"files", "c:"},
                                     {"files", "c:", "--json"},
                                     {"info"},
                                     {"--version"},
                                     {"--help"},
                                     {"send", "PRINT 1"}}) {
        const Ended ended = RunInto("> /dev/full", command);
        EXPECT_EQ(ended.status, 1) << ::testing::PrintToString(command);
        EXPECT_THAT(ended.err, HasSubstr("Standard output: no space left on device"))
            << ::testing::PrintToString(command);
    }
}

TEST_F(OutputEnds, OfATraceInTheFullDeviceAreStatus1AndAWord) {
    const Ended ended = Carry({"info", "--trace", "/dev/full"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.err, HasSubstr("--trace /dev/full: no space left on device"));
    EXPECT_THAT(ended.out, HasSubstr("R7G")) << "the command itself was carried out";
}

TEST_F(OutputEnds, WithTheirReaderCancelATransferAndLeaveNothing) {
    PrinterOnPty();
    WriteHostFile("data", Content(60'000));
    ASSERT_EQ(Carry({"kermit", "send", PathOf("data"), "c:DATA.BIN"}).status, 0);
    MakeFolder("in");
    // No reading of the progress: the first one that is written finds nobody.
    const Ended ended =
        RunInto("| true", {"kermit", "receive", "c:DATA.BIN", PathOf("in/data"), "--json"});
    EXPECT_EQ(ended.status, 1) << ended.err;
    EXPECT_THAT(ended.err, IsEmpty()) << "who left knows it";
    EXPECT_TRUE(FolderIsEmpty("in"));
    EXPECT_EQ(Carry({"send", "PRINT 7"}).out, "7\n") << "the printer is at its prompt";
}

TEST_F(OutputEnds, WithTheirReaderEndATerminal) {
    PrinterOnPty();
    // The input stays open: only the output tells that nobody is there any more.
    const auto terminal =
        Start(OnPort({"terminal"}), Program::Stdio::Pipes,
              {"bash", "-c", "\"$@\" | head -c 1; exit ${PIPESTATUS[0]}", "bash"});
    for (int n = 0; n < 3; ++n)
        terminal->Type("PRINT 1\n");
    EXPECT_EQ(terminal->Wait(), 1);
    EXPECT_THAT(terminal->Err(), Not(HasSubstr("qnctl:")));
}

TEST_F(OutputEnds, OfAFileThatMayNotGrowAreAWordAndNotASignal) {
    PrinterOnPty();
    const Ended traced = RunLimited(0, {"info", "--trace", PathOf("trace")});
    EXPECT_EQ(traced.status, 1);
    EXPECT_THAT(traced.err, HasSubstr("file too large"));
    EXPECT_THAT(HostFile("trace"), IsEmpty());
}

TEST_F(OutputEnds, OfAVirtualPrintersStateAreToldWhenThePortOpens) {
    SetPort("sim:R7G?state=/proc/none");
    const Ended ended = Carry({"info"});
    EXPECT_EQ(ended.status, 4);
    EXPECT_THAT(ended.err, HasSubstr("the state cannot be kept in /proc/none"));
}

} // namespace
} // namespace qncomm::testing
