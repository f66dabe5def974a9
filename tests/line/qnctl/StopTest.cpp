#include "testing/programs/QnctlFixture.h"

#include <csignal>

namespace {

using qncomm::testing::Ended;
using testing::HasSubstr;
using testing::Not;

/// A printer whose program runs and whose host has gone.
class Stopping : public qncomm::testing::QnctlFixture {
  protected:
    void Running(const std::string& program, const std::string& shows) {
        StartSimulator();
        const auto typing = Start({"terminal", "--port", Printer()});
        typing->Type(program + "\nRUN\n");
        EXPECT_TRUE(typing->WaitForOut(shows)) << typing->Out() << typing->Err();
        typing->Signal(SIGKILL);
        typing->Wait();
    }

    Ended Stop() const {
        return Run({"program", "stop", "--port", Printer(), "--trace", PathOf("trace")});
    }

    std::string Answer(const std::string& command) const {
        return Run({"send", command, "--port", Printer(), "--quiet"}).out;
    }
};

TEST_F(Stopping, AProgramThatPrintsWithoutEnd) {
    Running("10 PRINT 42:GOTO 10", "42\r\n42\r\n");
    const Ended ended = Stop();
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "The program was stopped by Ctrl-C; the printer is at its prompt.\n");
    EXPECT_EQ(Answer("PRINT 5*5"), "25\n");
}

TEST_F(Stopping, AProgramThatAsksTakesNoInputOfOurs) {
    Running("10 A$=\"none\"\n20 INPUT \"Article\";A$\n30 PRINT \"GOT \";A$", "RUN\r\nArticle");
    EXPECT_EQ(Stop().status, 0);
    const std::string trace = HostFile("trace");
    EXPECT_LT(trace.find(R"("tx","bytes":"\u0003")"), trace.find("Break in line 20")) << trace;
    EXPECT_LT(trace.find("Break in line 20"), trace.find("IMMEDIATE ON")) << trace;
    EXPECT_THAT(trace, Not(HasSubstr("GOT")));
}

TEST_F(Stopping, APrinterAtItsPromptIsToldAsSuch) {
    StartSimulator();
    const Ended ended =
        Run({"program", "stop", "--port", Printer(), "--json", "--as", "9600,n,8,2"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "{\"running\":false,\"stoppedBy\":null,\"prompt\":true}\n");
}

TEST_F(Stopping, APrinterThatDoesNotComeBackIsStatus3) {
    StartSimulator();
    const Ended ended = Run({"program", "stop", "--port", Printer(), "--as", "57600,n,8,2"});
    EXPECT_EQ(ended.status, 3);
    EXPECT_THAT(ended.err, HasSubstr("did not come back to its prompt"));
}

TEST_F(Stopping, APortThatDoesNotOpenIsStatus4AndWrongSettingsAre2) {
    EXPECT_EQ(Run({"program", "stop", "--port", "/dev/ttyNOT0"}).status, 4);
    EXPECT_EQ(Run({"program", "stop", "--port", Printer(), "--as", "fast"}).status, 2);
}

} // namespace
