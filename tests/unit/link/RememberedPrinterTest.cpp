#include "SearchFixture.h"
#include "common/RuntimeErrors.h"
#include "common/modErrorHandling.h"

#include <map>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* Section = "Connection /dev/ttyUSB0";
constexpr const char* Greeting =
    "IMMEDIATE ON:SYSVAR(18)=-1:SYSVAR(19)=2:OPEN\"UART2:\" FOR OUTPUT AS #68:"
    "PRINT#68,VERSION$(0):PRINT#68,VERSION$(1):CLOSE68";
constexpr std::int32_t ListenMs = 6; ///< more than five have passed
constexpr std::int32_t EchoMs = 102; ///< more than 100, and nine bytes at 57600

/// What the host says; there before the link asks.
struct HostFacts {
    std::map<std::int16_t, std::string> mAddresses{{1, "/dev/ttyUSB0"}, {2, "/dev/ttyUSB1"}};
    std::string mTime = "2026-11-22T09:59:59Z";
};

/// A link that remembers, on a port whose printer answers at 57600,n,8,2 through its UART2.
class RememberedPrinter : protected HostFacts, public SearchFixture {
  protected:
    RememberedPrinter()
        : SearchFixture({.remembered = true,
                         .addressOf = [this](std::int16_t port) { return mAddresses[port]; },
                         .timeOfDay = [this] { return mTime; }}) {
        mSerial.mValidPorts = {1, 2};
        mChannel = 2;
        mSetup = SetupOf("UART2");
    }

    /// The store of a program that has met the printer, as the next program loads it.
    void Remember() {
        const std::pair<const char*, const char*> values[] = {
            {"Baudrate", "57600"}, {"Parity", "None"},   {"Databits", "8"},
            {"Stopbits", "2"},     {"FlowControl", "0"}, {"Channel", "2"},
            {"Model", "R7A"},      {"Firmware", "1.0"},  {"Answered", "2026-11-22T09:45:10Z"}};
        for (const auto& [key, value] : values)
            mSettings->WriteValue(Section, key, value);
        mLink.SetRegSettings(mSettings);
        TakeLog();
    }
    std::string Kept(std::string_view key, std::string_view section = Section) const {
        return mSettings->ReadValue(section, key, "");
    }
    /// The first claim of a program; how long it has taken.
    std::int64_t FirstClaim() {
        const std::int64_t start = mLoop.NowMs();
        mMet = static_cast<bool>(mLink.AcquirePort());
        return mLoop.NowMs() - start;
    }

    bool mMet = false;
};

TEST_F(RememberedPrinter, IsKeptWholeOnceItWasFoundAndSaidWhoItIs) {
    ASSERT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(Kept("Model"), "");
    EXPECT_EQ(mLink.ModelText(), "R7A");
    for (const auto& [key, value] : {std::pair{"Baudrate", "57600"},
                                     {"Parity", "None"},
                                     {"Databits", "8"},
                                     {"Stopbits", "2"},
                                     {"FlowControl", "0"},
                                     {"Channel", "2"},
                                     {"Model", "R7A"},
                                     {"Firmware", "1.0"},
                                     {"Answered", "2026-11-22T09:59:59Z"}})
        EXPECT_EQ(Kept(key), value) << key;
}

TEST_F(RememberedPrinter, ChangesTheSearchOfNoOtherPort) {
    const Lines rates{mLink.AutoConnectBaudrates().begin(), mLink.AutoConnectBaudrates().end()};
    const Lines formats{mLink.FrameFormats().begin(), mLink.FrameFormats().end()};
    ASSERT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(Kept("Baud1", "AutoConnctSettings"), "9600");
    mTried.clear();
    ASSERT_TRUE(mLink.AutoConnect(2));
    EXPECT_EQ(mTried.front(), "9600,m,8,2");
    EXPECT_EQ(Kept("Channel", "Connection /dev/ttyUSB1"), "2");
    EXPECT_EQ(Lines(mLink.AutoConnectBaudrates().begin(), mLink.AutoConnectBaudrates().end()),
              rates);
    EXPECT_EQ(Lines(mLink.FrameFormats().begin(), mLink.FrameFormats().end()), formats);
}

