// The commands at a printer that is at work: nothing is typed into it, and the refusal says why.

#include "testing/programs/QnctlFixture.h"

#include <csignal>
#include <stdexcept>

namespace {

using qncomm::testing::Ended;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class AtWork : public qncomm::testing::QnctlFixture {
  protected:
    AtWork() {
        StartSimulator({"--baud", "38400", "--paced"});
        StartTalking();
    }
    Ended Try(qncomm::testing::Arguments arguments) const {
        arguments.insert(arguments.end(), {"--port", Printer()});
        return Run(arguments);
    }
};

TEST_F(AtWork, ACommandIsRefusedWithWhatTheLineSaysAndNothingIsSent) {
    const Ended ended = Try({"info", "--trace", PathOf("trace")});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.out, "");
    EXPECT_THAT(ended.err,
                AllOf(StartsWith("qnctl: Nothing was sent to " + Printer()
                                 + ": a program is running; it says: 42\n"),
                      HasSubstr("qnctl watch --port " + Printer() + " --as 38400,n,8,2 "),
                      HasSubstr("qnctl program stop --port "), HasSubstr("--interrupt"),
                      HasSubstr("--no-listen")));
    EXPECT_THAT(HostFile("trace"), AllOf(HasSubstr("42"), Not(HasSubstr("\"kind\":\"tx\""))));
}

TEST_F(AtWork, TheLineIsReadAtARateThatNobodyKnew) {
    const Ended ended = Try({"info", "--json", "--settings", PathOf("other.ini")});
    EXPECT_EQ(ended.status, 3);
    const auto error = ended.Failure().at("error");
    EXPECT_EQ(error.at("state"), "text");
    EXPECT_EQ(error.at("settings"), "38400,n,8,2");
    EXPECT_THAT(error.at("description"), HasSubstr("it says: 42"));
}

TEST_F(AtWork, InterruptEndsTheProgramFirst) {
    const Ended ended = Try({"send", "PRINT 6*7", "--interrupt", "--quiet"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "42\n");
    EXPECT_EQ(Try({"send", "PRINT 6*7"}).out, "42\n") << "it is at its prompt from then on";
}

TEST_F(AtWork, InterruptEndsTheProgramAtARateThatNobodyKnew) {
    const Ended ended =
        Try({"send", "PRINT 6*7", "--interrupt", "--quiet", "--settings", PathOf("other.ini")});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "42\n");
}

TEST_F(AtWork, ASearchAllTheSameEndsAndSaysWhatItHasHeard) {
    const Ended ended = Try({"info", "--no-listen"});
    EXPECT_EQ(ended.status, 3);
    EXPECT_THAT(ended.err, StartsWith("qnctl: No printer was found on " + Printer()
                                      + ": a program is running; it says: 4"));
}

/// A program that waits for its input says nothing by itself.
class Asking : public qncomm::testing::QnctlFixture {
  protected:
    Asking() {
        StartSimulator();
        const auto typing = Start({"terminal", "--port", Printer()});
        typing->Type("10 INPUT \"Article? \";A$\n20 N%=N%+1:GOTO 10\nRUN\n");
        if (!typing->WaitForOut("RUN\r\nArticle? "))
            throw std::runtime_error("qnctl: " + typing->Err());
        typing->Signal(SIGKILL);
        typing->Wait();
    }
};

TEST_F(Asking, GetsOneLineAndTheCommandIsRefusedWithItsQuestion) {
    const Ended ended = Run({"info", "--port", Printer(), "--json"});
    EXPECT_EQ(ended.status, 3);
    const auto error = ended.Failure().at("error");
    EXPECT_EQ(error.at("state"), "question");
    EXPECT_THAT(error.at("description"),
                StartsWith("Only one line was sent to " + Printer()
                           + ": a program is running; it asks and waits: Article?\n"));
    const Ended count = Run({"send", "PRINT N%;A$", "--port", Printer(), "--interrupt", "--quiet"});
    EXPECT_EQ(count.out, "1)(\n") << count.err;
}

using OtherParity = qncomm::testing::QnctlFixture;

TEST_F(OtherParity, IsFound) {
    const Ended ended = Run({"info", "--port", "sim:R7G?format=e,7,1", "--json"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.Document().at("settings"), "9600,E,7,1");
}

TEST_F(OtherParity, ThatNoSearchTriesIsToldAsWhatItIs) {
    const Ended ended = Run({"info", "--port", "sim:R7G?format=m,7,1"});
    EXPECT_EQ(ended.status, 3);
    EXPECT_THAT(ended.err, StartsWith("qnctl: No printer was found on sim:R7G?format=m,7,1: what "
                                      "answers is no text at any rate and format that was tried"));
}

} // namespace
