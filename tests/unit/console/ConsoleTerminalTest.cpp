#include "console/ConsoleTerminal.h"

#include "platform/Fd.h"
#include "platform/PollLoop.h"

#include <gmock/gmock.h>

#include <array>
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
        ConsoleTerminal terminal(mLoop, {in, mOutput.mWrite.Get(),
                                         [&](std::string_view bytes) {
                                             const std::size_t taken =
                                                 std::min(bytes.size(), mSpace);
                                             mSent.emplace_back(bytes.substr(0, taken));
                                             for (const std::string& reply : mAnswer(mSent.back()))
                                                 mShow(reply);
                                             return taken;
                                         },
                                         [&] { return mAlive(); }});
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

TEST_F(ConsoleTerminalTest, AtATerminalSendsKeysAsTheyAreTypedUntilTheEndKey) {
    int person = -1;
    int program = -1;
    ASSERT_EQ(::openpty(&person, &program, nullptr, nullptr, nullptr), 0);
    const Fd first(person);
    const Fd second(program);
    mAlive = [&, typed = false]() mutable {
        // The first round comes after the terminal has become raw.
        if (!typed) {
            EXPECT_EQ(::write(person, "AB\x03\r\x1Dlost", 9), 9);
            typed = true;
        }
        return true;
    };
    EXPECT_TRUE(Run(program));
    EXPECT_THAT(mSent, ElementsAre("AB\x03\r"));
}

} // namespace
