// Ctrl-C and SIGTERM against a far side that would keep the program for ever. That it ends in time
// is the watchdog's to say; the time itself is only recorded: scripts/cancel-times shows it.

#include "TransferFixture.h"
#include "platform/FdWait.h"
#include "testing/line/FloodingServer.h"
#include "testing/line/TurningLine.h"

#include <csignal>
#include <optional>

namespace {

using qncomm::testing::Arguments;
using qncomm::testing::FarEnd;
using qncomm::testing::FloodingServer;
using qncomm::testing::Program;
using qncomm::testing::TurningLine;
using testing::HasSubstr;

constexpr int WatchdogMs = 12'000;
constexpr int Cancelled = 130;

/// What a program may use of memory when nothing watches over its own: the sanitizers need more
/// than there is.
Arguments Limited() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return {};
#else
    return {"bash", "-c", "ulimit -v 131072; exec \"$@\"", "bash"};
#endif
}

class Cancel : public qncomm::testing::TransferFixture {
  protected:
    /// Sends the signal and waits for the program's end; its status.
    static int EndBy(int signal, Program& program) {
        const std::int64_t sent = qncomm::MonotonicUs();
        program.Signal(signal);
        const int status = program.Wait(WatchdogMs);
        const auto ms = (qncomm::MonotonicUs() - sent) / 1000;
        RecordProperty("msToTheEnd", std::to_string(ms));
        RecordProperty("peakKb", std::to_string(program.PeakKb()));
        return status;
    }
};

// -- A server that keeps an opening waiting

struct Server {
    const char* name;
    const char* says;
    int signal;
};

class CancelConnecting : public Cancel, public testing::WithParamInterface<Server> {};

TEST_P(CancelConnecting, EndsTheProgram) {
    FloodingServer server(GetParam().says);
    const auto program = Start({"info", "--port", "rfc2217://127.0.0.1:" + server.Service()},
                               Program::Stdio::Pipes, Limited());
    server.AwaitGuest();
    EXPECT_EQ(EndBy(GetParam().signal, *program), Cancelled) << program->Err();
    EXPECT_EQ(program->Err(), "qnctl: Cancelled.\n");
}

INSTANTIATE_TEST_SUITE_P(
    By, CancelConnecting,
    testing::Values(Server{"DataInt", "PRICES\r\n", SIGINT},
                    Server{"DataTerm", "PRICES\r\n", SIGTERM},
                    Server{"NoOperationsInt", "\xff\xf1", SIGINT},
                    Server{"NoOperationsTerm", "\xff\xf1", SIGTERM},
                    Server{"SubnegotiationsInt", "\xff\xfa\x2c\x6b\x20\xff\xf0", SIGINT},
                    Server{"SubnegotiationsTerm", "\xff\xfa\x2c\x6b\x20\xff\xf0", SIGTERM},
                    Server{"SilenceInt", "", SIGINT}, Server{"SilenceTerm", "", SIGTERM},
                    Server{"SilenceHangUp", "", SIGHUP}),
    [](const auto& server) { return server.param.name; });

// -- A line that turns bad in the middle

struct Turn {
    const char* name;
    Arguments command;
    const char* file;  ///< follows the command; none when empty
    const char* shown; ///< once it has begun
    FarEnd end;
    int everyMs; ///< between two lines of who talks
    int signal;
};

