// What only a tty has: attributes, former settings, locks, holders.

#include "TtyChannel.h"
#include "TtyLine.h"
#include "common/QNError.h"
#include "platform/PollLoop.h"
#include "serial/PDQComm.h"
#include "serial/PortHolder.h"
#include "serial/PortListing.h"
#include "testing/core/ScratchFolder.h"
#include "testing/line/Endpoint.h"
#include "testing/line/OtherProcess.h"
#include "testing/line/PtyPair.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;

int OpenDevice(const std::string& path) {
    return ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
}

class TtyTest : public ::testing::Test {
  protected:
    TtyTest() {
        EXPECT_EQ(mPort.Bindings().Give(1, mPty.path), "");
        mPort.SetPortNumber(1);
    }
    std::string BusyText() {
        try {
            mPort.SetPortOpen(true);
        } catch (const QNError& error) {
            EXPECT_EQ(error.Number(), SerialErrPortBusy);
            return error.Description();
        }
        ADD_FAILURE() << "the port opened";
        return {};
    }
    termios Attributes() const {
        const Fd fd(OpenDevice(mPty.path));
        termios line{};
        EXPECT_EQ(::tcgetattr(fd.Get(), &line), 0);
        return line;
    }

    PtyPair mPty = OpenPty();
    PollLoop mLoop;
    PDQComm mPort{mLoop, {}};
};

// -- A device that is looked for

TEST_F(TtyTest, ADeviceThatIsLookedForIsFoundAgainUnderAnotherName) {
    const PtyPair other = OpenPty();
    std::string now;
    TtyChannel channel(mLoop, [&now] { return now; });
    const LineSettings settings = *ParseLineSettings("9600,n,8,1");
    EXPECT_EQ(channel.Probe().status, IoStatus::Missing);
    EXPECT_EQ(channel.Open(settings).status, IoStatus::Missing);
    channel.Keep(true);
    for (const PtyPair* place : std::array<const PtyPair*, 2>{&mPty, &other}) {
        now = place->path;
        EXPECT_TRUE(channel.Probe().Ok());
        ASSERT_TRUE(channel.Open(settings).Ok());
        EXPECT_EQ(channel.Write("x").count, 1U);
        char byte = 0;
        EXPECT_EQ(::read(place->master.Get(), &byte, 1), 1);
        channel.Close();
    }
    mPort.SetPortOpen(true); // the former name is anybody's again
}

// -- Attributes

TEST(TtyAttributes, FollowTheSettings) {
    struct Row {
        const char* text;
        tcflag_t set;
        tcflag_t clear;
    };
    const std::array rows{
        Row{"9600,N,8,1", CS8, PARENB | PARODD | CMSPAR | CSTOPB},
        Row{"9600,E,7,2", CS7 | PARENB | CSTOPB, PARODD | CMSPAR},
        Row{"9600,O,8,1", CS8 | PARENB | PARODD, CMSPAR | CSTOPB},
        Row{"9600,M,8,2", CS8 | PARENB | PARODD | CMSPAR | CSTOPB, 0},
        Row{"9600,S,8,1", CS8 | PARENB | CMSPAR, PARODD | CSTOPB},
    };
    for (const Row& row : rows) {
        const termios line = AttributesFor(*ParseLineSettings(row.text));
        EXPECT_EQ(line.c_cflag & (row.set | CSIZE), row.set) << row.text;
        EXPECT_EQ(line.c_cflag & row.clear, 0U) << row.text;
        EXPECT_EQ(line.c_cc[VMIN], 1) << row.text;
        EXPECT_EQ(line.c_lflag, 0U) << row.text;
        EXPECT_EQ(line.c_oflag, 0U) << row.text;
    }
}

