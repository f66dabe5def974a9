// The search for a host that wants the line heard before anything is typed.

#include "SearchFixture.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class ListenFirst : public SearchFixture {
  protected:
    ListenFirst() : SearchFixture({.listen = true}) {}

    /// The line says that again and again, for a minute, to whoever listens at those settings;
    /// noise to all others.
    void Talk(const std::string& text, const std::string& settings, std::int32_t everyMs) {
        mTalker = mLoop.StartTimer(everyMs, [this, text, settings] {
            const bool readable = EqualNoCase(mSerial.PortSettings(), settings);
            mSerial.Arrive(readable ? text : "\xFE\xF8\x80\xC0");
            if (!readable) ++mSerial.mLineErrors;
        });
    }

    /// Nothing was sent, and the port is as it was.
    void ExpectLeftAlone() {
        EXPECT_EQ(mSerial.mSent, "");
        EXPECT_EQ(mLink.LastSearch().end, SearchEnd::LineTalks);
        EXPECT_EQ(mSerial.PortSettings(), "19200,N,8,2");
        EXPECT_FALSE(mSerial.PortOpen());
        EXPECT_TRUE(mSerial.HasSink());
        EXPECT_FALSE(mLink.ImmediateMode());
    }

    std::unique_ptr<RunningTimer> mTalker;
    int mProbes = 0;
};

TEST_F(ListenFirst, ARunningProgramIsNamedAndNothingIsSent) {
    Talk("42\r\n", "19200,n,8,2", 20);
    EXPECT_FALSE(mLink.AutoConnect(1));
    ExpectLeftAlone();
    EXPECT_EQ(SentenceFor(mLink.LastSearch()), "a program is running; it says: 42");
    EXPECT_EQ(mLink.LastSearch().settings, "19200,n,8,2");
    EXPECT_THAT(mMessages, ElementsAre("AutoConnect initiate 0",
                                       "Nothing was sent: a program is running; it says: 42 100"));
}

TEST_F(ListenFirst, AClaimIsRefused) {
    Talk("42\r\n", "19200,n,8,2", 20);
    EXPECT_FALSE(mLink.AcquirePort());
    ExpectLeftAlone();
    EXPECT_EQ(mLink.UseCount(), 0);
}

TEST_F(ListenFirst, AProgramThatAsksIsGivenNothing) {
    mSerial.Arrive("Article? ", 30);
    EXPECT_FALSE(mLink.AutoConnect(1));
    ExpectLeftAlone();
    EXPECT_EQ(mLink.LastSearch().heard.talk, LineTalk::Question);
    EXPECT_EQ(mLink.LastSearch().heard.sample, "Article? ");
}

TEST_F(ListenFirst, AReceiverThatWaitsIsGivenNothing) {
    mSerial.Arrive("\x01# N3\r", 30);
    EXPECT_FALSE(mLink.AutoConnect(1));
    ExpectLeftAlone();
    EXPECT_EQ(mLink.LastSearch().heard.talk, LineTalk::KermitReceiver);
}

TEST_F(ListenFirst, AProgramAtAnotherRateIsReadThere) {
    Talk("Label 7 printed\r\n", "38400,n,8,2", 10);
    EXPECT_FALSE(mLink.AutoConnect(1));
    ExpectLeftAlone();
    EXPECT_EQ(mLink.LastSearch().settings, "38400,n,8,2");
    EXPECT_EQ(SentenceFor(mLink.LastSearch()), "a program is running; it says: Label 7 printed");
}

TEST_F(ListenFirst, AProgramOfAnotherParityIsReadThere) {
    Talk("Label 7 printed\r\n", "9600,e,7,2", 10);
    EXPECT_FALSE(mLink.AutoConnect(1));
    ExpectLeftAlone();
    EXPECT_EQ(mLink.LastSearch().settings, "9600,e,7,2");
}

TEST_F(ListenFirst, WhatAnAdapterKeptFromOtherSettingsIsNoSignOfAnotherFormat) {
    std::string noise;
    while (noise.size() < 4096)
        noise += "\xFE\xF8\x80\xC0";
    mTalker = mLoop.StartTimer(1, [this, noise, at = std::string(), kept = 0]() mutable {
        if (at != mSerial.PortSettings()) kept = 3;
        at = mSerial.PortSettings();
        const bool readable = EqualNoCase(at, "19200,n,8,2") && --kept < 0;
        mSerial.Arrive(readable ? "42\r\n" : noise);
    });
    EXPECT_FALSE(mLink.AutoConnect(1));
    ExpectLeftAlone();
    EXPECT_EQ(mLink.LastSearch().settings, "19200,n,8,2");
    EXPECT_EQ(SentenceFor(mLink.LastSearch()), "a program is running; it says: 42");
}

TEST_F(ListenFirst, NoiseThatNothingReadsIsTold) {
    Talk("", "none", 10);
    const std::int64_t start = mLoop.NowMs();
    EXPECT_FALSE(mLink.AutoConnect(1));
    ExpectLeftAlone();
    EXPECT_EQ(mLink.LastSearch().heard.talk, LineTalk::Noise);
    EXPECT_LE(mLoop.NowMs() - start, 5000);
}

