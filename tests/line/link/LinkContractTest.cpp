// One suite over every kind of line: what the link promises holds in process, on a
// pseudo-terminal, on a socket and on a remote serial port.

#include "common/QNError.h"
#include "common/Text.h"
#include "platform/PollLoop.h"
#include "testing/core/ExpectRaised.h"
#include "testing/line/ServedPrinter.h"
#include "testing/stack/Stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm::testing {
namespace {

using Lines = std::vector<std::string>;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct LineKind {
    const char* name;
    std::unique_ptr<ServedPrinter> (*serve)(const std::string& printer);
    bool carriesRate; ///< a host at another rate is not understood
};

class LinkContract : public ::testing::TestWithParam<LineKind> {
  protected:
    void Serve(const std::string& printer) {
        mPrinter = GetParam().serve(printer);
        mStack = std::make_unique<Stack>(mLoop, mPrinter->Address());
    }

    /// Yields until the condition holds; false when it does not within a time that no machine
    /// needs.
    bool Until(const std::function<bool()>& condition) {
        const std::int64_t limit = mLoop.NowMs() + 20'000;
        while (!condition() && mLoop.NowMs() < limit)
            mLoop.Yield(50);
        return condition();
    }

    PollLoop mLoop;
    std::unique_ptr<ServedPrinter> mPrinter;
    std::unique_ptr<Stack> mStack;
};

TEST_P(LinkContract, FindsIdentifiesAndAsks) {
    Serve("R7G?baud=19200&format=n,8,2");
    ASSERT_TRUE(mStack->mLink.AutoConnect(1));
    EXPECT_EQ(mStack->mLink.Baudrate(), "19200");
    EXPECT_EQ(mStack->mLink.ModelText(), "R7G");
    EXPECT_EQ(mStack->Ask("PRINT 6*7"), (Lines{"PRINT 6*7", "42", "Ok"}));
    EXPECT_EQ(mStack->mLink.UseCount(), 0);
    EXPECT_FALSE(mStack->mSerial.PortOpen());
}

TEST_P(LinkContract, TheSecondSearchAnswersAtOnce) {
    Serve("R7A?baud=2400&format=n,8,2");
    ASSERT_TRUE(mStack->mLink.AutoConnect(1));
    mStack->mMessages.clear();
    ASSERT_TRUE(mStack->mLink.AutoConnect(1));
    EXPECT_EQ(mStack->mMessages.size(), 4U) << "initiate, one combination, setup, connected";
}

TEST_P(LinkContract, AnErrorOfThePrinterIsRaisedAndTheLinkGoesOn) {
    Serve("R7G");
    EXPECT_GT(NumberRaisedBy([&] { mStack->Ask("PRINT 1/0"); }), 60000);
    EXPECT_EQ(mStack->mLink.UseCount(), 0);
    EXPECT_EQ(mStack->Ask("PRINT 2"), (Lines{"PRINT 2", "2", "Ok"}));
}

TEST_P(LinkContract, ManyExchangesUnderOneClaim) {
    Serve("R7G");
    PortClaim claim = mStack->mLink.AcquirePort();
    ASSERT_TRUE(claim);
    for (int i = 0; i < 300; ++i)
        EXPECT_EQ(mStack->Ask("PRINT " + std::to_string(i)).at(1), std::to_string(i));
    claim.Release();
    EXPECT_EQ(mStack->mPortStates, (std::vector{true, false}));
}

TEST_P(LinkContract, ALongTextGoesThroughTheTransmitBuffer) {
    Serve("R7G");
    std::string text;
    for (int line = 0; line < 500; ++line)
        text += "PRINT \"" + std::string(60, 'x') + "\"\r\n";
    const PortClaim claim = mStack->mLink.AcquirePort();
    ASSERT_TRUE(claim);
    mStack->mLink.OutputText(text);
    EXPECT_EQ(text, "");
    Lines lines;
    mStack->mLink.InputTextUntilQuiet(lines, 5000, 500);
    EXPECT_EQ(lines.size(), 500U * 3);
}

TEST_P(LinkContract, ASilentPrinterTimesOut) {
    Serve("R7G");
    PortClaim claim = mStack->mLink.AcquirePort();
    ASSERT_TRUE(claim);
    Lines lines;
    EXPECT_RAISED_FROM(mStack->mLink.InputText(lines, false, 100), "1008 Datalink:InputText");
    EXPECT_EQ(mStack->mLink.UseCount(), 0);
}

TEST_P(LinkContract, TheTerminalTypesAndShows) {
    Serve("R7G");
    ASSERT_TRUE(mStack->mLink.AutoConnect(1));
    mStack->mLink.SetTerminalActive(true);
    mStack->mSerial.TypeKeys("PRINT 5\r");
    EXPECT_TRUE(Until([&] {
        return mStack->mTerminalText.find("5\r\nOk\r\n") != std::string::npos;
    })) << mStack->mTerminalText;
    mStack->mLink.SetTerminalActive(false);
    EXPECT_FALSE(mStack->mSerial.PortOpen());
}

TEST_P(LinkContract, ACancelledSearchLeavesThePortClosedAndUnlearned) {
    Serve("R7G?baud=2400&format=n,8,2");
    mStack->mCancel = true;
    EXPECT_FALSE(mStack->mLink.AutoConnect(1));
    EXPECT_FALSE(mStack->mSerial.PortOpen());
    EXPECT_EQ(mStack->mLink.AutoConnectBaudrates().Item(1), "9600");
}

TEST_P(LinkContract, AHostAtAnotherRateIsNotUnderstoodWhereTheLineCarriesIt) {
    Serve("R7G?baud=1200&format=n,8,2");
    EXPECT_EQ(mStack->mLink.AutoConnect(1), !GetParam().carriesRate);
}

TEST_P(LinkContract, ACutLineRaisesAndLeavesNothingClaimed) {
    Serve("R7G?cut=3000");
    const auto untilCut = [&] {
        for (int i = 0; i < 2000; ++i)
            mStack->Ask("PRINT " + std::to_string(i));
    };
    EXPECT_NE(NumberRaisedBy(untilCut), 0);
    EXPECT_EQ(mStack->mLink.UseCount(), 0);
    EXPECT_FALSE(mStack->mSerial.PortOpen());
    EXPECT_TRUE(mStack->mSerial.LastFailure());
}

TEST_P(LinkContract, ADamagedLineEndsEveryOperation) {
    for (int seed = 1; seed <= 3; ++seed) {
        Serve("R7G?lost=0.01,seed=" + std::to_string(seed));
        try {
            for (int i = 0; i < 5 && mStack->mLink.AutoConnect(1); ++i)
                mStack->Ask("PRINT 1");
        } catch (const QNError& error) {
            EXPECT_TRUE(error.Number() == 1000 || error.Number() == 1008 || error.Number() > 60000)
                << error.Number();
        }
        EXPECT_EQ(mStack->mLink.UseCount(), 0);
        EXPECT_FALSE(mStack->mSerial.PortOpen());
        EXPECT_EQ(mStack->mSerial.Tag(), "");
    }
}

/// A terminal that shows what a running program prints, and a search of that line which is ended.
class SearchOfATalkingLine : public ::testing::Test {
  protected:
    SearchOfATalkingLine() {
        EXPECT_EQ(mStack.mLink.ModelText(), "R7G");
        mStack.mLink.SetTerminalActive(true);
        mStack.mSerial.Write("10 PRINT 42:GOTO 10\rRUN\r");
        EXPECT_TRUE(Shows42());
        mSettings = mStack.mSerial.PortSettings();
    }