TEST(TtyAttributes, CarryTheHandshaking) {
    LineSettings settings;
    EXPECT_EQ(AttributesFor(settings).c_cflag & CRTSCTS, 0U);
    EXPECT_EQ(AttributesFor(settings).c_iflag & (IXON | IXOFF), 0U);
    settings.rtsCts = true;
    settings.xonXoff = true;
    EXPECT_NE(AttributesFor(settings).c_cflag & CRTSCTS, 0U);
    EXPECT_EQ(AttributesFor(settings).c_iflag & (IXON | IXOFF), tcflag_t{IXON | IXOFF});
}

TEST(TtyAttributes, EveryRateHasItsOwnCode) {
    std::set<speed_t> codes;
    for (const int baud : BaudRates) {
        LineSettings settings;
        settings.baud = baud;
        const termios line = AttributesFor(settings);
        EXPECT_EQ(::cfgetospeed(&line), ::cfgetispeed(&line));
        codes.insert(::cfgetospeed(&line));
    }
    EXPECT_EQ(codes.size(), BaudRates.size());
    EXPECT_EQ(codes.count(B0), 0U);
}

TEST(TtyAttributes, ARefusedPartIsNamed) {
    const termios wanted = AttributesFor(*ParseLineSettings("9600,M,7,2"));
    termios got = wanted;
    EXPECT_EQ(RefusedPart(wanted, got), "");
    got.c_cflag &= ~static_cast<tcflag_t>(CMSPAR);
    EXPECT_EQ(RefusedPart(wanted, got), "the parity");
    got = wanted;
    got.c_cflag |= CS8;
    EXPECT_EQ(RefusedPart(wanted, got), "the number of data bits");
    got = wanted;
    ::cfsetospeed(&got, B300);
    EXPECT_EQ(RefusedPart(wanted, got), "the baud rate");
}

// -- Opening and closing

TEST_F(TtyTest, TheFormerSettingsAreBackAfterClosing) {
    const Fd keep(OpenDevice(mPty.path)); // a pty forgets when its last user goes
    termios former{};
    ::tcgetattr(keep.Get(), &former);
    former.c_lflag |= ICANON | ECHO;
    former.c_cc[VMIN] = 7;
    former.c_cc[VTIME] = 9;
    ::cfsetospeed(&former, B2400);
    ::cfsetispeed(&former, B2400);
    ::tcsetattr(keep.Get(), TCSANOW, &former);
    mPort.SetPortSettings("115200,N,8,1");
    mPort.SetPortOpen(true);
    EXPECT_EQ(Attributes().c_lflag & (ICANON | ECHO), 0U);
    mPort.SetPortOpen(false);
    const termios after = Attributes();
    EXPECT_EQ(after.c_lflag, former.c_lflag);
    EXPECT_EQ(after.c_cc[VMIN], 7);
    EXPECT_EQ(after.c_cc[VTIME], 9);
    EXPECT_EQ(::cfgetospeed(&after), speed_t{B2400});
}

TEST_F(TtyTest, ASilentLineStaysOpenWhateverItsLastUserLeft) {
    const Fd keep(OpenDevice(mPty.path));
    termios odd{};
    ::tcgetattr(keep.Get(), &odd);
    odd.c_lflag &= ~static_cast<tcflag_t>(ICANON);
    odd.c_cc[VMIN] = 0;
    odd.c_cc[VTIME] = 1;
    ::tcsetattr(keep.Get(), TCSANOW, &odd);
    mPort.SetPortOpen(true);
    EXPECT_FALSE(mPort.WaitForReceive(1));
    mLoop.Yield(1);
    EXPECT_TRUE(mPort.PortOpen());
    EXPECT_EQ(mPort.Read(), "");
}

