#include "SearchFixture.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class SearchFailure : public SearchFixture {
  protected:
    /// Cancels when a status text begins so.
    void CancelAt(std::string start) {
        mOnStatus = [start](const std::string& text, bool& cancel) {
            cancel = text.starts_with(start);
        };
    }

    /// The port as it was before: settings, port number, handshaking, closed, sink on, mark off.
    void ExpectPutBack() {
        EXPECT_EQ(mSerial.PortNumber(), 1);
        EXPECT_EQ(mSerial.PortSettings(), "19200,N,8,2");
        EXPECT_EQ(mSerial.Handshaking(), 3);
        EXPECT_FALSE(mSerial.PortOpen());
        EXPECT_TRUE(mSerial.HasSink());
        EXPECT_EQ(mSerial.ReceiveThreshold(), 1);
        EXPECT_EQ(mSerial.Tag(), "");
        EXPECT_EQ(mLink.SettingsText(), "19200,N,8,2");
        EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
    }

    SearchFailure() { mLink.SetFlowcontrol("3"); }
};

TEST_F(SearchFailure, ASilentLineIsSearchedWholeAndPutBack) {
    mSettingsThatWork = "";
    const std::int64_t start = mLoop.NowMs();
    EXPECT_FALSE(mLink.AutoConnect(2));
    EXPECT_EQ(mMessages.size(), 30U);
    EXPECT_EQ(mMessages[28], "Searching... 2400,n,7,1 84");
    EXPECT_EQ(mMessages[29], "No Printer found 100");
    EXPECT_LE(mLoop.NowMs() - start, 100 + 28 * 51);
    EXPECT_FALSE(mLink.ImmediateMode());
    ExpectPutBack();
    EXPECT_EQ(mSettings->ReadValue("AutoConnctSettings", "Baud1", ""), "9600")
        << "a failed search saves too";
}

TEST_F(SearchFailure, WithoutDsrNoProbeIsSent) {
    mLink.SetDSRDetectActive(true);
    mSerial.mDsr = false;
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mSerial.mSent, "");
    EXPECT_THAT(mMessages, ElementsAre("AutoConnect initiate 0", "No Printer found 100"));
    ExpectPutBack();
}

TEST_F(SearchFailure, APortThatDoesNotOpenCostsNoTime) {
    mSerial.mOnOpen = [] { throw QNError(SerialErrNoSuchPort, "PDQComm", "com1: is not there"); };
    const std::int64_t start = mLoop.NowMs();
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mLoop.NowMs(), start);
    EXPECT_EQ(mMessages.size(), 30U);
    EXPECT_THAT(mDesktop.mLog, ElementsAre("com1: is not there"));
    ExpectPutBack();
}

TEST_F(SearchFailure, ACombinationThePortRefusesIsSkipped) {
    mSerial.mOnOpen = [this] {
        if (mSerial.PortSettings().find('m') != std::string::npos)
            throw QNError(SerialErrDevice, "PDQComm", "no");
    };
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(mTried.size(), 7U);
}

