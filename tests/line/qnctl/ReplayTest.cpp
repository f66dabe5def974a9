// Sessions recorded with the command line and played back by the virtual printer's program.
#include "testing/programs/QnctlFixture.h"

#include <csignal>

namespace {

using qncomm::testing::Arguments;
using qncomm::testing::Ended;
using testing::HasSubstr;
using testing::IsEmpty;

class Replay : public qncomm::testing::QnctlFixture {
  protected:
    /// A run with fresh settings, since a search remembers what it found.
    Ended RunFresh(Arguments arguments) {
        const std::string settings = PathOf("settings-" + std::to_string(++mRuns));
        for (const std::string& word : {std::string("--settings"), settings, std::string("--port"),
                                        Printer(), std::string("--quiet")})
            arguments.push_back(word);
        return Run(arguments);
    }

  private:
    int mRuns = 0;
};

TEST_F(Replay, AnswersLikeTheRecordedPrinterWithAndWithoutItsDelays) {
    StartSimulator({"--model", "R7A", "--baud", "19200"});
    const Ended recorded = RunFresh({"files", "ram:", "--trace", PathOf("trace")});
    ASSERT_EQ(recorded.status, 0) << recorded.err;
    EXPECT_THAT(recorded.out, HasSubstr("STARTUP.PRG"));
    for (const bool delays : {false, true}) {
        Arguments options{"--replay", PathOf("trace")};
        if (delays) options.emplace_back("--replay-delays");
        StartSimulator(options);
        const Ended replayed = RunFresh({"files", "ram:"});
        EXPECT_EQ(replayed.status, 0) << replayed.err;
        EXPECT_EQ(replayed.out, recorded.out);
        EXPECT_EQ(Simulator().Wait(), 0) << Simulator().Err();
        EXPECT_THAT(Simulator().Err(), IsEmpty());
    }
}

TEST_F(Replay, NamesThePlaceWhereTheHostDoesOtherwise) {
    StartSimulator({"--model", "R7A"});
    ASSERT_EQ(RunFresh({"send", "PRINT 11", "--trace", PathOf("trace")}).status, 0);
    StartSimulator({"--replay", PathOf("trace")});
    EXPECT_NE(RunFresh({"send", "PRINT 12"}).status, 0);
    EXPECT_EQ(Simulator().Wait(), 1);
    EXPECT_THAT(Simulator().Err(), HasSubstr("byte 8: expected \"1\\r\\n\", got \"2\\r\\n\""));
}

TEST_F(Replay, TellsWhatTheHostLeftOut) {
    StartSimulator({"--model", "R7A"});
    ASSERT_EQ(RunFresh({"send", "PRINT 11", "--trace", PathOf("trace")}).status, 0);
    StartSimulator({"--replay", PathOf("trace")});
    Simulator().Signal(SIGTERM);
    EXPECT_EQ(Simulator().Wait(), 1);
    EXPECT_THAT(Simulator().Err(), HasSubstr("got nothing more"));
}

TEST_F(Replay, LineThatWasLostIsCutAgain) {
    StartSimulator({"--model", "R7A", "--fault", "cut=300"});
    const Ended recorded = RunFresh({"files", "ram:", "--trace", PathOf("trace")});
    EXPECT_NE(recorded.status, 0);
    ASSERT_THAT(HostFile("trace"), HasSubstr("\"event\",\"bytes\":\"lost: "));
    for (const bool tcp : {false, true}) {
        Arguments options{"--replay", PathOf("trace")};
        if (tcp) options.insert(options.end(), {"--tcp", "0"});
        StartSimulator(options);
        std::string address = Simulator().Out();
        address.erase(address.find('\n'));
        const Ended replayed = Run({"files", "ram:", "--settings", PathOf(tcp ? "tcp" : "pty"),
                                    "--port", address, "--trace", PathOf("again"), "--quiet"});
        EXPECT_EQ(replayed.status, recorded.status) << replayed.err;
        EXPECT_THAT(HostFile("again"), HasSubstr("\"event\",\"bytes\":\"lost: "));
        EXPECT_EQ(Simulator().Wait(), 0) << Simulator().Err();
    }
}

TEST_F(Replay, FileThatIsNoTraceIsRefused) {
    WriteHostFile("text", "no trace\n\n");
    EXPECT_THROW(StartSimulator({"--replay", PathOf("text")}), std::runtime_error);
}

TEST_F(Replay, RedactedTraceLacksTheFileAndStillPlays) {
    StartSimulator({"--model", "R7G"});
    WriteHostFile("DATA.BIN", "the secret of the file");
    const Ended recorded =
        RunFresh({"fileload", PathOf("DATA.BIN"), "--trace", PathOf("trace"), "--yes"});
    ASSERT_EQ(recorded.status, 0) << recorded.err;
    ASSERT_THAT(HostFile("trace"), HasSubstr("the secret of the file"));
    EXPECT_EQ(Run({"trace", "redact", PathOf("trace"), PathOf("redacted")}).status, 0);
    EXPECT_THAT(HostFile("redacted"), testing::Not(HasSubstr("secret")));
    EXPECT_THAT(HostFile("redacted"), HasSubstr("\"redacted\":22"));
    StartSimulator({"--replay", PathOf("redacted")});
    const Ended replayed = RunFresh({"fileload", PathOf("DATA.BIN"), "--yes"});
    EXPECT_EQ(replayed.status, 0) << replayed.err;
    EXPECT_EQ(Simulator().Wait(), 0) << Simulator().Err();
    EXPECT_EQ(Run({"trace", "redact", PathOf("none"), PathOf("out")}).status, 1);
}

} // namespace