TEST_F(RememberedPrinter, IsMetByOneLineAtItsSettings) {
    Remember();
    EXPECT_EQ(FirstClaim(), ListenMs + mAnswersAfter);
    EXPECT_TRUE(mMet);
    EXPECT_EQ(mSerial.mSent, Greeting + std::string("\r\n"));
    EXPECT_THAT(TakeLog(), ElementsAre("Open", "Mode 0", "Close", "Mode 0"));
    EXPECT_THAT(mMessages, ElementsAre("Printer connected through UART2: at 57600, None, 8, 2, No "
                                       "Flowcontrol 100"));
    EXPECT_TRUE(mLink.ImmediateMode());
    EXPECT_EQ(mLink.Stdio(), 2);
    EXPECT_EQ(mLink.ModelText(), "R7A");
    EXPECT_EQ(mLink.VersionText(), "1.0");
    EXPECT_THAT(mHeard, ElementsAre(Greeting)) << "nothing more was asked";
}

TEST_F(RememberedPrinter, IsAskedAsUsualByTheNextClaim) {
    Remember();
    FirstClaim();
    FirstClaim();
    EXPECT_TRUE(mMet);
    EXPECT_THAT(mHeard, ElementsAre(Greeting, StartsWith("PRINT SYSVAR(18)")));
}

TEST_F(RememberedPrinter, ThatHasOtherSettingsIsSearchedForAndThatIsSaid) {
    Remember();
    mSettingsThatWork = "9600,n,8,2";
    mSetup.front() = "UART2,BAUDRATE,9600";
    const std::int64_t whole = FirstClaim();
    EXPECT_TRUE(mMet);
    EXPECT_THAT(mMessages, Contains("The remembered settings 57600,n,8,2 were not answered. "
                                    "Searching... 0"));
    EXPECT_EQ(Kept("Model"), "") << "it may be another one";
    EXPECT_EQ(mLink.Stdio(), 2);

    mLink.SetImmediateMode(false);
    const std::int64_t start = mLoop.NowMs();
    EXPECT_TRUE(mLink.AutoConnect(1));
    const std::int64_t handshake = mAnswersAfter;
    EXPECT_EQ(whole - (mLoop.NowMs() - start) - handshake, ListenMs + EchoMs);
}

TEST_F(RememberedPrinter, IsNotSpokenToWhileSomethingSpeaks) {
    Remember();
    mSerial.Arrive("42\r\n", 3);
    FirstClaim();
    EXPECT_THAT(mSerial.mSent, StartsWith("\x11\rIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r"));
    EXPECT_THAT(mMessages, Contains("Something speaks at the remembered settings 57600,n,8,2. "
                                    "Searching... 0"));
}

TEST_F(RememberedPrinter, IsToldFromAnotherOneByModelAndFirmware) {
    for (const char* version : {"1.0\r\nR7B\r\n", "1.1\r\nR7A\r\n"}) {
        Remember();
        mMessages.clear();
        mVersion = version;
        FirstClaim();
        EXPECT_TRUE(mMet) << version;
        EXPECT_THAT(mMessages, Contains("Another printer answers at the remembered settings "
                                        "57600,n,8,2. Searching... 0"))
            << version;
        EXPECT_EQ(Kept("Model"), "") << version;
        EXPECT_EQ(Kept("Firmware"), "") << version;
    }
    mVersion = "1.1\r\nR7B\r\n";
    EXPECT_EQ(mLink.ModelText(), "R7B");
    EXPECT_EQ(Kept("Model"), "R7B");
    EXPECT_EQ(Kept("Firmware"), "1.1");
}

TEST_F(RememberedPrinter, OnAnotherChannelIsLearntAnew) {
    Remember();
    mChannel = 1;
    mSetup = SetupOf("UART1");
    FirstClaim();
    EXPECT_TRUE(mMet);
    EXPECT_THAT(mMessages, Contains("Another channel answers at the remembered settings "
                                    "57600,n,8,2. Searching... 0"));
    EXPECT_EQ(mLink.Stdio(), 1);
    EXPECT_EQ(Kept("Channel"), "1");
}

