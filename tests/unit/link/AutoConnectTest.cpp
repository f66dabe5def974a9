#include "SearchFixture.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class AutoConnect : public SearchFixture {
  protected:
    Lines Rates() const {
        return {mLink.AutoConnectBaudrates().begin(), mLink.AutoConnectBaudrates().end()};
    }
    Lines Formats() const { return {mLink.FrameFormats().begin(), mLink.FrameFormats().end()}; }
};

TEST_F(AutoConnect, FindsThePrinterOnTheTenthCombination) {
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_THAT(mTried, ElementsAre("9600,m,8,2", "9600,n,8,2", "9600,n,7,2", "9600,n,7,1",
                                    "19200,m,8,2", "19200,n,8,2", "19200,n,7,2", "19200,n,7,1",
                                    "57600,m,8,2", "57600,n,8,2"));
    EXPECT_EQ(mLink.SettingsText(), "57600,N,8,2");
    EXPECT_TRUE(mLink.ImmediateMode());
    EXPECT_EQ(mLink.Stdio(), 1);
}

TEST_F(AutoConnect, KeepsThePortFromItsFirstOpeningToItsEnd) {
    std::vector<bool> kept;
    mSerial.mOnOpen = [&] { kept.push_back(mSerial.mKeepsPort); };
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(kept, std::vector<bool>(11, true)) << "for silence, then for each combination";
    EXPECT_FALSE(mSerial.mKeepsPort);
}

TEST_F(AutoConnect, ReportsEveryStepWithItsProgress) {
    mSettingsThatWork = "9600,n,8,2";
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_THAT(
        mMessages,
        ElementsAre("AutoConnect initiate 0", "Searching... 9600,m,8,2 3",
                    "Searching... 9600,n,8,2 6", "Reading Printer Setup 6",
                    "Printer connected through UART1: at 57600, None, 8, 2, No Flowcontrol 100"));
}

TEST_F(AutoConnect, SendsTheProbeTheChannelLinesAndTheSetupLine) {
    mChannel = 2;
    mSetup = SetupOf("UART2");
    std::string all;
    mSettingsThatWork = "9600,m,8,2";
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(mSerial.mSent, "\x11\rIMMEDIATE ON:SYSVAR(18)=-1:PRINT\"HELLO\"\r"
                             "\rOPEN\"UART1:\" FOR OUTPUT AS #68:PRINT#68,CHR$(61)+\"1\":CLOSE68\r"
                             "\rOPEN\"UART2:\" FOR OUTPUT AS #68:PRINT#68,CHR$(61)+\"2\":CLOSE68\r"
                             "SYSVAR(19)=2:SETUP WRITE \"UART2:\"\r");
    EXPECT_EQ(mLink.Stdio(), 2);
    EXPECT_THAT(mMessages, Contains(HasSubstr("through UART2: at")));
}

TEST_F(AutoConnect, TheThirdChannelIsFoundAndNoMarkerMeansTheFirst) {
    mChannel = 3;
    mSetup = SetupOf("UART3");
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(mLink.Stdio(), 3);
    mChannel = 0;
    mSetup = SetupOf("UART1");
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(mLink.Stdio(), 1);
}

TEST_F(AutoConnect, APrinterThatTakesLongToOpenItsChannelIsFound) {
    for (const std::int32_t ms : {50, 70, 110}) {
        mOpenTakes = ms;
        EXPECT_TRUE(mLink.AutoConnect(1)) << ms;
        EXPECT_EQ(mLink.Stdio(), 1) << ms;
    }
}

TEST_F(AutoConnect, ALongSetupOnASlowLineIsReadToItsEnd) {
    mSetup.clear();
    for (int item = 0; item < 97; ++item)
        mSetup.push_back("MEDIA,ITEM " + std::to_string(item) + ",100");
    for (const std::string& item : SetupOf("UART1"))
        mSetup.push_back(item);
    mItemTakes = 48;
    const std::int64_t start = mLoop.NowMs();
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_GE(mLoop.NowMs() - start, 104 * 48);
}

TEST_F(AutoConnect, FlowControlComesFromTheSetup) {
    struct Case {
        const char* enabled;
        const char* flow;
        const char* suffix;
    };
    for (const Case& c : {Case{",FLOWCONTROL,RTS/CTS", "2", ", RTS/CTS 100"},
                          Case{",FLOWCONTROL,XON/XOFF,DATA FROM HOST", "1", ", Xon/Xoff 100"},
                          Case{",FLOWCONTROL,XON/XOFF,DATA TO HOST", "1", ", Xon/Xoff 100"}}) {
        mSetup = SetupOf("uart1");
        for (std::string& line : mSetup)
            if (line.find(c.enabled) != std::string::npos)
                line = std::string("uart1") + c.enabled + ", enable ";
        EXPECT_TRUE(mLink.AutoConnect(1));
        EXPECT_EQ(mLink.Flowcontrol(), c.flow) << c.enabled;
        EXPECT_THAT(mMessages.back(), HasSubstr(c.suffix));
    }
    mSetup = SetupOf("UART1");
    for (std::string& line : mSetup)
        if (line.ends_with("DISABLE")) line.replace(line.size() - 7, 7, "ENABLE");
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(mLink.Flowcontrol(), "3");
    EXPECT_THAT(mMessages.back(), HasSubstr(", RTS/CTS, Xon/Xoff 100"));
}

TEST_F(AutoConnect, HandshakingLosesXonXoffDuringTheSearch) {
    mLink.SetFlowcontrol("3");
    TakeLog();
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_THAT(mSerial.mLog, Contains("Handshaking 2"));
    EXPECT_EQ(mSerial.Handshaking(), 0) << "what the printer's setup says";
}