TEST_F(TtyTest, APtyAsAKilledHostLeftItTakesEverySetting) {
    // Nothing puts back the settings of a host that was killed. The C library then answers a change
    // of what a pseudo-terminal does not have, and of nothing else, with EINVAL.
    for (const char* left : {"57600,N,8,1", "57600,E,7,1", "9600,M,8,2"})
        for (const char* text : {"57600,E,7,1", "57600,E,8,1", "57600,O,7,1", "57600,M,8,1",
                                 "57600,S,7,1", "9600,M,7,2", "9600,E,8,2", "57600,N,8,1"}) {
            const Fd fd(OpenDevice(mPty.path));
            const termios state = AttributesFor(*ParseLineSettings(left));
            ::tcsetattr(fd.Get(), TCSANOW, &state);
            mPort.SetPortSettings(text);
            EXPECT_NO_THROW(mPort.SetPortOpen(true)) << text << " after " << left;
            EXPECT_NO_THROW(mPort.SetPortSettings(text)) << "twice " << text;
            mPort.SetPortOpen(false);
        }
}

TEST_F(TtyTest, TheFarSideOfAPtySeesTheRate) {
    for (const int baud : {300, 57600}) {
        mPort.SetPortSettings(std::to_string(baud) + ",n,8,2");
        mPort.SetPortOpen(true);
        termios seen{};
        ASSERT_EQ(::tcgetattr(mPty.master.Get(), &seen), 0);
        LineSettings settings;
        settings.baud = baud;
        const termios wanted = AttributesFor(settings);
        EXPECT_EQ(::cfgetospeed(&seen), ::cfgetospeed(&wanted));
        EXPECT_NE(seen.c_cflag & CSTOPB, 0U);
        mPort.SetPortOpen(false);
    }
}

TEST_F(TtyTest, BytesGivenToAPtyArriveThoughThePortIsClosedAtOnce) {
    const Fd keep(OpenDevice(mPty.path));
    mPort.SetPortOpen(true);
    mPort.Write("REBOOT\r");
    EXPECT_EQ(mPort.TransmitCount(), 0);
    mPort.SetPortOpen(false);
    std::array<char, 32> seen{};
    EXPECT_TRUE(mLoop.WaitFor(mPty.master.Get(), {.readable = true}, 5'000'000).readable);
    EXPECT_EQ(::read(mPty.master.Get(), seen.data(), seen.size()), 7);
}

// -- Busy

TEST_F(TtyTest, APortLockedByAnotherProcessIsBusyAndNamesIt) {
    {
        const OtherProcess other([this] {
            const int fd = OpenDevice(mPty.path);
            return ::flock(fd, LOCK_EX | LOCK_NB) == 0;
        });
        const std::string text = BusyText();
        EXPECT_THAT(text, HasSubstr("COM1 (" + mPty.path + ")"));
        EXPECT_THAT(text, HasSubstr(other.Text()));
        EXPECT_EQ(mPort.LastFailure()->reason.status, IoStatus::Busy);
        EXPECT_FALSE(mPort.ProbePort(1));
        const std::vector<PortListing> rows = ListPorts(mPort.Bindings());
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0].state, PortState::Busy);
        EXPECT_THAT(rows[0].detail, HasSubstr(other.Text()));
    }
    mPort.SetPortOpen(true);
    EXPECT_TRUE(mPort.PortOpen());
}

TEST_F(TtyTest, APortInExclusiveUseIsBusyAndNamesItsUser) {
    const OtherProcess other([this] { return ::ioctl(OpenDevice(mPty.path), TIOCEXCL) == 0; });
    EXPECT_THAT(BusyText(), HasSubstr(other.Text()));
}

TEST_F(TtyTest, AnOpenPortIsHeldAgainstOthers) {
    mPort.SetPortOpen(true);
    {
        const OtherProcess other([this] {
            const int fd = OpenDevice(mPty.path); // root opens it all the same
            return fd < 0 || ::flock(fd, LOCK_EX | LOCK_NB) != 0;
        });
    }
    mPort.SetPortOpen(false);
    const OtherProcess later([this] {
        const int fd = OpenDevice(mPty.path);
        int exclusive = 1;
        return ::flock(fd, LOCK_EX | LOCK_NB) == 0 && ::ioctl(fd, TIOCGEXCL, &exclusive) == 0
               && exclusive == 0;
    });
}