    bool Shows42() {
        mStack.mTerminalText.clear();
        const std::int64_t limit = mLoop.NowMs() + 20'000;
        while (mStack.mTerminalText.find("42\r\n42\r\n") == std::string::npos
               && mLoop.NowMs() < limit)
            mLoop.Yield(50);
        return mLoop.NowMs() < limit;
    }

    void ExpectAsBefore() {
        EXPECT_EQ(mStack.mSerial.PortSettings(), mSettings);
        EXPECT_EQ(mStack.mLink.SettingsText(), mSettings);
        EXPECT_TRUE(mStack.mSerial.PortOpen());
        EXPECT_TRUE(Shows42());
    }

    PollLoop mLoop;
    std::unique_ptr<ServedPrinter> mPrinter = PrinterOnPty("R7G?paced=on");
    Stack mStack{mLoop, mPrinter->Address()};
    std::string mSettings;
};

TEST_F(SearchOfATalkingLine, LeavesItReadableWhenThePersonCancels) {
    const auto cancel = mStack.mLink.StatusEvent.Connect(
        [](std::string& text, std::int16_t&, bool& stop) { stop = text.ends_with("9600,n,8,2"); });
    EXPECT_FALSE(mStack.mLink.AutoConnect(1));
    EXPECT_EQ(mStack.mMessages.back(), "No Printer found");
    ExpectAsBefore();
}

TEST_F(SearchOfATalkingLine, LeavesItReadableWhenItsWaitIsEnded) {
    bool ended = false;
    const auto look = mLoop.StartTimer(100, [&] {
        const bool elsewhere = mStack.mSerial.PortSettings() != mSettings;
        if (elsewhere && !std::exchange(ended, true)) throw OperationCancelled();
    });
    EXPECT_THROW(mStack.mLink.AutoConnect(1), OperationCancelled);
    ExpectAsBefore();
}

INSTANTIATE_TEST_SUITE_P(Lines, LinkContract,
                         ::testing::Values(LineKind{"InProcess", PrinterInProcess, true},
                                           LineKind{"Pty", PrinterOnPty, true},
                                           LineKind{"Tcp", PrinterOnTcp, false},
                                           LineKind{"Rfc2217", PrinterOnRfc2217, true}),
                         [](const auto& kind) { return kind.param.name; });

// -- The 28 combinations on a pseudo-terminal, as far as it carries them

class PtySearch : public ::testing::TestWithParam<const char*> {};

TEST_P(PtySearch, FindsThePrinterInEveryFormat) {
    const std::string rate = GetParam();
    for (const std::string format : {"m,8,2", "n,8,2", "n,7,2", "n,7,1"}) {
        PollLoop loop;
        const auto printer = PrinterOnPty("R7G?baud=" + rate + "&format=" + format);
        // The rate is tried first here; the order of rates is the driven clock's business.
        Stack stack(loop, printer->Address(), {{"AutoConnctSettings", "Baud1", rate}});
        ASSERT_TRUE(stack.mLink.AutoConnect(1)) << format;
        EXPECT_EQ(LowerCase(stack.mLink.SettingsText()), rate + "," + format);
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, PtySearch,
                         ::testing::Values("9600", "19200", "57600", "115200", "38400", "4800",
                                           "2400"),
                         [](const auto& rate) { return std::string("At") + rate.param; });

TEST(PtySearch, LetsNoOtherHostInBetweenItsCombinations) {
    PollLoop loop;
    const auto printer = PrinterOnPty("R7G?baud=19200");
    Stack first(loop, printer->Address());
    Stack other(loop, printer->Address());
    int opened = 0;
    const auto tryToOpen = [&](std::string& text, std::int16_t&, bool&) {
        if (!text.starts_with("Searching")) return;
        EXPECT_FALSE(first.mSerial.PortOpen()) << "the first has let it go at this moment";
        opened += NumberRaisedBy([&] { other.mSerial.SetPortOpen(true); }) == 0 ? 1 : 0;
        other.mSerial.SetPortOpen(false);
    };
    const Subscription status = first.mLink.StatusEvent.Connect(tryToOpen);
    EXPECT_TRUE(first.mLink.AutoConnect(1));
    EXPECT_EQ(opened, 0);
    EXPECT_TRUE(other.mLink.AutoConnect(1)) << "when the first is over";
}

} // namespace
} // namespace qncomm::testing
