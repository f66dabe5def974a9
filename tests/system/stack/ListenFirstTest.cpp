// A host that listens before it speaks, against the printer's own language and line.

#include "testing/stack/ManualReactor.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// A printer whose program runs, and a link that does not know it any more.
class BusyPrinter : public ::testing::Test {
  protected:
    void Run(Stack& stack, const std::vector<std::string>& program) {
        PortClaim claim = stack.mLink.AcquirePort();
        for (const std::string& line : program) {
            stack.mLink.OutputText(line + "\r\n");
            stack.mLink.Delay(300); // a program line is answered by nothing but its echo
        }
        stack.mLink.OutputText("RUN\r\n");
        claim.Release();
        stack.mLink.SetImmediateMode(false);
        stack.mMessages.clear();
    }

    /// How long a search takes that finds nobody.
    std::int64_t SearchMs(Stack& stack) {
        const std::int64_t start = mReactor.NowMs();
        EXPECT_FALSE(stack.mLink.AcquirePort());
        return mReactor.NowMs() - start;
    }

    ManualReactor mReactor;
    Stack mStack{mReactor, "sim:R7G?paced=on", {}, {.listen = true}};
    Stack mPlain{mReactor, "sim:R7G?paced=on"};
    Stack mSilent{mReactor, "sim:R7G?paced=on&lost=1"};
};

TEST_F(BusyPrinter, AProgramThatPrintsIsNamedAndGoesOn) {
    Run(mStack, {"10 PRINT 42:GOTO 10"});
    mReactor.Pass(2000); // however slow the printer is to begin
    EXPECT_THAT(mStack.Ask("PRINT 1"), IsEmpty());
    EXPECT_EQ(mStack.mLink.LastSearch().end, SearchEnd::LineTalks);
    EXPECT_EQ(mStack.mLink.LastSearch().heard.talk, LineTalk::Text);
    EXPECT_EQ(mStack.mLink.LastSearch().heard.sample, "42");
    EXPECT_THAT(mStack.mMessages, Not(::testing::Contains(HasSubstr("Searching"))));
    EXPECT_EQ(mStack.mLink.StopProgram(), StopByCtrlC) << "it still ran";
    mStack.mLink.SetListens(false); // a line that is noisy by itself is none to be searched unasked
    EXPECT_THAT(mStack.Ask("PRINT 1"), ElementsAre("PRINT 1", "1", "Ok"));
}

/// A program that counts what it is given, and has asked and waits when the link comes.
const std::vector<std::string> Asks{"10 N%=0", "20 INPUT \"Article? \";A$", "30 N%=N%+1",
                                    "40 GOTO 20"};

/// The same printer, remembered by its link.
class RememberedBusyPrinter : public BusyPrinter {
  protected:
    void RunKnown(const std::vector<std::string>& program) {
        EXPECT_NE(mKnown.mLink.ModelText(), "");
        Run(mKnown, program);
        mReactor.Pass(1000);
    }
    /// Ends the program; how many lines it was given, and the last.
    std::string AtItsEnd() {
        EXPECT_EQ(mKnown.mLink.StopProgram(), StopByCtrlC);
        const auto reply = mKnown.Ask("PRINT N%;A$");
        return reply.size() == 3 ? reply[1] : "no reply";
    }

    Stack mKnown{
        mReactor, "sim:R7G?paced=on", {}, {.remembered = true, .spoil = true, .listen = true}};
};

TEST_F(RememberedBusyPrinter, AProgramThatWaitsForInputGetsOneSpoiledLineAndIsNamed) {
    RunKnown(Asks);
    EXPECT_FALSE(mKnown.mLink.AcquirePort());
    const SearchReport& report = mKnown.mLink.LastSearch();
    EXPECT_EQ(report.end, SearchEnd::Taken);
    EXPECT_EQ(report.heard.talk, LineTalk::Question);
    EXPECT_EQ(Explain(report, "COM1"),
              "Only one line was sent to COM1: a program is running; it asks and waits: Article?");
    EXPECT_THAT(mKnown.mMessages, Not(::testing::Contains(HasSubstr("Searching"))));
    EXPECT_EQ(AtItsEnd(), "1)(");
}

TEST_F(RememberedBusyPrinter, WhileTheLineStaysOpenItGetsNoMore) {
    RunKnown(Asks);
    mKnown.mLink.SetTerminalActive(true);
    EXPECT_FALSE(mKnown.mLink.AcquirePort());
    EXPECT_EQ(mKnown.mLink.Live().printer.value, PrinterAsking);
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(mKnown.mLink.AcquirePort());
    EXPECT_EQ(mKnown.mLink.LastSearch().end, SearchEnd::LineTalks);
    EXPECT_EQ(mKnown.mLink.Live().printer.value, PrinterAsking);
    EXPECT_EQ(AtItsEnd(), "1)(");
}