TEST_F(TtyTest, ASecondControlInTheSameProgramIsToldSo) {
    PDQComm second(mLoop, mPort.Bindings());
    second.SetPortOpen(true);
    EXPECT_THAT(BusyText(), HasSubstr("already open in this program"));
}

TEST_F(TtyTest, AKeptPortLetsNobodyInBetweenAClosingAndTheNextOpening) {
    PDQComm search(mLoop, mPort.Bindings());
    search.KeepPort(true);
    search.SetPortOpen(true);
    search.SetPortOpen(false);
    EXPECT_THAT(BusyText(), HasSubstr("already open in this program"));
    EXPECT_FALSE(mPort.ProbePort(1));
    EXPECT_TRUE(search.ProbePort(1));
    search.SetPortOpen(true);
    search.SetPortOpen(false);
    search.KeepPort(false);
    mPort.SetPortOpen(true);
    EXPECT_TRUE(mPort.PortOpen());
}

TEST_F(TtyTest, APortThatAnotherProcessKeepsIsBusyAndNamesIt) {
    {
        const OtherProcess other([this] { return ::dup(ReservePort(mPty.path).Get()) >= 0; });
        EXPECT_THAT(BusyText(), HasSubstr(other.Text()));
        EXPECT_FALSE(ReservePort(mPty.path));
    }
    mPort.SetPortOpen(true);
    EXPECT_TRUE(mPort.PortOpen());
}

class LockFileTest : public TtyTest {
  protected:
    ~LockFileTest() override { std::filesystem::remove(mFile); }
    void Write(const std::string& text) const { std::ofstream(mFile, std::ios::binary) << text; }

    std::string mFile =
        "/var/lock/LCK..pts_" + std::filesystem::path(mPty.path).filename().string();
};

TEST_F(LockFileTest, ALockFileOfALivingProcessIsRespected) {
    const OtherProcess other([] { return true; });
    Write("      " + std::to_string(other.Process()) + " minicom root\n");
    EXPECT_THAT(BusyText(), HasSubstr(other.Text()));
    const pid_t binary = other.Process();
    Write(std::string(reinterpret_cast<const char*>(&binary), sizeof binary));
    EXPECT_THAT(BusyText(), HasSubstr(other.Text()));
}

TEST_F(LockFileTest, ALockFileThatNobodyIsBehindIsNot) {
    pid_t ended = 0;
    {
        const OtherProcess other([] { return true; });
        ended = other.Process();
    }
    for (const std::string& text : {std::to_string(ended) + "\n", std::string("nonsense"),
                                    std::string(), std::to_string(::getpid()) + "\n"}) {
        Write(text);
        mPort.SetPortOpen(true);
        EXPECT_TRUE(mPort.PortOpen()) << text;
        mPort.SetPortOpen(false);
    }
}

// -- No port

TEST_F(TtyTest, WhatIsNoSerialDeviceIsRefusedWithTheReason) {
    struct Row {
        std::string path;
        std::int32_t number;
        const char* text;
    };
    ScratchFolder folder;
    std::ofstream(folder.File("file")) << "text";
    for (const Row& row : {Row{"/dev/qncomm-none", SerialErrNoSuchPort, "there is no such device"},
                           Row{"/dev/null", SerialErrDevice, "this is no serial device"},
                           Row{folder.File("file"), SerialErrDevice, "this is no serial device"},
                           Row{"/dev", SerialErrDevice, "is a directory"}}) {
        EXPECT_EQ(mPort.Bindings().Give(2, row.path), "");
        mPort.SetPortNumber(2);
        EXPECT_FALSE(mPort.ProbePort(2));
        try {
            mPort.SetPortOpen(true);
            ADD_FAILURE() << row.path << " opened";
        } catch (const QNError& error) {
            EXPECT_EQ(error.Number(), row.number) << row.path;
            EXPECT_THAT(error.Description(), HasSubstr(row.text));
        }
    }
}

} // namespace
} // namespace qncomm::testing