TEST_F(ListenFirst, ASilentLineIsSearchedAsEver) {
    const std::int64_t start = mLoop.NowMs();
    mSettingsThatWork = "";
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_LE(mLoop.NowMs() - start, 100 + 28 * 51 + 1);
    EXPECT_EQ(mTried.size(), 28U);
    EXPECT_EQ(mLink.LastSearch().end, SearchEnd::Unanswered);
    EXPECT_EQ(SentenceFor(mLink.LastSearch()), "no printer answered");
}

TEST_F(ListenFirst, APrinterThatSaysItsPromptIsSpokenTo) {
    mSerial.Arrive("42\r\nOk\r\n", 30);
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(mLink.LastSearch().end, SearchEnd::Found);
    EXPECT_EQ(SentenceFor(mLink.LastSearch()), "");
}

TEST_F(ListenFirst, OneByteOfNoiseKeepsNobodyFromSearching) {
    mSerial.Arrive("\xFF", 1);
    EXPECT_TRUE(mLink.AutoConnect(1));
}

TEST_F(ListenFirst, NoiseIsAnsweredByASecondPassOfParitiesAtItsRates) {
    mSettingsThatWork = "38400,o,7,2";
    AnswerWithNoiseAt("38400");
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(Lines(mTried.begin() + 28, mTried.end()), (Lines{"38400,e,7,2", "38400,o,7,2"}));
    EXPECT_THAT(mMessages, Contains("Searching... 38400,o,7,2 90"));
    EXPECT_EQ(mLink.LastSearch().end, SearchEnd::Found);
}

TEST_F(ListenFirst, NoiseThatNoParityCuresIsTold) {
    mSettingsThatWork = "";
    AnswerWithNoiseAt("38400");
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mTried.size(), 28U + 6U);
    EXPECT_THAT(SentenceFor(mLink.LastSearch()), HasSubstr("is no text at any rate"));
    EXPECT_THAT(mLink.LastSearch().settings, StartsWith("38400,"));
    EXPECT_EQ(mMessages.back(), "No Printer found 100");
}

TEST_F(ListenFirst, ALineThatReturnsWhatIsSentIsTold) {
    mSerial.OnSend([this](std::string& sent) {
        ++mProbes;
        mSerial.Arrive(std::exchange(sent, {}), 1);
    });
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mLink.LastSearch().heard.talk, LineTalk::Echo);
    EXPECT_THAT(SentenceFor(mLink.LastSearch()), StartsWith("the line returns what is sent"));
    EXPECT_EQ(mLink.LastSearch().settings, "9600,m,8,2");
    EXPECT_EQ(mLink.LastSearch().end, SearchEnd::Taken);
    EXPECT_EQ(mProbes, 1) << "not even at the next format";
    EXPECT_THAT(mMessages.back(), StartsWith("Only one line was sent: the line returns"));
}

TEST_F(ListenFirst, AProgramThatTakesTheProbeIsGivenNoOther) {
    mSerial.OnSend([this](std::string& sent) {
        const std::string echo = sent.substr(2, sent.size() - 3);
        mSerial.Arrive("\r\nArticle? " + echo + "\r\nArticle? ", 1);
        mProbes += static_cast<int>(sent.size() > 0);
        sent.clear();
    });
    EXPECT_FALSE(mLink.AcquirePort());
    EXPECT_EQ(mProbes, 1);
    EXPECT_EQ(mLink.LastSearch().end, SearchEnd::Taken);
    EXPECT_EQ(Explain(mLink.LastSearch(), "COM1"),
              "Only one line was sent to COM1: a program is running; it asks and waits: Article?");
}

TEST_F(ListenFirst, APrinterThatEchoesAndAnswersLateIsFound) {
    mSettingsThatWork = "";
    mSerial.OnSend([this](std::string& sent) {
        if (mProbes++ == 0) {
            mSerial.Arrive("\r\n" + sent.substr(2, sent.size() - 3) + "\r\n", 1);
            mSerial.Arrive("HELLO\r\nOk\r\n", 700);
        }
        sent.clear();
    });
    mLink.AutoConnect(1);
    EXPECT_THAT(mMessages, Contains("Reading Printer Setup 3"));
}

TEST_F(ListenFirst, ACancelledSearchTellsNothing) {
    mOnStatus = [](const std::string& text, bool& cancel) {
        cancel = text.starts_with("Searching... 19200");
    };
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mLink.LastSearch().end, SearchEnd::NotSearched);
}

class NoListening : public SearchFixture {};

TEST_F(NoListening, NoiseIsNotAnsweredByASecondPass) {
    mSettingsThatWork = "38400,o,7,2";
    AnswerWithNoiseAt("38400");
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mTried.size(), 28U);
}

TEST_F(NoListening, TheLineIsSpokenToWhateverItSays) {
    mSerial.Arrive("Article? ", 30);
    EXPECT_TRUE(mLink.AutoConnect(1));
}

} // namespace
} // namespace qncomm::testing
