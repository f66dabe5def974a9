// Files between the system's programs and other people's, on real pseudo-terminals.
#include "TransferFixture.h"
#include "testing/line/LinePeer.h"
#include "testing/line/PtyPair.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

using qncomm::testing::Arguments;
using qncomm::testing::Ended;
using qncomm::testing::LinePeer;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::size_t PeerFileSize = 60'000;

/// What has come on the line when there are so many bytes of it, or when nothing comes any more.
std::string Heard(int line, std::size_t count) {
    constexpr int patienceMs = 20'000;
    std::string bytes;
    std::array<char, 256> part{};
    pollfd wait{line, POLLIN, 0};
    while (bytes.size() < count && ::poll(&wait, 1, patienceMs) > 0) {
        const ssize_t got = ::read(line, part.data(), part.size());
        if (got <= 0) break;
        bytes.append(part.data(), static_cast<std::size_t>(got));
    }
    return bytes;
}

/// The command line at one end of a line, another program at the other.
class BinaryPeers : public qncomm::testing::TransferFixture {
  protected:
    BinaryPeers() {
        SetPort(mPty.path);
        MakeFolder("peer");
        WriteHostFile("data.bin", mContent);
        WriteHostFile("peer/remote.bin", mContent);
    }

    bool Meet(const Arguments& command) {
        mPeer = LinePeer::Start(mPty.master.Get(), PathOf("peer"), command);
        return mPeer != nullptr;
    }
    Ended Send(const std::string& protocol) {
        return Carry({"binary", "send", PathOf("data.bin"), "--protocol", protocol});
    }
    Arguments Receive(const std::string& protocol) const {
        return {"binary", "receive", PathOf("back.bin"), "--protocol", protocol};
    }
    /// The first bytes that a command puts on a line where nobody answers.
    std::string FirstBytesOf(const Arguments& arguments, std::size_t count) {
        mPty = qncomm::testing::OpenPty(); // with nothing left on it
        SetPort(mPty.path);
        const auto program = Start(OnPort(arguments));
        const std::string first = Heard(mPty.master.Get(), count);
        program->Signal(SIGINT);
        EXPECT_EQ(program->Wait(), 130) << program->Err();
        return first;
    }

    const std::string mContent = Content(PeerFileSize);
    qncomm::testing::PtyPair mPty = qncomm::testing::OpenPty();
    std::unique_ptr<LinePeer> mPeer;
};

TEST_F(BinaryPeers, RzTakesAFile) {
    if (!Meet({"rz", "-b", "-q"})) return;
    const Ended sent = Send("zmodem");
    EXPECT_EQ(sent.status, 0) << sent.err;
    EXPECT_EQ(mPeer->Wait(), 0);
    EXPECT_TRUE(HostFile("peer/data.bin") == mContent);
}

TEST_F(BinaryPeers, RzThatHasTheFileKeepsItAndSaysSo) {
    WriteHostFile("peer/data.bin", "what stood here before");
    if (!Meet({"rz", "-b", "-q"})) return;
    const Ended sent = Send("zmodem");
    EXPECT_EQ(sent.status, 1);
    EXPECT_THAT(sent.err, HasSubstr("(the receiver did not want the file)"));
    EXPECT_EQ(HostFile("peer/data.bin"), "what stood here before");
}

TEST_F(BinaryPeers, SzGivesAFile) {
    if (!Meet({"sz", "-b", "-q", "remote.bin"})) return;
    const Ended received = Carry(Receive("zmodem"));
    EXPECT_EQ(received.status, 0) << received.err;
    EXPECT_EQ(mPeer->Wait(), 0);
    EXPECT_TRUE(HostFile("back.bin") == mContent);
}

TEST_F(BinaryPeers, GkermitTakesAFile) {
    if (!Meet({"gkermit", "-riq"})) return;
    const Ended sent = Send("kermit");
    EXPECT_EQ(sent.status, 0) << sent.err;
    EXPECT_EQ(mPeer->Wait(), 0);
    EXPECT_TRUE(HostFile("peer/data.bin") + HostFile("peer/DATA.BIN") == mContent);
}

TEST_F(BinaryPeers, GkermitGivesAFile) {
    if (!Meet({"gkermit", "-iqs", "remote.bin"})) return;
    const Ended received = Carry(Receive("kermit"));
    EXPECT_EQ(received.status, 0) << received.err;
    EXPECT_EQ(mPeer->Wait(), 0);
    EXPECT_TRUE(HostFile("back.bin") == mContent);
}