TEST_F(SearchFailure, WhoeverBabblesInsteadOfASetupIsNoPrinter) {
    mItemTakes = 100;
    mSetup.assign(10'000, "label printed");
    const std::int64_t start = mLoop.NowMs();
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_LE(mLoop.NowMs() - start, 4000) << "ten lines that are no items are enough";
    mSettingsThatWork = "9600,n,8,2";
    mSetup.assign(10'000, "an item,without end");
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_LE(mLoop.NowMs() - start, 300'000);
    ExpectPutBack();
}

TEST_F(SearchFailure, HelloWithoutOkDoesNotCount) {
    mSaysOk = false;
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_THAT(mMessages, Not(Contains(HasSubstr("Reading"))));
    ExpectPutBack();
}

TEST_F(SearchFailure, AnOkBeforeHelloDoesNotCount) {
    mSerial.OnSend([this](std::string& sent) {
        sent.clear();
        mSerial.Arrive("Ok\r\nHELLO\r\n", 5);
    });
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_THAT(mMessages, Not(Contains(HasSubstr("Reading"))));
}

TEST_F(SearchFailure, TheCommonEndRunsWhenTheFirstEventCancels) {
    CancelAt("AutoConnect initiate");
    mLink.SetTerminalActive(true);
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_THAT(mMessages, ElementsAre("AutoConnect initiate 0"));
    EXPECT_TRUE(mSerial.PortOpen());
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
    EXPECT_EQ(mSerial.Tag(), "");
    EXPECT_EQ(mSettings->ReadValue("Settings", "Baudrate", ""), "19200");
}

TEST_F(SearchFailure, ALaterCancelPutsEverythingBack) {
    CancelAt("Searching... 9600,n,7,1");
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mMessages.back(), "No Printer found 100");
    ExpectPutBack();
}

TEST_F(SearchFailure, ACancelBeforeTheSetupIsReadPutsEverythingBack) {
    CancelAt("Reading");
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mMessages.back(), "No Printer found 100");
    ExpectPutBack();
}

TEST_F(SearchFailure, AnErrorOfAHandlerIsTrapped) {
    mOnStatus = [](const std::string& text, bool&) {
        if (text.starts_with("Searching... 19200")) throw QNError(5, "host", "handler");
    };
    EXPECT_FALSE(mLink.AutoConnect(1));
    ExpectPutBack();
}

TEST_F(SearchFailure, TheEndOfTheProgramPutsEverythingBackToo) {
    mOnStatus = [](const std::string& text, bool&) {
        if (text.starts_with("Searching... 19200")) throw OperationCancelled();
    };
    EXPECT_THROW(mLink.AutoConnect(1), OperationCancelled);
    ExpectPutBack();
}

TEST_F(SearchFailure, TearDownFromAHandlerEndsTheSearch) {
    mOnStatus = [this](const std::string& text, bool&) {
        if (text.starts_with("Searching... 19200")) mLink.TearDown();
    };
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_FALSE(mSerial.HasSink());
    EXPECT_FALSE(mSerial.mKeepsPort);
}

class BadSetup : public SearchFailure, public ::testing::WithParamInterface<const char*> {};

TEST_P(BadSetup, LeavesTheSettingsUnchanged) {
    const std::string change = GetParam();
    const std::size_t item = change.rfind(',');
    if (change.starts_with('+'))
        mSetup.push_back(change.substr(1));
    else
        for (std::string& line : mSetup)
            if (line.starts_with(change.substr(0, item)))
                line = change.substr(item + 1).empty() ? "gone" : change;
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mMessages.back(), "No Printer found 100");
    ExpectPutBack();
    EXPECT_EQ(mLink.AutoConnectBaudrates().Item(1), "9600");
}

INSTANTIATE_TEST_SUITE_P(Lines, BadSetup,
                         ::testing::Values("UART1,BAUDRATE,", "UART1,PARITY,", "UART1,CHAR LENGTH,",
                                           "UART1,STOPBITS,", "UART1,BAUDRATE,230400",
                                           "UART1,STOPBITS,3", "UART1,PARITY,X",
                                           "UART1,BAUDRATE,9E999", "+UART1,BAUDRATE,57600"));

TEST_F(SearchFailure, AnotherChannelsItemsDoNotCount) {
    mSetup = SetupOf("UART2");
    EXPECT_FALSE(mLink.AutoConnect(1));
    ExpectPutBack();
}

