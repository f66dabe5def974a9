#include "testing/line/PtyPair.h"
#include "testing/programs/QnctlFixture.h"

#include <array>
#include <csignal>
#include <sstream>

#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

using nlohmann::json;
using qncomm::testing::Arguments;
using qncomm::testing::Ended;
using qncomm::testing::Program;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// A printer that says what the test wants, on a pseudo-terminal, and hears what is sent to it.
class Watching : public qncomm::testing::QnctlFixture {
  protected:
    /// Starts the command on the printer's line and waits until it listens.
    std::unique_ptr<Program> Watch(const Arguments& options) {
        Arguments arguments{"watch", "--port", mLine.path};
        arguments.insert(arguments.end(), options.begin(), options.end());
        auto program = Start(arguments);
        EXPECT_TRUE(program->WaitForOut("open ")) << program->Err();
        return program;
    }

    void Say(std::string_view text) const {
        EXPECT_EQ(::write(mLine.master.Get(), text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
    }

    /// What was sent to the printer.
    std::string Heard() const {
        std::array<char, 256> bytes{};
        const ssize_t count = ::read(mLine.master.Get(), bytes.data(), bytes.size());
        return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : "";
    }

    qncomm::testing::PtyPair mLine = qncomm::testing::OpenPty();
};

TEST_F(Watching, ShowsWhatComesWithItsTimeAndSendsNothing) {
    const auto program = Watch({"--until", "READY"});
    Say("42\r\nGr\xF6\xDF"
        "e\x11\r\nREADY\r\n");
    EXPECT_EQ(program->Wait(), 0) << program->Err();
    EXPECT_THAT(program->Out(), ContainsRegex(R"( +0\.[0-9]{3}  \*  open COM[0-9]+ \(/dev/pts/)"));
    EXPECT_THAT(program->Out(), ContainsRegex(R"( +[0-9]+\.[0-9]{3}  <  42<CR><LF>)"));
    EXPECT_THAT(program->Out(), HasSubstr("  <  Größe<DC1><CR><LF>\n"));
    EXPECT_EQ(Heard(), "");
    EXPECT_EQ(program->Err(), "");
}

TEST_F(Watching, ListensAtTheGivenSettings) {
    const auto program = Watch({"--as", "57600,n,8,2", "--until", "x"});
    termios line{};
    EXPECT_EQ(::tcgetattr(mLine.master.Get(), &line), 0);
    EXPECT_EQ(::cfgetispeed(&line), static_cast<speed_t>(B57600));
    EXPECT_NE(line.c_cflag & CSTOPB, 0U);
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF), 0U);
    Say("x");
    EXPECT_EQ(program->Wait(), 0);
    EXPECT_THAT(program->Out(), HasSubstr("57600,"));
}

TEST_F(Watching, ListensAtTheConfiguredSettingsWithoutFlowControl) {
    ASSERT_EQ(::mkdir(PathOf("qncomm").c_str(), 0700), 0);
    WriteHostFile("qncomm/settings.ini", "[Ports]\nCOM3=" + mLine.path
                                             + "\n[Settings]\nCommport=3\nBaudrate=19200\n"
                                               "Parity=NONE\nDatabits=8\nStopbits=2\n"
                                               "FlowControl=1\n");
    const auto program = Start({"watch", "--until", "x"});
    EXPECT_TRUE(program->WaitForOut("open COM3 (" + mLine.path + ") 19200,N,8,2\n"))
        << program->Out() << program->Err();
    Say("x");
    EXPECT_EQ(program->Wait(), 0);
}

TEST_F(Watching, TextThatComesInPiecesIsSeen) {
    const auto program = Watch({"--until", "READY"});
    Say("RE");
    EXPECT_TRUE(program->WaitForOut("<  RE\n")); // shown once the line has been quiet
    Say("ADY");
    EXPECT_EQ(program->Wait(), 0);
}

TEST_F(Watching, EndsWith3WhenTheTextDoesNotCome) {
    const Ended ended =
        Run({"watch", "--port", mLine.path, "--for", "20", "--until", "READY", "--quiet"});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.err, "qnctl: \"READY\" did not come within 20 ms.\n");
    EXPECT_EQ(Run({"watch", "--port", mLine.path, "--for", "20"}).status, 0);
}

TEST_F(Watching, CtrlCEndsIt) {
    const auto program = Watch({});
    Say("half a line");
    EXPECT_TRUE(program->WaitForOut("half a line"));
    program->Signal(SIGINT);
    EXPECT_EQ(program->Wait(), 130);
}

TEST_F(Watching, ALostDeviceIsARowAndStatus4) {
    const auto program = Watch({});
    mLine.master.Reset();
    EXPECT_EQ(program->Wait(), 4);
    EXPECT_THAT(program->Out(), ContainsRegex(R"(  \*  lost: Port COM)"));
}

TEST_F(Watching, APortThatDoesNotOpenIsTheErrorAlone) {
    const Ended ended = Run({"watch", "--port", "/dev/ttyNOT0"});
    EXPECT_EQ(ended.status, 4);
    EXPECT_EQ(ended.out, "");
    EXPECT_THAT(ended.err, HasSubstr("there is no such device"));
}

TEST_F(Watching, SettingsThatAreNoneAreWrongUsage) {
    const Ended ended = Run({"watch", "--port", mLine.path, "--as", "fast"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.err, HasSubstr("--as fast"));
}

TEST_F(Watching, HexShowsTheBytes) {
    const auto program = Watch({"--hex", "--until", "Ok\r\n"});
    Say("Ok\r\n");
    EXPECT_EQ(program->Wait(), 0);
    EXPECT_THAT(program->Out(), ContainsRegex("  <  4F 6B 0D 0A +Ok\\.\\."));
}

TEST_F(Watching, JsonIsALineForEachEventAsATraceHasIt) {
    const auto program = Watch({"--json", "--until", "Ok\r\n", "--trace", PathOf("trace")});
    Say("Ok\r\n");
    EXPECT_EQ(program->Wait(), 0);
    std::istringstream lines(program->Out());
    std::string received;
    for (std::string line; std::getline(lines, line);) {
        const json record = json::parse(line);
        EXPECT_GE(record.at("ms").get<int>(), 0);
        if (record.at("kind") == "rx") received += record.at("bytes").get<std::string>();
    }
    EXPECT_EQ(received, "Ok\r\n");
    EXPECT_THAT(HostFile("trace"), HasSubstr(R"("kind":"rx")"));
    EXPECT_THAT(HostFile("trace"), Not(HasSubstr(R"("kind":"tx")")));
}

TEST_F(Watching, APrinterThatNeverStopsTalkingIsShownAndLeftAlone) {
    StartSimulator();
    StartTalking();
    const Ended ended = Run({"watch", "--port", Printer(), "--for", "1000"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr("<  42<CR><LF>\n"));
    // The program still runs: nothing was typed into it.
    EXPECT_EQ(Run({"watch", "--port", Printer(), "--for", "5000", "--until", "42\r\n42"}).status,
              0);
}

} // namespace