TEST_F(RememberedBusyPrinter, AProgramThatTakesALineAndSaysNothingGetsNoOther) {
    RunKnown({"10 N%=0", "20 INPUT \"\";A$", "30 N%=N%+1", "40 GOTO 20"});
    EXPECT_FALSE(mKnown.mLink.AcquirePort());
    EXPECT_EQ(mKnown.mLink.LastSearch().end, SearchEnd::Taken);
    EXPECT_EQ(mKnown.mLink.LastSearch().heard.talk, LineTalk::Echo);
    EXPECT_EQ(AtItsEnd(), "1)(");
}

TEST_F(BusyPrinter, AProgramThatWaitsForInputEndsTheSearchByTheFirstEcho) {
    Run(mStack, Asks);
    mReactor.Pass(1000);
    EXPECT_THAT(mStack.Ask("PRINT 1"), IsEmpty());
    EXPECT_EQ(mStack.mLink.LastSearch().end, SearchEnd::Taken);
    EXPECT_EQ(mStack.mLink.LastSearch().heard.talk, LineTalk::Question);
    EXPECT_THAT(mStack.mLink.LastSearch().heard.sample, HasSubstr("Article"));
    EXPECT_EQ(mStack.mLink.StopProgram(), StopByCtrlC);
    mStack.mLink.SetListens(false);
    EXPECT_THAT(mStack.Ask("PRINT N%"), ElementsAre("PRINT N%", "2", "Ok"))
        << "the probe's two line ends";
}

TEST_F(BusyPrinter, ASearchOfATalkingLineEndsAndACancelPutsItsSettingsBack) {
    Run(mPlain, {"10 PRINT 42:GOTO 10"});
    const std::string before = mPlain.mSerial.PortSettings();
    // Beyond the silence that does not come, a combination lasts until its probe has left, where a
    // silent line is not even waited for so long: of 48 bytes, which the printer's receiver takes
    // for up to three times as many.
    constexpr std::int64_t leavesMs =
        3 * 48 * 11 * 4 * (1000 / 2400. + 1000 / 4800. + 1000 / 9600.);
    EXPECT_LE(SearchMs(mPlain), SearchMs(mSilent) + 3000 + leavesMs);
    mPlain.mCancel = true;
    mPlain.mLink.SetTerminalActive(true);
    EXPECT_LE(SearchMs(mPlain), 3500);
    EXPECT_EQ(mPlain.mSerial.PortSettings(), before);
    EXPECT_TRUE(mPlain.mSerial.PortOpen());
    mPlain.mTerminalText.clear();
    mReactor.Pass(500);
    EXPECT_THAT(mPlain.mTerminalText, HasSubstr("42\r\n42\r\n"));
}

struct Parity {
    const char* format;
    const char* settings;
};

class OtherParity : public ::testing::TestWithParam<Parity> {};

TEST_P(OtherParity, IsFoundBehindTheStatedSearch) {
    ManualReactor reactor;
    Stack stack(reactor, std::string("sim:R7G?baud=19200&format=") + GetParam().format, {},
                {.listen = true});
    EXPECT_TRUE(stack.mLink.AutoConnect(1));
    EXPECT_EQ(stack.mLink.SettingsText(), GetParam().settings);
    EXPECT_THAT(stack.Ask("PRINT 6*7"), ElementsAre("PRINT 6*7", "42", "Ok"));
}

TEST_P(OtherParity, IsNoMatterOfTheStatedSearch) {
    ManualReactor reactor;
    Stack stack(reactor, std::string("sim:R7G?baud=19200&format=") + GetParam().format);
    const bool plain = std::string_view(GetParam().format).starts_with('n');
    EXPECT_EQ(stack.mLink.AutoConnect(1), plain);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, OtherParity,
    ::testing::Values(Parity{"e,7,1", "19200,E,7,1"}, Parity{"o,7,1", "19200,O,7,1"},
                      Parity{"s,7,2", "19200,S,7,2"}, Parity{"e,8,1", "19200,E,8,1"},
                      Parity{"o,8,1", "19200,O,8,1"}, Parity{"s,8,1", "19200,S,8,1"},
                      Parity{"n,8,1", "19200,N,8,1"}),
    [](const auto& parity) {
        std::string name = parity.param.format;
        std::erase(name, ',');
        return name;
    });

} // namespace
} // namespace qncomm::testing
