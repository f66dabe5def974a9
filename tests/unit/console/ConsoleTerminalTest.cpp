#include "console/ConsoleTerminal.h"

#include "platform/Fd.h"
#include "platform/PollLoop.h"

#include <gmock/gmock.h>

#include <array>
#include <utility>
#include <vector>

#include <pty.h>
#include <unistd.h>

namespace {

using qncomm::ConsoleTerminal;
using qncomm::Fd;
using testing::ElementsAre;

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) throw 0;
        mRead = Fd(ends[0]);
        mWrite = Fd(ends[1]);
    }
    void Put(std::string_view text) const {
        ASSERT_EQ(::write(mWrite.Get(), text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
    }
    std::string Take() {
        mWrite.Reset();
        std::array<char, 4096> text{};
        const ssize_t size = ::read(mRead.Get(), text.data(), text.size());
        return {text.data(), static_cast<std::size_t>(size)};
    }
    Fd mRead;
    Fd mWrite;
};

/// A terminal whose line is a function: each piece that is sent may be answered at once.
class ConsoleTerminalTest : public testing::Test {
  protected:
    bool Run(int in) {
        ConsoleTerminal terminal(mLoop, {in,
                                         mOutput.mWrite.Get(),
                                         [&](std::string_view bytes) {
                                             const std::size_t taken =
                                                 std::min(bytes.size(), mSpace);
                                             mSent.emplace_back(bytes.substr(0, taken));
                                             for (const std::string& reply : mAnswer(mSent.back()))
                                                 mShow(reply);
                                             return taken;
                                         },
                                         [&] { return mAlive(); },
                                         {},
                                         [&] {
                                             ++mBreaks;
                                             return mWhyNoBreak;
                                         }});
        mShow = [&](const std::string& text) { terminal.Show(text); };
        return terminal.Run();
    }

    qncomm::PollLoop mLoop;
    Pipe mOutput;
    std::size_t mSpace = 4096;
    std::vector<std::string> mSent;
    std::function<std::vector<std::string>(const std::string&)> mAnswer = [](const std::string&) {
        return std::vector<std::string>{"Ok\r\n"};
    };
    int mBreaks = 0;
    std::string mWhyNoBreak;
    std::function<bool()> mAlive = [] { return true; };
    std::function<void(const std::string&)> mShow;
};

TEST_F(ConsoleTerminalTest, SendsTheLinesOfItsInputEachWhenTheOneBeforeWasAnswered) {
    Pipe input;
    input.Put("PRINT 1\nPRINT 2\r\nPRINT 3");
    input.mWrite.Reset();
    EXPECT_TRUE(Run(input.mRead.Get()));
    EXPECT_THAT(mSent, ElementsAre("PRINT 1\r\n", "PRINT 2\r\n", "PRINT 3\r\n"));
    EXPECT_EQ(mOutput.Take(), "Ok\r\nOk\r\nOk\r\n");
}

TEST_F(ConsoleTerminalTest, ConvertsBothWaysWhereTextIsShown) {
    Pipe input;
    input.Put("å\n");
    input.mWrite.Reset();
    mAnswer = [](const std::string&) { return std::vector<std::string>{"\x80\r\n", "Ok\r\n"}; };
    EXPECT_TRUE(Run(input.mRead.Get()));
    EXPECT_THAT(mSent, ElementsAre("\xE5\r\n"));
    EXPECT_EQ(mOutput.Take(), "€\r\nOk\r\n");
}

TEST_F(ConsoleTerminalTest, WaitsForALineThatTakesLittleAtATime) {
    Pipe input;
    input.Put("ABCDEF\n");
    input.mWrite.Reset();
    mSpace = 5;
    mAnswer = [](const std::string& sent) {
        return sent.ends_with("\r\n") ? std::vector<std::string>{"Ok\r\n"}
                                      : std::vector<std::string>{};
    };
    const auto timer = mLoop.StartTimer(1, [] {}); // the line drains
    EXPECT_TRUE(Run(input.mRead.Get()));
    EXPECT_THAT(mSent, ElementsAre("ABCDE", "F\r\n"));
}

TEST_F(ConsoleTerminalTest, EndsWhenTheLineIsGone) {
    Pipe input;
    mAlive = [] { return false; };
    EXPECT_FALSE(Run(input.mRead.Get()));
}

/// A terminal at which keys are typed once it has become raw.
class ConsoleKeys : public ConsoleTerminalTest {
  protected:
    ConsoleKeys() {
        int user = -1;
        int program = -1;
        if (::openpty(&user, &program, nullptr, nullptr, nullptr) != 0) throw 0;
        mUser = Fd(user);
        mProgram = Fd(program);
    }

    bool Type(std::string_view keys) {
        mAlive = [this, keys, typed = false]() mutable {
            // The first round comes after the terminal has become raw.
            if (!std::exchange(typed, true)) {
                EXPECT_EQ(::write(mUser.Get(), keys.data(), keys.size()),
                          static_cast<ssize_t>(keys.size()));
            }
            return true;
        };
        return Run(mProgram.Get());
    }

    Fd mUser;
    Fd mProgram;
};

TEST_F(ConsoleKeys, GoToThePrinterAsTheyAreTypedUntilTheEndKey) {
    EXPECT_TRUE(Type("AB\x03\r\x1Dlost"));
    EXPECT_THAT(mSent, ElementsAre("AB\x03\r"));
}

TEST_F(ConsoleKeys, TheMenuKeyMakesTheNextOneACommand) {
    EXPECT_TRUE(Type("A\x14"
                     "c\x14t\x14\x14"
                     "B\x14qlost"));
    EXPECT_THAT(mSent, ElementsAre("A\x03\x14\x14"
                                   "B"));
    EXPECT_EQ(mBreaks, 0);
}

TEST_F(ConsoleKeys, ABreakIsSentOrToldWhyNot) {
    EXPECT_TRUE(Type("\x14"
                     "b\x1D"));
    EXPECT_EQ(mBreaks, 1);
    mWhyNoBreak = "no line";
    EXPECT_TRUE(Type("\x14"
                     "b\x1D"));
    EXPECT_EQ(mOutput.Take(), "\r\n[no line]\r\n");
    EXPECT_THAT(mSent, ElementsAre());
}

TEST_F(ConsoleKeys, AnyOtherCommandShowsThem) {
    EXPECT_TRUE(Type("\x14?\x1D"));
    EXPECT_EQ(mOutput.Take(),
              "\r\n[Ctrl-T and then: b break, c Ctrl-C, t Ctrl-T, z stop for a while, q end]\r\n");
}

} // namespace
