// What can be wrong with a line, staged one after the other on each kind of it, and what the doctor
// says. One table: a row is a condition, what stands at the far side, and the verdict.
#include "Stage.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <utility>
#include <vector>

namespace qncomm::testing {
namespace {

/// Bytes of any value, always the same.
std::string RandomBytes(std::size_t count) {
    std::mt19937 random(7); // NOLINT: the same each time
    std::string bytes;
    while (bytes.size() < count)
        bytes += static_cast<char>(random() & 0xFFU);
    return bytes;
}

/// Answers each line that is typed with this.
std::function<std::string(std::string_view)> ToEachLine(const std::string& answer) {
    return [answer](std::string_view bytes) {
        std::string all;
        for (const char byte : bytes)
            if (byte == '\r') all += answer;
        return all;
    };
}

Device Deaf() {
    return {};
}
Device SwitchedOff() {
    Device device;
    device.dsr = false;
    return device;
}
Device LoopBack() {
    return {.answer = [](std::string_view bytes) { return std::string(bytes); }};
}
Device Login() {
    return {.answer = ToEachLine("\r\nhost login: ")};
}
Device Modem() {
    return {.answer = ToEachLine("\r\nERROR\r\n")};
}
Device Prints() {
    return {.talk = "Weight 12.5 kg\r\n", .everyMs = 700};
}
Device AsksAgain() {
    return {.talk = "\r\nArticle? ", .everyMs = 900};
}
Device Noisy() {
    return {.talk = RandomBytes(40), .everyMs = 50};
}
Device NoisyAnswers() {
    return {.answer = ToEachLine(RandomBytes(24))};
}
Device KermitAsks() {
    return {.talk = "\x01#\x20N3\r", .everyMs = 400};
}
Device KermitAsksRarely() {
    return {.answer = ToEachLine(RandomBytes(24)), .talk = "\x01#\x20N3\r", .everyMs = 8000};
}
Device ZModemAsks() {
    return {.talk = "**\x18"
                    "B0100000023be50\r\x8a\x11",
            .everyMs = 400};
}

/// What a printer, or whoever is at the end of the line, may be doing.
std::vector<Condition> PeerConditions() {
    return {
        {"APrinterAtItsPrompt", "healthy", Anywhere, "R7G"},
        {"AnotherRateAndFormat", "healthy", Anywhere, "R7G?baud=57600&format=n,8,1"},
        {"SevenBits", "healthy", WithFormat, "R7G?baud=19200&format=n,7,2"},
        {"MarkParity", "healthy", WithFormat, "R7A?baud=38400&format=m,8,2"},
        {"EvenParity", "healthy", WithFormat, "R7G?baud=9600&format=e,7,1"},
        {"OddParity", "healthy", WithFormat, "R7G?baud=19200&format=o,7,1"},
        {"SpaceParity", "healthy", WithFormat, "R7G?baud=9600&format=s,7,2"},
        {"ASlowPrinter", "healthy", Anywhere, "R7G?answer=40"},
        {"ALongSetup", "healthy", Anywhere, "R7H?long-setup=on"},
        {"NoiseBetweenReplies", "healthy", Anywhere, "R7G?noise=1,seed=3"},
        {"AnotherChannel", "healthy", Anywhere, "R7G?uart=2"},
        {"NoDsr", "healthy", WithFormat, "R7G?dsr=off"},
        {"AProgramThatNeverStopsPrinting", "running", Anywhere, "R7G",
         "10 PRINT 42:GOTO 10\rRUN\r"},
        {"AProgramThatPrintsNowAndThen", "running", Anywhere, "", "", "", Prints},
        {"AProgramAtAnotherRate", "running", WithRate, "R7G?baud=19200",
         "10 PRINT 42:GOTO 10\rRUN\r", "19200,n,8,2"},
        {"AProgramThatWaitsForInput", "asking", Anywhere, "R7G",
         "10 INPUT \"Article\";A$:GOTO 10\rRUN\r"},
        {"AProgramThatWaitsWithoutAQuestion", "asking", Anywhere, "R7G",
         "10 INPUT \"Article\",A$:GOTO 10\rRUN\r"},
        {"AProgramThatAsksAgain", "asking", Anywhere, "", "", "", AsksAgain},
        {"AKermitReceiver", "kermit", Anywhere, "", "", "", KermitAsks},
        {"AKermitReceiverThatIsNoiseToASearch", "kermit", InProcess, "", "", "", KermitAsksRarely},
        {"AZModemReceiver", "zmodem", Anywhere, "", "", "", ZModemAsks},
        {"AZModemReceiverOfThePrinter", "zmodem", Anywhere, "R7G", "TRANSFER Z \"R\"\r"},
        {"AKermitReceiverOfThePrinter", "kermit", Anywhere, "R7G", "TRANSFER K \"R\"\r"},
        {"APrinterThatStarts", "healthy", Anywhere, "R7G?boot-ms=4000", "REBOOT\r"},
        {"ALateRefusal", "healthy", Anywhere, "R7F?late-errors=300"},
        {"AGreetingOfItsOwn", "healthy", Anywhere, "R7C?greeting=At your service."},
        {"APacedLine", "healthy", Anywhere, "R7B?baud=9600&paced=on"},
        {"HalfALineOfAnEarlierHost", "healthy", Anywhere, "R7G", "PRINT \"half"},
        {"ALoadThatBrokeOff", "healthy", Anywhere, "R7G", "FILE& LOAD \"A\",100000\r"},
        {"AnImageThatBrokeOff", "healthy", Anywhere, "R7G", "IMAGE LOAD \"A.1\",90000,\"\"\r"},
        {"ALoadIsNotedAndNothingAnswers", "load", Anywhere, "", "", "", Deaf, "", 5000},
        {"NoiseAllTheTime", "noise", Anywhere, "", "", "", Noisy},
        {"NoiseForAnAnswer", "noise", Anywhere, "", "", "", NoisyAnswers},
        {"ALoopBackPlug", "echo", Anywhere, "", "", "", LoopBack},
        {"ALogin", "other-device", Anywhere, "", "", "", Login},
        {"AModem", "other-device", Anywhere, "", "", "", Modem},
        {"APrinterWithoutEcho", "half", Anywhere, "R7G?no-echo=on"},
        {"NothingThatAnswers", "silent", InProcess | Pty | Tcp, "", "", "", Deaf},
        {"NothingThatAnswersWithDsr", "silent", Remote, "", "", "", Deaf},
    };
}

/// What may become of the line, and who else is on it.
std::vector<Condition> LineConditions() {
    return {
        {"SwitchedOff", "switched-off", WithFormat, "", "", "", SwitchedOff},
        {"CutBehindTheFirstAnswer", "lost", Pty | Sockets, "R7G?cut=150"},
        {"CutAtOnce", "lost", Pty | Sockets, "R7G?cut=1"},
        {"AnotherProgramHasTheLock", "busy", Pty, "", "", "", Deaf, "", 0,
         [](int fd) { return ::flock(fd, LOCK_EX | LOCK_NB) == 0; }},
        {"AnotherProgramReadsAlong", "shared", Pty, "", "", "", Deaf, "", 0,
         [](int fd) { return fd >= 0; }},
        {"AnotherProgramReadsAlongAndThePrinterAnswers", "healthy", Pty, "R7G", "", "", nullptr, "",
         0, [](int fd) { return fd >= 0; }},
        {"APlainSocket", "not-rfc2217", Remote, "", "", "", nullptr, "plain"},
        {"NoSuchDevice", "missing", Pty, "", "", "", nullptr, "/dev/ttyUSB77"},
        {"NoSerialDevice", "not-serial", Pty, "", "", "", nullptr, "/dev/null"},
        {"NobodyListens", "unreachable", Tcp, "", "", "", nullptr, "tcp://127.0.0.1:1"},
        {"NobodyListensThere", "unreachable", Remote, "", "", "", nullptr, "rfc2217://127.0.0.1:1"},
        {"NoSuchHost", "no-host", Tcp, "", "", "", nullptr, "tcp://no-such-host.invalid:4000"},
        {"NoSuchHostThere", "no-host", Remote, "", "", "", nullptr,
         "rfc2217://no-such-host.invalid:4000"},
    };
}

const std::vector<Condition>& Conditions() {
    static const std::vector<Condition> all = [] {
        std::vector<Condition> both = PeerConditions();
        std::vector<Condition> line = LineConditions();
        for (Condition& condition : line)
            both.push_back(std::move(condition));
        return both;
    }();
    return all;
}

struct Named {
    Kind kind;
    const char* line;
    const Condition* condition;
};

std::vector<Named> All() {
    std::vector<Named> all;
    for (const auto& [kind, line] :
         {std::pair{InProcess, "InProcess"}, {Pty, "Pty"}, {Tcp, "Tcp"}, {Remote, "Rfc2217"}})
        for (const Condition& condition : Conditions())
            if ((condition.kinds & kind) != 0) all.push_back({kind, line, &condition});
    return all;
}

class StagedConditions : public ::testing::TestWithParam<Named> {};

TEST_P(StagedConditions, AreNamedRight) {
    const Named& named = GetParam();
    Stage stage(named.kind, *named.condition);
    const Examined examined = stage.Look();
    EXPECT_EQ(VerdictOf(examined).name, named.condition->verdict) << Told(examined);
}

INSTANTIATE_TEST_SUITE_P(Lines, StagedConditions, ::testing::ValuesIn(All()), [](const auto& each) {
    return std::string(each.param.line) + "_" + each.param.condition->name;
});

class NotedLoads : public ::testing::TestWithParam<Kind> {};

TEST_P(NotedLoads, AreWaitedForSoThatTheSearchBecomesNoPartOfThem) {
    const Condition condition{"Load",       "healthy", Anywhere, "R7G", "FILE& LOAD \"A\",200\r",
                              "9600,n,8,2", nullptr,   "",       200};
    const Examined examined = Stage(GetParam(), condition).Look();
    EXPECT_EQ(VerdictOf(examined).name, "healthy") << Told(examined);
    EXPECT_TRUE(examined.line->loadGivenUp);
    EXPECT_NE(Told(examined).find("load warning: A load of 200 bytes broke off here"),
              std::string::npos)
        << Told(examined);
}

INSTANTIATE_TEST_SUITE_P(Lines, NotedLoads, ::testing::Values(InProcess, Pty, Tcp, Remote));

/// What an earlier host has left running, at the settings that are known.
std::vector<Named> Fixable() {
    std::vector<Named> all = All();
    std::erase_if(all, [](const Named& each) {
        const std::string_view verdict = each.condition->verdict;
        return *each.condition->typed == '\0' || verdict == "healthy"
               || std::string_view(each.condition->as) != "9600,n,8,2";
    });
    return all;
}

class FixableConditions : public ::testing::TestWithParam<Named> {};

TEST_P(FixableConditions, AreCuredByTheOneFixThatThereIs) {
    const Named& named = GetParam();
    const Examined fixed = Stage(named.kind, *named.condition).LookAndFix();
    EXPECT_EQ(VerdictOf(fixed).name, "healthy") << Told(fixed);
}

INSTANTIATE_TEST_SUITE_P(Lines, FixableConditions, ::testing::ValuesIn(Fixable()),
                         [](const auto& each) {
                             return std::string(each.param.line) + "_" + each.param.condition->name;
                         });

} // namespace
} // namespace qncomm::testing