class CancelOnBadLine : public Cancel, public testing::WithParamInterface<Turn> {
  protected:
    void SetUp() override {
        PrinterOnTcp({"--paced"});
        mLine.emplace(Address());
        SetPort(mLine->Path());
        ASSERT_EQ(Carry({"send", "PRINT 7"}).out, "7\n");
        WriteHostFile("LOAD.BIN", Content(60'000));
        std::string lines;
        for (int i = 1; i < 2000; ++i)
            lines += std::to_string(i) + " PRINT \"a line of a module\"\n";
        WriteHostFile("MODULE.PRG", lines);
    }

    std::unique_ptr<Program> Begun() {
        Arguments command = GetParam().command;
        if (*GetParam().file != '\0')
            command.insert(command.begin() + (command.size() > 1 ? 2 : 1), PathOf(GetParam().file));
        auto program = Start(OnPort(command), Program::Stdio::Terminal, Limited());
        EXPECT_TRUE(program->WaitForOut(GetParam().shown)) << program->Out();
        return program;
    }

    std::optional<TurningLine> mLine;
};

TEST_P(CancelOnBadLine, EndsTheProgram) {
    const auto program = Begun();
    mLine->Become(GetParam().end, GetParam().everyMs);
    EXPECT_EQ(EndBy(GetParam().signal, *program), Cancelled);
    EXPECT_THAT(program->Out(), HasSubstr("Cancelled."));
}

const Arguments KermitSend{"kermit", "send", "tmp:LOAD.BIN"};
const Arguments ModuleUpload{"module", "upload"};
const Arguments BinaryByZModem{"binary", "receive", "--protocol", "zmodem"};
const Arguments BinaryByKermit{"binary", "send", "--protocol", "kermit"};

INSTANTIATE_TEST_SUITE_P(
    By, CancelOnBadLine,
    testing::Values(
        Turn{"KermitTalking", KermitSend, "LOAD.BIN", "B/s", FarEnd::Talking, 1000, SIGINT},
        Turn{"KermitDeaf", KermitSend, "LOAD.BIN", "B/s", FarEnd::Deaf, 0, SIGTERM},
        Turn{"KermitSilent", KermitSend, "LOAD.BIN", "B/s", FarEnd::Silent, 0, SIGINT},
        Turn{"KermitFlood", KermitSend, "LOAD.BIN", "B/s", FarEnd::Talking, 0, SIGINT},
        Turn{"BinaryTalking", BinaryByZModem, "got", "Waiting", FarEnd::Talking, 20, SIGTERM},
        Turn{"BinaryFlood", BinaryByKermit, "LOAD.BIN", "Waiting", FarEnd::Talking, 0, SIGINT},
        Turn{"ModuleDeaf", ModuleUpload, "MODULE.PRG", "Transfering", FarEnd::Deaf, 0, SIGINT},
        Turn{"ModuleSilent", ModuleUpload, "MODULE.PRG", "Transfering", FarEnd::Silent, 0, SIGTERM},
        Turn{"FileTalking", {"fileload"}, "LOAD.BIN", "B/s", FarEnd::Talking, 20, SIGINT},
        Turn{"FileDeaf", {"fileload"}, "LOAD.BIN", "B/s", FarEnd::Deaf, 0, SIGTERM},
        Turn{"TerminalDeaf", {"terminal"}, "", "Ctrl-]", FarEnd::Deaf, 0, SIGTERM},
        Turn{"TerminalFlood", {"terminal"}, "", "Ctrl-]", FarEnd::Talking, 0, SIGHUP}),
    [](const auto& turn) { return turn.param.name; });

class CancelTwice : public CancelOnBadLine {};

TEST_P(CancelTwice, DoesNotWaitForThePromptThatTheFirstWaitsFor) {
    const auto program = Begun();
    mLine->Become(GetParam().end, GetParam().everyMs);
    program->Signal(SIGINT);
    ASSERT_TRUE(program->WaitForOut("Waiting for the printer's prompt, for up to "))
        << program->Out();
    EXPECT_EQ(EndBy(GetParam().signal, *program), Cancelled);
    EXPECT_THAT(program->Out(), HasSubstr("Cancelled."));
}

INSTANTIATE_TEST_SUITE_P(By, CancelTwice,
                         testing::Values(Turn{"Kermit", KermitSend, "LOAD.BIN", "B/s",
                                              FarEnd::Talking, 20, SIGINT},
                                         Turn{"Module", ModuleUpload, "MODULE.PRG", "Transfering",
                                              FarEnd::Talking, 20, SIGTERM}),
                         [](const auto& turn) { return turn.param.name; });

} // namespace