TEST_F(BinaryPeers, ResumeCarriesOnlyWhatIsMissing) {
    WriteHostFile("back.bin.part", mContent.substr(0, 50'000));
    if (!Meet({"sz", "-b", "-q", "remote.bin"})) return;
    Arguments receive = Receive("zmodem");
    for (const std::string& word : {std::string("--resume"), std::string("--trace"), PathOf("t")})
        receive.push_back(word);
    const Ended received = Carry(receive);
    EXPECT_EQ(received.status, 0) << received.err;
    EXPECT_TRUE(HostFile("back.bin") == mContent);
    EXPECT_FALSE(HasHostFile("back.bin.part"));
    EXPECT_THAT(HostFile("t"), HasSubstr("**\\u0018B0950c3")) << "asked from byte 50000 on";
}

TEST_F(BinaryPeers, NoByteGoesBeforeTheProtocolsOwn) {
    EXPECT_THAT(FirstBytesOf({"binary", "send", PathOf("data.bin"), "--protocol", "zmodem"}, 8),
                testing::AnyOf(StartsWith("**\x18"
                                          "B00"),
                               StartsWith("rz\r**\x18"
                                          "B")));
    EXPECT_THAT(FirstBytesOf(Receive("zmodem"), 6), StartsWith("**\x18"
                                                               "B01"));
    EXPECT_THAT(FirstBytesOf({"binary", "send", PathOf("data.bin"), "--protocol", "kermit"}, 4),
                testing::MatchesRegex("\x01. S[^\x01]*"));
}

TEST_F(BinaryPeers, CtrlCEndsThePeerTooAndLeavesNoFile) {
    WriteHostFile("peer/remote.bin", Content(50'000'000));
    if (!Meet({"sz", "-b", "-q", "remote.bin"})) return;
    const Ended ended = Interrupt(Receive("zmodem"));
    EXPECT_EQ(ended.status, 130) << ended.out;
    EXPECT_NE(mPeer->Wait(), 0);
    EXPECT_FALSE(HasHostFile("back.bin"));
}

/// Another program at the virtual printer's line, after a person has typed the command.
class PrinterPeers : public qncomm::testing::TransferFixture {
  protected:
    PrinterPeers() {
        PrinterOnPty();
        MakeFolder("in");
        WriteHostFile("DATA.BIN", mContent);
    }

    /// Makes the line a plain one with the printer's settings, as a terminal program does.
    static void MakePlain(const qncomm::Fd& line) {
        termios settings{};
        ::tcgetattr(line.Get(), &settings);
        ::cfmakeraw(&settings);
        ::cfsetspeed(&settings, B9600);
        settings.c_cflag |= CSTOPB | CLOCAL | CREAD;
        ::tcsetattr(line.Get(), TCSANOW, &settings);
    }

    /// Types the command, leaves the line to the program, and tells whether that was content.
    void Let(const std::string& command, const std::string& folder, const Arguments& peer) {
        const qncomm::Fd line(::open(Printer().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        MakePlain(line);
        const std::string typed = command + "\r";
        ASSERT_EQ(::write(line.Get(), typed.data(), typed.size()),
                  static_cast<ssize_t>(typed.size()));
        ASSERT_EQ(Heard(line.Get(), typed.size() + 1).substr(0, typed.size() + 1), typed + "\n");
        const auto other = LinePeer::Start(line.Get(), folder, peer);
        if (!other) return;
        EXPECT_EQ(other->Wait(), 0) << command;
        MakePlain(line); // some leave it as a person's terminal, with an echo
        EXPECT_THAT(Heard(line.Get(), 4), HasSubstr("Ok")) << "the prompt comes back";
    }

    const std::string mContent = Content(PeerFileSize);
};

TEST_F(PrinterPeers, GkermitSendsAndReceives) {
    Let("TRANSFER K \"R\"", PathOf(""), {"gkermit", "-iqs", "DATA.BIN"});
    Let("TRANSFER K \"S\",\"DATA.BIN\"", PathOf("in"), {"gkermit", "-riq"});
    EXPECT_TRUE(HostFile("in/DATA.BIN") + HostFile("in/data.bin") == mContent);
}

TEST_F(PrinterPeers, LrzszSendsAndReceives) {
    Let("TRANSFER Z \"R\"", PathOf(""), {"sz", "-b", "-q", "DATA.BIN"});
    Let("TRANSFER Z \"S\",\"DATA.BIN\"", PathOf("in"), {"rz", "-b", "-q"});
    EXPECT_TRUE(HostFile("in/DATA.BIN") == mContent);
}

TEST_F(PrinterPeers, WhatOneProgramSentAnotherFetches) {
    Let("TRANSFER Z \"R\"", PathOf(""), {"sz", "-b", "-q", "DATA.BIN"});
    EXPECT_TRUE(PrinterFile("c:DATA.BIN") == mContent);
}

} // namespace