TEST_F(RememberedPrinter, OfWhichOnlyTheSettingsAreKnownSaysWhoItIs) {
    Remember();
    mSettings->WriteValue(Section, "Model", "");
    mSettings->WriteValue(Section, "Firmware", "");
    FirstClaim();
    EXPECT_THAT(mHeard, ElementsAre(Greeting));
    EXPECT_EQ(Kept("Model"), "R7A");
    EXPECT_EQ(Kept("Firmware"), "1.0");
}

TEST_F(RememberedPrinter, WhoseInputLineWasNotEmptyIsGreetedOnceMore) {
    Remember();
    mSerial.OnSend({});
    const std::string line = std::string(Greeting) + "\r\n";
    mSerial.Expect(line)
        .Reply("PRINT 1:PF" + line + "Error 1: Syntax error\r\nOk\r\n", 10)
        .Expect(line)
        .Reply(line + "1.0\r\nR7A\r\nOk\r\n", 10);
    EXPECT_EQ(FirstClaim(), ListenMs + 20);
    EXPECT_TRUE(mMet);
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(RememberedPrinter, IsWaitedForOnceItHasBegunToEcho) {
    Remember();
    mSerial.OnSend({});
    mSerial.Expect(std::string(Greeting) + "\r\n")
        .Reply("IMMEDIATE", 90)
        .Reply(std::string(Greeting).substr(9) + "\r\n1.0\r\n", 900)
        .Reply("R7A\r\nOk\r\n", 900);
    EXPECT_EQ(FirstClaim(), ListenMs + 1890);
    EXPECT_TRUE(mMet);
}

TEST_F(RememberedPrinter, IsNotSearchedForWhenThePersonSaysSo) {
    Remember();
    mSettingsThatWork = "9600,n,8,2";
    mOnStatus = [](const std::string& text, bool& cancel) {
        cancel = text.ends_with("Searching...");
    };
    FirstClaim();
    EXPECT_FALSE(mMet);
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_THAT(mMessages, ElementsAre(HasSubstr("were not answered")));
}

TEST_F(RememberedPrinter, AnswersAreNotedByTheHour) {
    Remember();
    FirstClaim();
    EXPECT_EQ(Kept("Answered"), "2026-11-22T09:45:10Z");
    mLink.SetImmediateMode(false);
    mTime = "2026-11-22T10:00:00Z";
    FirstClaim();
    EXPECT_EQ(Kept("Answered"), "2026-11-22T10:00:00Z");
}

TEST_F(RememberedPrinter, OfAnotherPortIsRecalledWithItsSettings) {
    Remember();
    mSettings->WriteValue("Connection /dev/ttyUSB1", "Channel", "1");
    mSettings->WriteValue("Connection /dev/ttyUSB1", "Baudrate", "2400");
    mSettings->WriteValue("Connection /dev/ttyUSB1", "Parity", "Even");
    mSettings->WriteValue("Connection /dev/ttyUSB1", "Databits", "7");
    mSettings->WriteValue("Connection /dev/ttyUSB1", "Stopbits", "1");
    mSettings->WriteValue("Connection /dev/ttyUSB1", "FlowControl", "0");
    mSettingsThatWork = "2400,e,7,1";
    mChannel = 1;
    mLink.SetCommport("2");
    mLink.ApplyCommSettings();
    FirstClaim();
    EXPECT_TRUE(mMet);
    EXPECT_EQ(mLink.SettingsText(), "2400,E,7,1");
    EXPECT_THAT(mMessages, Not(Contains(HasSubstr("Searching"))));
}

TEST_F(RememberedPrinter, WithoutAnAddressBelongsToThePortsNumber) {
    mAddresses.clear();
    ASSERT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(Kept("Channel", "Connection COM1"), "2");
}

TEST_F(RememberedPrinter, IsUsedAllTheSameWhenTheStoreTakesNothing) {
    struct FullStore : MemorySettings {
        void WriteValue(std::string_view, std::string_view, std::string_view) override {
            RaiseRuntimeError(RtDiskFull, "FullStore");
        }
    };
    mLink.SetRegSettings(std::make_shared<FullStore>());
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_THAT(mDesktop.mLog, Contains(RuntimeErrorText(RtDiskFull)));
}

} // namespace
} // namespace qncomm::testing
