#include "console/ConsoleDesktop.h"
#include "console/RawTerminal.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"

#include <gmock/gmock.h>

#include <array>
#include <sstream>

#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace {

using qncomm::ConsoleDesktop;
using qncomm::Fd;
using qncomm::GivenAnswer;
using qncomm::MsgBox;
using qncomm::MsgBoxButtons;
using qncomm::MsgBoxIcon;
using qncomm::MsgBoxResult;
using qncomm::StatusLine;
using testing::HasSubstr;

/// A pseudo-terminal: the user's side and the program's.
struct Terminal {
    Terminal() {
        int person = -1;
        int program = -1;
        if (::openpty(&person, &program, nullptr, nullptr, nullptr) != 0) throw 0;
        mPerson = Fd(person);
        mProgram = Fd(program);
    }
    void Type(std::string_view keys) const {
        ASSERT_EQ(::write(mPerson.Get(), keys.data(), keys.size()),
                  static_cast<ssize_t>(keys.size()));
    }
    Fd mPerson;
    Fd mProgram;
};

class ConsoleDesktopTest : public testing::Test {
  protected:
    MsgBoxResult Answer(const MsgBox& box, GivenAnswer given, int input) {
        qncomm::LineReader reader(mLoop, input);
        ConsoleDesktop desktop(mErr, mStatus, reader, given);
        return desktop.ShowMsgBox(box);
    }

    static MsgBox Question() {
        return {"Format ram:?\r\nAll is lost.", MsgBoxButtons::YesNo, MsgBoxIcon::Question,
                "Format"};
    }

    std::ostringstream mErr;
    StatusLine mStatus{mErr, StatusLine::Style::Off};
    qncomm::PollLoop mLoop;
    Terminal mTerminal;
};

TEST_F(ConsoleDesktopTest, ABoxIsItsTitleAndItsLines) {
    const MsgBox box{
        "First line.\r\nCan´t show all!", MsgBoxButtons::Ok, MsgBoxIcon::Exclamation, {}};
    EXPECT_EQ(Answer(box, GivenAnswer::No, -1), MsgBoxResult::Ok);
    EXPECT_EQ(mErr.str(), "QNComm: First line.\n  Can´t show all!\n");
    mErr.str("");
    Answer({"\r\nBehind an empty line ", MsgBoxButtons::Ok, MsgBoxIcon::None, {}},
           GivenAnswer::None, -1);
    EXPECT_EQ(mErr.str(), "QNComm: Behind an empty line\n");
}

TEST_F(ConsoleDesktopTest, AQuestionIsAnsweredByWhatWasGiven) {
    EXPECT_EQ(Answer(Question(), GivenAnswer::Yes, -1), MsgBoxResult::Yes);
    EXPECT_EQ(Answer(Question(), GivenAnswer::No, -1), MsgBoxResult::No);
    EXPECT_EQ(mErr.str(), "Format: Format ram:?\n  All is lost. [y/N] yes\n"
                          "Format: Format ram:?\n  All is lost. [y/N] no\n");
}

TEST_F(ConsoleDesktopTest, WithoutATerminalTheAnswerIsNo) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const Fd read(ends[0]);
    const Fd write(ends[1]);
    ASSERT_EQ(::write(write.Get(), "y\n", 2), 2); // meant for somebody else
    EXPECT_EQ(Answer(Question(), GivenAnswer::None, read.Get()), MsgBoxResult::No);
}

TEST_F(ConsoleDesktopTest, AtATerminalTheUserAnswers) {
    mTerminal.Type("yes\n");
    EXPECT_EQ(Answer(Question(), GivenAnswer::None, mTerminal.mProgram.Get()), MsgBoxResult::Yes);
    mTerminal.Type("\n");
    EXPECT_EQ(Answer(Question(), GivenAnswer::None, mTerminal.mProgram.Get()), MsgBoxResult::No);
}

TEST_F(ConsoleDesktopTest, OkAndCancelAreAQuestionToo) {
    MsgBox box = Question();
    box.buttons = MsgBoxButtons::OkCancel;
    EXPECT_EQ(Answer(box, GivenAnswer::Yes, -1), MsgBoxResult::Ok);
    EXPECT_EQ(Answer(box, GivenAnswer::None, -1), MsgBoxResult::Cancel);
}

TEST(RawTerminal, PutsTheTerminalBackAsItWas) {
    const Terminal terminal;
    termios before{};
    ASSERT_EQ(::tcgetattr(terminal.mProgram.Get(), &before), 0);
    termios during{};
    {
        qncomm::RawTerminal raw(terminal.mProgram.Get());
        EXPECT_TRUE(raw.Enter());
        ASSERT_EQ(::tcgetattr(terminal.mProgram.Get(), &during), 0);
    }
    termios after{};
    ASSERT_EQ(::tcgetattr(terminal.mProgram.Get(), &after), 0);
    EXPECT_EQ(during.c_lflag & (ICANON | ECHO | ISIG), 0U);
    EXPECT_EQ(after.c_lflag, before.c_lflag);
    EXPECT_EQ(after.c_iflag, before.c_iflag);
    EXPECT_EQ(after.c_oflag, before.c_oflag);
}

} // namespace