TEST_F(AutoConnect, LearnsTheRateForEverAndTheFormatForTheLinksLife) {
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_THAT(Rates(), ElementsAre("57600", "9600", "19200", "115200", "38400", "4800", "2400"));
    EXPECT_THAT(Formats(), ElementsAre("n,8,2", "m,8,2", "n,7,2", "n,7,1"));
    const char* expected[] = {"57600", "9600", "19200", "115200", "38400", "4800", "2400"};
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(mSettings->ReadValue("AutoConnctSettings", "Baud" + std::to_string(i + 1), ""),
                  expected[i]);
    mTried.clear();
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_THAT(mTried, ElementsAre("57600,n,8,2"));
}

TEST_F(AutoConnect, StripsTheEighthBitBeforeLineEndsAreTaken) {
    mSerial.OnSend([this](std::string& sent) {
        sent.clear();
        std::string reply = "\rHELLO\r\nOk\r\n";
        for (char& c : reply)
            c = static_cast<char>(c | 0x80);
        mSerial.Arrive(reply, 5);
    });
    mLink.AutoConnect(1);
    EXPECT_THAT(mMessages, Contains("Reading Printer Setup 3"));
}

TEST_F(AutoConnect, EchoBytesRestartTheSilenceWindow) {
    mSerial.OnSend([this](std::string& sent) {
        if (mSerial.PortSettings() == "9600,m,8,2") {
            int delay = 0;
            for (const char c : sent + "HELLO\r\nOk\r\n")
                mSerial.Arrive(std::string(1, c), delay += 40);
        }
        sent.clear();
    });
    mLink.AutoConnect(1);
    EXPECT_THAT(mMessages, Contains("Reading Printer Setup 3"));
}

TEST_F(AutoConnect, TheLineIsGivenBackAsItWas) {
    mLink.SetTerminalActive(true);
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_TRUE(mSerial.PortOpen());
    EXPECT_EQ(mSerial.ReceiveMode(), ReceiveToTerminal);
    EXPECT_EQ(mSerial.ReceiveThreshold(), 1);
    EXPECT_TRUE(mSerial.HasSink());
    EXPECT_EQ(mSerial.Tag(), "");
    EXPECT_EQ(mPortStates, std::vector{true}) << "the search's own opening raises no event";
    EXPECT_EQ(mSerial.mTerminalText, "");
}

TEST_F(AutoConnect, ThePointerIsBusyMeanwhileAndRestored) {
    mOnStatus = [](const std::string&, bool&) {
        EXPECT_EQ(Pointer::Screen().Shape(), PointerHourglass);
    };
    EXPECT_TRUE(mLink.AutoConnect(1));
    EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault);
}

TEST_F(AutoConnect, NothingReachesTheReceiveBuffer) {
    EXPECT_TRUE(mLink.AutoConnect(1));
    PortClaim claim = mLink.AcquirePort();
    Lines lines;
    EXPECT_RAISED(mLink.InputText(lines, true, 10), 1008);
}

TEST_F(AutoConnect, AClaimSearchesWhenThePrinterIsNotKnown) {
    EXPECT_EQ(mLink.ModelText(), "R7A");
    EXPECT_EQ(mLink.VersionText(), "1.0");
    EXPECT_EQ(mLink.UseCount(), 0);
    EXPECT_EQ(mPortStates, (std::vector{true, false}));
    EXPECT_THAT(mHeard, Contains("PRINT SYSVAR(18):PRINT SYSVAR(19):SYSVAR(18)=-1:SYSVAR(19)=2"));
}

TEST_F(AutoConnect, AnExclusiveClaimKeepsItsMarkThroughTheSearch) {
    {
        const PortClaim claim = mLink.AcquirePort(true);
        EXPECT_TRUE(claim);
        EXPECT_EQ(mSerial.Tag(), "EXCLUSIVE_USE");
    }
    EXPECT_EQ(mSerial.Tag(), "");
}

TEST_F(AutoConnect, TheDialogsSearchKeepsTheDialogsMark) {
    mDialogs.mOnSettings = [this](clsDataLink& link) {
        EXPECT_FALSE(link.AutoConnect(1));
        EXPECT_THAT(mMessages, IsEmpty());
        EXPECT_TRUE(link.AutoConnect(1, true));
        EXPECT_EQ(mSerial.Tag(), "EXCLUSIVE_USE");
        return std::int16_t{1};
    };
    EXPECT_EQ(mLink.ShowSettingsDlg(), 1);
    EXPECT_EQ(mSerial.Tag(), "");
}

TEST_F(AutoConnect, WithoutAStoreTheSearchWorksAndSavesNothing) {
    mLink.SetRegSettings(nullptr);
    EXPECT_TRUE(mLink.AutoConnect(1));
}

TEST_F(AutoConnect, AHandlerMayLoadOtherSettingsMeanwhile) {
    mOnStatus = [this](const std::string& text, bool&) {
        if (!text.starts_with("Searching")) return;
        auto store = std::make_shared<MemorySettings>();
        for (int i = 1; i <= 7; ++i)
            store->WriteValue("AutoConnctSettings", "Baud" + std::to_string(i), "300");
        mLink.SetRegSettings(store);
        mSerial.SetHandshaking(0);
    };
    mLink.AutoConnect(1);
    EXPECT_EQ(mSerial.Tag(), "");
}

} // namespace
} // namespace qncomm::testing
