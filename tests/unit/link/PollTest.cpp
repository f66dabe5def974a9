#include "LinkFixture.h"

#include "common/Numbers.h"

#include <string>

namespace qncomm::testing {
namespace {

constexpr std::string_view AskedNow = "PRINT 0\r\n";
constexpr std::int64_t HourMs = 3'600'000;

/// A link that polls, with the terminal shown and a printer that answers from its prompt.
class Polls : public LinkFixture {
  protected:
    explicit Polls(LinkOptions options = {.polled = true}) : LinkFixture(std::move(options)) {
        mSerial.OnSend([this](std::string& sent) {
            if (sent == AskedNow && mAnswers) mSerial.Arrive("PRINT 0\r\n0\r\nOk\r\n", 30);
            mAsked += sent == AskedNow ? 1 : 0;
            sent.clear();
        });
        mLink.SetBaudrate("9600");
        mLink.SetTerminalActive(true);
        mSerial.Arrive("Ok\r\n");
        Pass(1);
        mSerial.mTerminalText.clear();
        mChanges =
            mLink.LiveStateEvent.Connect([this](std::int16_t, std::int16_t printer, std::int32_t) {
                mTold.emplace_back(WordFor(static_cast<enumPrinterActivity>(printer)));
            });
    }

    void Pass(std::int64_t ms) {
        for (const std::int64_t until = mLoop.NowMs() + ms; mLoop.NowMs() < until;)
            mLoop.Yield(static_cast<std::int32_t>(until - mLoop.NowMs()));
    }
    std::string Printer() const { return std::string(WordFor(mLink.Live().printer.value)); }

    bool mAnswers = true;
    int mAsked = 0;
    Lines mTold;
    Subscription mChanges;
};

class NoPolls : public Polls {
  protected:
    NoPolls() : Polls(LinkOptions{}) {}
};

TEST_F(NoPolls, ByDefaultNothingIsAsked) {
    Pass(HourMs);
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(Polls, ProveThePromptAndTheTerminalShowsNothingOfIt) {
    Pass(60'000);
    EXPECT_GE(mAsked, 10);
    EXPECT_EQ(Printer(), "at prompt");
    EXPECT_EQ(mLink.Live().printer.from, LearntReply);
    EXPECT_LE(mLoop.NowMs() - mLink.Live().printer.at, 5000);
    EXPECT_THAT(mTold, IsEmpty()) << "what is only proven once more is no change";
    EXPECT_EQ(mSerial.mTerminalText, "");
}

TEST_F(Polls, TakeAHundredthOfTheLineAtTheMostAtEveryRate) {
    constexpr double bytesOfOne = 9 + 16; // both ways
    for (const char* rate : {"300", "2400", "9600", "115200"}) {
        mLink.SetBaudrate(rate);
        mLink.SetTerminalActive(false);
        mLink.SetTerminalActive(true);
        mSerial.Arrive("Ok\r\n");
        Pass(1);
        mAsked = 0;
        Pass(HourMs);
        const double capacity = Val(rate) / 11 * HourMs / 1000;
        const double share = mAsked * bytesOfOne / capacity;
        EXPECT_LE(share, 0.01) << rate;
        const double least = mAsked < HourMs / 1000 - 10 ? 0.008 : 0; // not more than once a second
        EXPECT_GE(share, least) << rate;
        EXPECT_GT(mAsked, 10) << rate;
    }
}

TEST_F(Polls, TellOfAPrinterThatFallsSilentAndLeaveItAloneThen) {
    mAnswers = false;
    Pass(20'000);
    EXPECT_THAT(mTold, ElementsAre("silent"));
    EXPECT_EQ(mLink.Live().printer.from, LearntSilence);
    EXPECT_EQ(mAsked, 1);
    mSerial.Arrive("Ok\r\n"); // by itself
    mAnswers = true;
    Pass(20'000);
    EXPECT_EQ(Printer(), "at prompt");
    EXPECT_GT(mAsked, 1);
}

TEST_F(Polls, NeverDisturbAProgramThatRunsOrALineThatIsTyped) {
    for (const char* text : {"RUN\r\n", "LABEL 1\r\n", "Article? ", "\r\nOk\r\nPRIN"}) {
        mSerial.Arrive(text);
        Pass(60'000);
        EXPECT_EQ(mAsked, 0) << text;
    }
    EXPECT_EQ(mSerial.mTerminalText, "RUN\r\nLABEL 1\r\nArticle? \r\nOk\r\nPRIN");
}

TEST_F(Polls, ShowWhatWasTypedMeanwhile) {
    mSerial.OnSend([this](std::string& sent) {
        if (sent == AskedNow) mSerial.Arrive("PRINT 0\r\n0\r\nOk\r\nFI", 30);
        sent.clear();
    });
    Pass(20'000);
    EXPECT_EQ(mSerial.mTerminalText, "FI");
    EXPECT_EQ(Printer(), "at prompt");
}

TEST_F(Polls, GiveWayToAnOperationWhichReadsNothingOfThem) {
    while (mAsked == 0)
        mLoop.Yield(10);
    mSerial.OnSend(nullptr);
    mSerial.mSent.clear();
    {
        const PortClaim claim = Claim(); // the answer comes into it
        mSerial.Exchange("FRE", {"12"});
        Lines lines;
        mLink.OutputText("FRE\r\n");
        mLink.InputText(lines);
        EXPECT_THAT(lines, ElementsAre("FRE", "12", "Ok"));
        Pass(60'000);
        EXPECT_TRUE(mSerial.ScriptDone());
        EXPECT_EQ(mSerial.mSent.find(AskedNow), std::string::npos);
    }
    EXPECT_EQ(Printer(), "at prompt");
}

TEST_F(Polls, EndWithThePort) {
    mSerial.Vanish();
    Pass(500);
    mLink.SetTerminalActive(false);
    mSerial.mSent.clear();
    Pass(HourMs);
    EXPECT_EQ(mSerial.mSent, "");
}

} // namespace
} // namespace qncomm::testing