TEST_F(SearchFailure, ADeviceThatNeverStopsTalkingDoesNotHangTheSearch) {
    mSettingsThatWork = "";
    for (int i = 0; i < 60'000; ++i)
        mSerial.Arrive("x", i * 5);
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_EQ(mMessages.back(), "No Printer found 100");
}

/// What a line carries without end: so many ms between pieces of it.
struct Chatter {
    const char* name;
    const char* piece;
    std::int32_t everyMs;
};

class TalkingLine : public SearchFailure, public ::testing::WithParamInterface<Chatter> {};

TEST_P(TalkingLine, NoCombinationLastsLongerThanItsStatedWaits) {
    constexpr std::int32_t minute = 60'000;
    for (std::int32_t at = 0; at < minute; at += GetParam().everyMs)
        mSerial.Arrive(GetParam().piece, at);
    mSettingsThatWork = "";
    std::vector<std::int64_t> times;
    mOnStatus = [&](const std::string& text, bool&) {
        if (text.starts_with("Searching") || text.starts_with("No Printer"))
            times.push_back(mLoop.NowMs());
    };
    EXPECT_FALSE(mLink.AutoConnect(1));
    ASSERT_EQ(times.size(), 29U);
    for (std::size_t i = 1; i < times.size(); ++i)
        EXPECT_LE(times[i] - times[i - 1], 51) << mMessages[i];
}

INSTANTIATE_TEST_SUITE_P(Lines, TalkingLine,
                         ::testing::Values(Chatter{"AProgramThatPrints", "42\r\n", 5},
                                           Chatter{"Noise", "\xFE\xF8\x80", 7},
                                           Chatter{"EmptyLines", "\r\n", 5},
                                           Chatter{"TheWordThatIsAskedFor", "HELLO\r\n", 20}),
                         [](const auto& chatter) { return std::string(chatter.param.name); });

TEST_F(SearchFailure, AProgramThatEchoesAndPrintsOnHasTheTimeOfAnAnswerOnTheLine) {
    mSettingsThatWork = "";
    mSerial.OnSend([this](std::string& sent) {
        mSerial.Arrive(std::exchange(sent, {}) + "\nARTICLE MISSING\r\n", 5);
    });
    for (std::int32_t at = 0; at < 60'000; at += 20)
        mSerial.Arrive("7", at);
    const std::int64_t start = mLoop.NowMs();
    EXPECT_FALSE(mLink.AutoConnect(1));
    EXPECT_LE(mLoop.NowMs() - start, 3000 + 28 * 50 + 4 * 1600);
}

TEST_F(SearchFailure, AnAnswerBehindNoiseCounts) {
    mSettingsThatWork = "";
    mSerial.OnSend([this](std::string& sent) {
        if (mSerial.PortSettings() == "9600,m,8,2") {
            mSerial.Arrive("\xFE", 2);
            mSerial.Arrive(sent.substr(2, 20), 30);
            mSerial.Arrive("\xF8\nHELLO\r\nOk\r\n", 75);
        }
        sent.clear();
    });
    mLink.AutoConnect(1);
    EXPECT_THAT(mMessages, Contains("Reading Printer Setup 3"));
}

TEST_F(SearchFailure, AnAnswerBehindTheRefusalOfEarlierNoiseCounts) {
    mSettingsThatWork = "";
    mSerial.OnSend([this](std::string& sent) {
        if (mSerial.PortSettings() == "2400,n,8,2") {
            const std::string reply =
                "\r\nError 19: Syntax error\r\nOk\r\n" + sent.substr(2) + "\nHELLO\r\nOk\r\n";
            std::int32_t at = 9;
            for (const char c : reply)
                mSerial.Arrive(std::string(1, c), at += 5);
        }
        sent.clear();
    });
    mLink.AutoConnect(1);
    EXPECT_THAT(mMessages, Contains("Reading Printer Setup 78"));
}

TEST_F(SearchFailure, ALineThatFallsSilentIsWaitedFor) {
    for (int i = 0; i < 10; ++i)
        mSerial.Arrive("boot text", i * 80);
    mSettingsThatWork = "9600,m,8,2";
    EXPECT_TRUE(mLink.AutoConnect(1));
}

} // namespace
} // namespace qncomm::testing
