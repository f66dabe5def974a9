#include "LinkFixture.h"
#include "platform/SystemFiles.h"

#include <algorithm>

namespace qncomm::testing {
namespace {

class PortSettings : public LinkFixture {};

TEST_F(PortSettings, AFreshStoreYieldsTheDefaults) {
    EXPECT_EQ(mLink.Commport(), "1");
    EXPECT_EQ(mLink.Baudrate(), "19200");
    EXPECT_EQ(mLink.Parity(), "None");
    EXPECT_EQ(mLink.Databits(), "8");
    EXPECT_EQ(mLink.Stopbits(), "2");
    EXPECT_EQ(mLink.Flowcontrol(), "0");
    EXPECT_FALSE(mLink.DSRDetectActive());
    EXPECT_THAT(Lines(mLink.AutoConnectBaudrates().begin(), mLink.AutoConnectBaudrates().end()),
                ElementsAre("9600", "19200", "57600", "115200", "38400", "4800", "2400"));
    EXPECT_THAT(Lines(mLink.FrameFormats().begin(), mLink.FrameFormats().end()),
                ElementsAre("m,8,2", "n,8,2", "n,7,2", "n,7,1"));
    EXPECT_EQ(mLink.SettingsText(), "19200,N,8,2");
}

TEST_F(PortSettings, LetsNormaliseTheirText) {
    struct Case {
        void (clsDataLink::*let)(std::string_view);
        const std::string& (clsDataLink::*get)() const;
        const char* given;
        const char* stored;
    };
    const auto baud = [](const char* given, const char* stored) {
        return Case{&clsDataLink::SetBaudrate, &clsDataLink::Baudrate, given, stored};
    };
    const auto parity = [](const char* given, const char* stored) {
        return Case{&clsDataLink::SetParity, &clsDataLink::Parity, given, stored};
    };
    const auto data = [](const char* given, const char* stored) {
        return Case{&clsDataLink::SetDatabits, &clsDataLink::Databits, given, stored};
    };
    const auto stop = [](const char* given, const char* stored) {
        return Case{&clsDataLink::SetStopbits, &clsDataLink::Stopbits, given, stored};
    };
    const auto flow = [](const char* given, const char* stored) {
        return Case{&clsDataLink::SetFlowcontrol, &clsDataLink::Flowcontrol, given, stored};
    };
    const Case cases[] = {
        baud("300", "300"),      baud("115200", "115200"), baud(" 9600", "9600"),
        baud("9600abc", "9600"), baud("9.6E3", "9600"),    baud("", "19200"),
        baud("0", "19200"),      baud("Nada", "19200"),    parity("n", "None"),
        parity("NONE", "None"),  parity("none", "None"),   parity("Nothing", "None"),
        parity("Nada", "None"),  parity("", "None"),       parity("0", "None"),
        parity("Event", "Even"), parity("odd", "Odd"),     parity("s", "Space"),
        parity("MARK", "Mark"),  data("7", "7"),           data(" 8", "8"),
        data("", "8"),           data("Nada", "8"),        stop("1", "1"),
        stop("", "2"),           stop("0", "2"),           stop("Nada", "2"),
        flow("5", "1"),          flow("1.5", "2"),         flow("2.5", "2"),
        flow("-1", "3"),         flow("Nada", "0"),        flow("3", "3"),
        flow("4294967299", "3"), flow("-9E9", "0"),        flow("1E300", "0"),
    };
    for (const Case& c : cases) {
        (mLink.*c.let)(c.given);
        EXPECT_EQ((mLink.*c.get)(), c.stored) << '"' << c.given << '"';
    }
}

TEST_F(PortSettings, LetsRefuseWhatThePortCannotTake) {
    EXPECT_RAISED_FROM(mLink.SetBaudrate("7200"), "1001 DataLink:Let Baudrate");
    EXPECT_RAISED_FROM(mLink.SetBaudrate("9600.5"), "1001 DataLink:Let Baudrate");
    EXPECT_RAISED_FROM(mLink.SetBaudrate("9E999"), "1001 DataLink:Let Baudrate");
    EXPECT_RAISED_FROM(mLink.SetParity("x"), "1002 DataLink:Let Parity");
    EXPECT_RAISED_FROM(mLink.SetParity(" n"), "1002 DataLink:Let Parity");
    EXPECT_RAISED_FROM(mLink.SetDatabits("9"), "1003 DataLink:Let Databits");
    EXPECT_RAISED_FROM(mLink.SetStopbits("1.5"), "1004 DataLink:Let Stopbits");
    EXPECT_EQ(mLink.SettingsText(), "19200,N,8,2");
    EXPECT_THAT(TakeLog(), IsEmpty()) << "a refused value must not reach the port";
}

TEST_F(PortSettings, EachLetAppliesAllSettingsToAClosedPortWithoutOpeningIt) {
    mLink.SetBaudrate("9600");
    EXPECT_THAT(TakeLog(), ElementsAre("Port 1", "Settings 9600,N,8,2", "Handshaking 0"));
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(PortSettings, EachLetReopensAnOpenPortOnceEvenForAnEqualValue) {
    mSerial.SetPortOpen(true);
    TakeLog();
    mLink.SetFlowcontrol("0");
    EXPECT_THAT(TakeLog(),
                ElementsAre("Close", "Port 1", "Settings 19200,N,8,2", "Handshaking 0", "Open"));
}

TEST_F(PortSettings, ApplyingDropsImmediateMode) {
    mLink.SetImmediateMode(true);
    mLink.SetStopbits("1");
    EXPECT_FALSE(mLink.ImmediateMode());
}

TEST_F(PortSettings, CommportTakesTheFirstValidPortOf0To16AndIsNotApplied) {
    mSerial.mValidPorts = {5, 9};
    mSerial.mProbed.clear();
    mLink.SetImmediateMode(true);
    mLink.SetCommport("Nada");
    EXPECT_EQ(mLink.Commport(), "5");
    EXPECT_THAT(mSerial.mProbed, ElementsAre(0, 1, 2, 3, 4, 5));
    EXPECT_THAT(TakeLog(), IsEmpty());
    EXPECT_TRUE(mLink.ImmediateMode());
}

TEST_F(PortSettings, CommportWithoutAnyValidPortIsZero) {
    mSerial.mValidPorts = {};
    mSerial.mProbed.clear();
    mLink.SetCommport("Nada");
    EXPECT_EQ(mLink.Commport(), "0");
    EXPECT_EQ(mSerial.mProbed.size(), 17U);
}

TEST_F(PortSettings, CommportFrom1OnIsTakenUnprobedAsAWholeNumber) {
    mSerial.mProbed.clear();
    mLink.SetCommport(" 12 ");
    EXPECT_EQ(mLink.Commport(), "12");
    EXPECT_THAT(mSerial.mProbed, IsEmpty());
    EXPECT_RAISED(mLink.SetCommport("40000"), 6);
    EXPECT_EQ(mLink.Commport(), "12");
}

TEST_F(PortSettings, TheOwnOpenPortIsValidWithoutAProbe) {
    mSerial.SetPortNumber(3);
    mSerial.mValidPorts = {1, 3};
    mSerial.SetPortOpen(true);
    mSerial.mValidPorts = {1};
    mSerial.mProbed.clear();
    EXPECT_TRUE(mLink.IsValidPort(3));
    EXPECT_THAT(mSerial.mProbed, IsEmpty());
    EXPECT_FALSE(mLink.IsValidPort(4));
    EXPECT_TRUE(mLink.IsValidPort(1));
    mSerial.SetPortOpen(false);
    EXPECT_FALSE(mLink.IsValidPort(3));
}

TEST_F(PortSettings, AttachingConfiguresTheSerialControl) {
    ScriptedSerial serial(mLoop);
    clsDataLink link(LinkHost{mLoop, mDesktop, mDialogs, SystemFiles()});
    link.SetSerialPort(&serial);
    EXPECT_THAT(serial.mLog, ElementsAre("Threshold 1", "Buffers 4096 4096", "Mode 0"));
    EXPECT_EQ(serial.Reserved(), 2);
    EXPECT_TRUE(serial.HasSink());
}

TEST_F(PortSettings, AStandInIsLeftUnconfigured) {
    ScriptedSerial serial(mLoop);
    serial.mFunctional = false;
    clsDataLink link(LinkHost{mLoop, mDesktop, mDialogs, SystemFiles()});
    link.SetSerialPort(&serial);
    EXPECT_THAT(serial.mLog, IsEmpty());
    EXPECT_EQ(link.FrameFormats().Count(), 4U);
}

TEST_F(PortSettings, OneBadStoredValueDoesNotStopTheRest) {
    auto store = std::make_shared<MemorySettings>();
    store->WriteValue("Settings", "Baudrate", "7200");
    store->WriteValue("Settings", "Parity", "even");
    store->WriteValue("Settings", "DSRDetectActive", "Nada");
    store->WriteValue("Settings", "Flowcontrol", "2");
    mLink.SetDSRDetectActive(false);
    mLink.SetRegSettings(store);
    EXPECT_EQ(mLink.SettingsText(), "19200,E,8,2");
    EXPECT_EQ(mLink.Flowcontrol(), "2");
    EXPECT_FALSE(mLink.DSRDetectActive());
}

TEST_F(PortSettings, ABadStoredValueIsAsGoodAsNone) {
    auto store = std::make_shared<MemorySettings>();
    for (const auto& [key, value] : {std::pair{"Commport", "99999"},
                                     {"Baudrate", "7200"},
                                     {"Parity", "x"},
                                     {"Databits", "9"},
                                     {"Stopbits", "9"},
                                     {"Flowcontrol", "1E999"}})
        store->WriteValue("Settings", key, value);
    clsDataLink link(LinkHost{mLoop, mDesktop, mDialogs, SystemFiles()});
    link.SetSerialPort(&mSerial);
    link.SetRegSettings(store);
    EXPECT_EQ(link.SettingsText(), "19200,N,8,2");
    EXPECT_EQ(link.Commport(), "1") << "the first valid port";
    EXPECT_EQ(link.Flowcontrol(), "0");
    link.SaveCommSettings();
    EXPECT_EQ(store->ReadValue("Settings", "Stopbits", {}), "2");
    link.TearDown();
}

TEST_F(PortSettings, LoadingTwiceKeepsSevenRatesInTheirFirstOrder) {
    mLink.SetRegSettings(mSettings);
    EXPECT_EQ(mLink.AutoConnectBaudrates().Count(), 7U);
    EXPECT_EQ(mLink.AutoConnectBaudrates().Item(1), "9600");
}

TEST_F(PortSettings, SavingWritesOneEntryPerSetting) {
    mLink.SetFlowcontrol("2");
    mLink.SetDSRDetectActive(true);
    mSettings->WriteValue("Settings", "Flowcontrol", "0");
    mLink.SaveCommSettings();
    EXPECT_EQ(mSettings->Document().Text(), "[Settings]\n"
                                            "Flowcontrol=2\n"
                                            "Commport=1\n"
                                            "Baudrate=19200\n"
                                            "Parity=None\n"
                                            "Databits=8\n"
                                            "Stopbits=2\n"
                                            "DSRDetectActive=True\n"
                                            "\n"
                                            "[AutoConnctSettings]\n"
                                            "Baud1=9600\nBaud2=19200\nBaud3=57600\nBaud4=115200\n"
                                            "Baud5=38400\nBaud6=4800\nBaud7=2400\n");
}

TEST_F(PortSettings, SavedSettingsComeBack) {
    mLink.SetBaudrate("57600");
    mLink.SetParity("m");
    mLink.SetDSRDetectActive(true);
    mLink.SaveCommSettings();
    ScriptedSerial serial(mLoop);
    clsDataLink other(LinkHost{mLoop, mDesktop, mDialogs, SystemFiles()});
    other.SetSerialPort(&serial);
    other.SetRegSettings(mSettings);
    EXPECT_EQ(other.SettingsText(), "57600,M,8,2");
    EXPECT_TRUE(other.DSRDetectActive());
}

TEST_F(PortSettings, SavingWithoutAStoreRaises91) {
    mLink.SetRegSettings(nullptr);
    EXPECT_RAISED(mLink.SaveCommSettings(), 91);
}

// -- A busy port

class BusyPort : public LinkFixture {
  protected:
    BusyPort() {
        mSerial.SetPortOpen(true);
        TakeLog();
        mSerial.mOnOpen = [this] {
            if (mBusyOpens-- > 0) throw QNError(SerialErrPortBusy, "PDQComm", "busy");
        };
    }
    int mBusyOpens = 1;
};

TEST_F(BusyPort, AsksTheUserAndNoLeavesThePortClosed) {
    mDesktop.mAnswers = {MsgBoxResult::No};
    mLink.SetImmediateMode(true);
    mLink.SetBaudrate("9600");
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "Port 'com1:' is missing or busy by another application.\r\n"
                                       "Please end the application using the port.\r\n"
                                       "Or do you want to change your current port settings?");
    EXPECT_EQ(mDesktop.mBoxes[0].buttons, MsgBoxButtons::YesNo);
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_EQ(mDialogs.mSettingsShown, 0);
    EXPECT_TRUE(mLink.ImmediateMode()) << "applying was left at once";
}

TEST_F(BusyPort, YesShowsTheDialogAndRetriesWhenItIsAccepted) {
    mDesktop.mAnswers = {MsgBoxResult::Yes};
    mDialogs.mOnSettings = [](clsDataLink&) { return std::int16_t{1}; };
    mLink.SetBaudrate("9600");
    EXPECT_EQ(mDialogs.mSettingsShown, 1);
    EXPECT_TRUE(mSerial.PortOpen());
}

TEST_F(BusyPort, APortThatTheDialogHasOpenedIsNotOpenedAgain) {
    mDesktop.mAnswers = {MsgBoxResult::Yes};
    mDialogs.mOnSettings = [this](clsDataLink&) {
        mSerial.SetPortOpen(true);
        return std::int16_t{1};
    };
    mLink.SetBaudrate("9600");
    EXPECT_EQ(std::ranges::count(TakeLog(), "Open"), 2) << "the busy one and the dialog's";
}

TEST_F(BusyPort, AnotherResultOfTheDialogLeavesAtOnce) {
    mDesktop.mAnswers = {MsgBoxResult::Yes};
    mLink.SetBaudrate("9600");
    EXPECT_EQ(mDialogs.mSettingsShown, 1);
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(BusyPort, WhileTheDialogIsOpenABusyPortIsLeftAlone) {
    mDesktop.mAnswers = {MsgBoxResult::Yes, MsgBoxResult::Yes};
    mBusyOpens = 2;
    mDialogs.mOnSettings = [this](clsDataLink& link) {
        mSerial.SetPortOpen(false);
        mSerial.mOnOpen = nullptr;
        mSerial.SetPortOpen(true);
        mSerial.mOnOpen = [] { throw QNError(SerialErrPortBusy, "PDQComm", "busy"); };
        link.SetBaudrate("4800"); // asks, and the nested dialog is refused
        return std::int16_t{2};
    };
    mLink.SetBaudrate("9600");
    EXPECT_EQ(mDesktop.mBoxes.size(), 2U);
    EXPECT_EQ(mDialogs.mSettingsShown, 1);
}

TEST_F(BusyPort, OtherErrorsSkipTheirStepSilently) {
    mSerial.mOnOpen = [] { throw QNError(SerialErrDevice, "PDQComm", "gone"); };
    mLink.SetBaudrate("9600");
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
    EXPECT_EQ(mLink.Baudrate(), "9600");
}

TEST_F(PortSettings, TheDialogRunsUnderTheExclusiveMark) {
    mDialogs.mOnSettings = [this](clsDataLink& link) {
        EXPECT_EQ(mSerial.Tag(), "EXCLUSIVE_USE");
        EXPECT_EQ(link.ShowSettingsDlg(), 0);
        EXPECT_FALSE(link.AcquirePort());
        return std::int16_t{1};
    };
    EXPECT_EQ(mLink.ShowSettingsDlg(), 1);
    EXPECT_EQ(mSerial.Tag(), "");
    EXPECT_EQ(mDialogs.mSettingsShown, 1);
}

TEST_F(PortSettings, TheMarkIsClearedWhenTheDialogFails) {
    mDialogs.mOnSettings = [](clsDataLink&) -> std::int16_t { throw QNError(5, "host", "no"); };
    EXPECT_RAISED(mLink.ShowSettingsDlg(), 5);
    EXPECT_EQ(mSerial.Tag(), "");
}

} // namespace
} // namespace qncomm::testing
