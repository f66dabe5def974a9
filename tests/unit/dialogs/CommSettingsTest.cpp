#include "dialogs/frmCommSettings.h"

#include "common/MemorySettings.h"
#include "common/Pointer.h"
#include "common/Text.h"
#include "dialogs/Dialogs.h"
#include "platform/SystemFiles.h"
#include "testing/core/CommaLocale.h"
#include "testing/core/ManualLoop.h"
#include "testing/core/RecordingDesktop.h"
#include "testing/core/ScriptedForms.h"
#include "testing/core/ScriptedSerial.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace qncomm {
namespace {

using ::testing::ElementsAre;
using testing::ManualLoop;
using testing::RecordingDesktop;
using testing::ScriptedForms;
using testing::ScriptedSerial;

using Values = std::vector<std::int32_t>;
using Texts = std::vector<std::string>;

Texts TextsOf(const ListModel& list) {
    Texts texts;
    for (const auto& entry : list.Entries())
        texts.push_back(entry.text);
    return texts;
}

Values ValuesOf(const ListModel& list) {
    Values values;
    for (const auto& entry : list.Entries())
        values.push_back(entry.value);
    return values;
}

void PickValue(ListModel& list, std::int32_t value) {
    const Values values = ValuesOf(list);
    const auto found = std::find(values.begin(), values.end(), value);
    ASSERT_NE(found, values.end());
    list.Pick(static_cast<std::int32_t>(found - values.begin()));
}

class CommSettings : public ::testing::Test {
  protected:
    CommSettings() { Ports({1, 3}); }

    /// The ports that open, and a link whose settings are loaded anew.
    void Ports(std::set<std::int16_t> ports) {
        mSerial.mValidPorts = std::move(ports);
        mLink.SetSerialPort(&mSerial);
        mLink.SetRegSettings(mSettings);
        mSerial.mLog.clear();
    }

    std::string Stored(std::string_view key, std::string_view section = "Settings") {
        return mSettings->ReadValue(section, key, "nothing");
    }

    /// Shows the dialog through the link, as everyone does.
    std::int16_t Show(std::function<void(frmCommSettings&)> act) {
        mForms.On<frmCommSettings>(std::move(act));
        return mLink.ShowSettingsDlg();
    }

    long CountInLog(const std::string& entry) {
        return std::count(mSerial.mLog.begin(), mSerial.mLog.end(), entry);
    }

    ManualLoop mLoop;
    RecordingDesktop mDesktop;
    ScriptedForms mForms;
    Dialogs mDialogs{mLoop, mForms};
    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
    ScriptedSerial mSerial{mLoop};
    clsDataLink mLink{LinkHost{mLoop, mDesktop, mDialogs, SystemFiles()}};
};

TEST_F(CommSettings, TheCaptionsReadAsDesigned) {
    const frmCommSettings form(mLink);
    EXPECT_EQ(form.Caption(), "Serial Port Setup");
    EXPECT_EQ(form.Frame2.Caption(), "Settings");
    EXPECT_EQ(form.Frame1.Caption(), "AutoConnect Settings");
    Texts labels;
    for (const LabelModel& label : form.Label1)
        labels.push_back(label.Caption());
    EXPECT_THAT(labels, ElementsAre("Port:", "Baudrate:", "Databits:", "Parity:", "Stopbits:",
                                    "Flowcontrol:"));
    EXPECT_EQ(form.chkDSRDetect.Caption(), "Use DSR-line for fast printer detection.");
    EXPECT_EQ(form.chkSearchAllPorts.Caption(), "Search all serial ports.");
    EXPECT_EQ(form.chkUseHighestBaudrate.Caption(), "Select highest availible baudrate.");
    EXPECT_EQ(form.chkAutoConnect.Caption(), "Automatic run AutoConnect");
    EXPECT_EQ(form.cmdAutoConnect.Caption(), "Run &AutoConnect");
    EXPECT_EQ(form.cmdOK.Caption(), "&OK");
    EXPECT_EQ(form.cmdCancel.Caption(), "&Cancel");
}

TEST_F(CommSettings, EachListHasItsEntriesAndTheirValues) {
    const frmCommSettings form(mLink);
    EXPECT_THAT(TextsOf(form.cmbPort), ElementsAre("com1:", "com3:"));
    EXPECT_EQ(ValuesOf(form.cmbPort), (Values{1, 3}));
    EXPECT_THAT(TextsOf(form.cmbBaudrate),
                ElementsAre("2.400 baud", "4.800 baud", "9.600 baud", "19.200 baud", "38.400 baud",
                            "57.600 baud", "115.200 baud"));
    EXPECT_EQ(ValuesOf(form.cmbBaudrate), (Values{2400, 4800, 9600, 19200, 38400, 57600, 115200}));
    EXPECT_THAT(TextsOf(form.cmbParity), ElementsAre("None", "Even", "Odd", "Mark", "Space"));
    EXPECT_EQ(ValuesOf(form.cmbParity), (Values{'N', 'E', 'O', 'M', 'S'}));
    EXPECT_THAT(TextsOf(form.cmbDatabits), ElementsAre("7 bits", "8 bits"));
    EXPECT_EQ(ValuesOf(form.cmbDatabits), (Values{7, 8}));
    EXPECT_THAT(TextsOf(form.cmbStopbits), ElementsAre("1 bit", "2 bits"));
    EXPECT_EQ(ValuesOf(form.cmbStopbits), (Values{1, 2}));
    EXPECT_THAT(TextsOf(form.cmbFlowcontrol),
                ElementsAre("None", "Software (Xon/Xoff)", "Hardware (RTS/CTS)",
                            "Both (Xon/Xoff+RTS/CTS)"));
    EXPECT_EQ(ValuesOf(form.cmbFlowcontrol), (Values{0, 1, 2, 3}));
}

TEST_F(CommSettings, TheSpeedsAreWrittenAndStoredTheSameWhereNumbersHaveCommas) {
    const testing::CommaLocale elsewhere;
    frmCommSettings form(mLink);
    EXPECT_EQ(form.cmbBaudrate.Entries().back().text, "115.200 baud");
    form.cmbBaudrate.Pick(6);
    form.cmdOK.Click();
    EXPECT_EQ(mLink.Baudrate(), "115200");
}

TEST_F(CommSettings, EveryPortFromZeroToSixteenIsTried) {
    Ports({0, 16});
    mSerial.mProbed.clear();
    const frmCommSettings form(mLink);
    EXPECT_EQ(mSerial.mProbed.size(), 17U);
    EXPECT_EQ(ValuesOf(form.cmbPort), (Values{0, 16}));
}

TEST_F(CommSettings, TheLinksValuesAreSelected) {
    mLink.SetBaudrate("57600");
    mLink.SetParity("Even");
    mLink.SetDatabits("7");
    mLink.SetStopbits("1");
    mLink.SetFlowcontrol("2");
    mLink.SetCommport("3");
    mLink.SetDSRDetectActive(true);
    const frmCommSettings form(mLink);
    EXPECT_EQ(form.cmbPort.SelectedValue(), 3);
    EXPECT_EQ(form.cmbBaudrate.SelectedValue(), 57600);
    EXPECT_EQ(form.cmbParity.SelectedValue(), 'E');
    EXPECT_EQ(form.cmbDatabits.SelectedValue(), 7);
    EXPECT_EQ(form.cmbStopbits.SelectedValue(), 1);
    EXPECT_EQ(form.cmbFlowcontrol.SelectedValue(), 2);
    EXPECT_TRUE(form.chkDSRDetect.Checked());
    EXPECT_TRUE(form.cmdOK.Enabled());
}

TEST_F(CommSettings, WithoutAUsablePortOkStaysDisabledAndCancelWorks) {
    Ports({});
    EXPECT_EQ(Show([](frmCommSettings& form) {
                  EXPECT_TRUE(form.cmbPort.Entries().empty());
                  EXPECT_FALSE(form.cmdOK.Enabled());
                  form.cmbPort.Pick(-1);
                  EXPECT_FALSE(form.cmdOK.Enabled());
                  form.cmdAutoConnect.Click(); // nothing to search on
                  form.cmdOK.Click();
                  EXPECT_TRUE(form.IsOpen());
                  form.cmdCancel.Click();
                  EXPECT_FALSE(form.IsOpen());
              }),
              2);
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(CommSettings, AStoredPortBeyondTheListLeavesOkDisabledUntilAPick) {
    mLink.SetCommport("17");
    frmCommSettings form(mLink);
    EXPECT_FALSE(form.cmbPort.HasSelection());
    EXPECT_FALSE(form.cmdOK.Enabled());
    form.cmbPort.Pick(-1);
    EXPECT_EQ(form.cmbPort.SelectedValue(), 1);
    EXPECT_TRUE(form.cmdOK.Enabled());
}

TEST_F(CommSettings, PickingPortZeroDoesNotEnableOkAndNoPickDisablesIt) {
    Ports({0, 2});
    mLink.SetCommport("9");
    frmCommSettings form(mLink);
    EXPECT_FALSE(form.cmdOK.Enabled());
    PickValue(form.cmbPort, 0);
    EXPECT_FALSE(form.cmdOK.Enabled());
    PickValue(form.cmbPort, 2);
    EXPECT_TRUE(form.cmdOK.Enabled());
    PickValue(form.cmbPort, 0);
    EXPECT_TRUE(form.cmdOK.Enabled());
}

TEST_F(CommSettings, TheCloseBoxCountsAsCancel) {
    EXPECT_EQ(Show([](frmCommSettings& form) { form.Unload(UnloadMode::ControlMenu); }), 2);
    EXPECT_EQ(Show([](frmCommSettings& form) { form.Unload(UnloadMode::System); }), 2);
    EXPECT_EQ(Show([](frmCommSettings&) {}), 2); // there was no window
    EXPECT_EQ(Show([](frmCommSettings& form) { form.cmdOK.Click(); }), 1);
}

TEST_F(CommSettings, OkWritesInItsOrderWithFiveAppliesAndSavesLast) {
    EXPECT_EQ(Show([&](frmCommSettings& form) {
                  PickValue(form.cmbPort, 3);
                  PickValue(form.cmbBaudrate, 9600);
                  PickValue(form.cmbParity, 'E');
                  PickValue(form.cmbDatabits, 7);
                  PickValue(form.cmbStopbits, 1);
                  PickValue(form.cmbFlowcontrol, 2);
                  mSerial.mLog.clear();
                  form.cmdOK.Click();
              }),
              1);
    EXPECT_THAT(mSerial.mLog,
                ElementsAre("Port 1", "Settings 9600,N,8,2", "Handshaking 0",   // Baudrate
                            "Port 1", "Settings 9600,E,8,2", "Handshaking 0",   // Parity
                            "Port 1", "Settings 9600,E,7,2", "Handshaking 0",   // Databits
                            "Port 1", "Settings 9600,E,7,1", "Handshaking 0",   // Stopbits
                            "Port 3", "Settings 9600,E,7,1", "Handshaking 2")); // port, Flowcontrol
    EXPECT_EQ(Stored("Commport"), "3");
    EXPECT_EQ(Stored("Baudrate"), "9600");
    EXPECT_EQ(Stored("Parity"), "Even");
    EXPECT_EQ(Stored("Flowcontrol"), "2");
    EXPECT_EQ(Stored("DSRDetectActive"), "False");
}

TEST_F(CommSettings, OkWritesTheDsrBoxAsItStands) {
    Show([](frmCommSettings& form) {
        form.chkDSRDetect.SetChecked(true); // not by the user, whose click is written at once
        form.cmdOK.Click();
    });
    EXPECT_TRUE(mLink.DSRDetectActive());
    EXPECT_EQ(Stored("DSRDetectActive"), "True");
}

TEST_F(CommSettings, AListWithoutASelectionLeavesItsSettingAlone) {
    mLink.SetBaudrate("1200");
    EXPECT_EQ(Show([](frmCommSettings& form) {
                  EXPECT_FALSE(form.cmbBaudrate.HasSelection());
                  form.cmdOK.Click();
              }),
              1);
    EXPECT_EQ(mLink.Baudrate(), "1200");
}

TEST_F(CommSettings, CancelWritesNothingButTheDsrBoxIsWrittenThroughAtOnce) {
    EXPECT_EQ(Show([this](frmCommSettings& form) {
                  PickValue(form.cmbBaudrate, 9600);
                  form.chkDSRDetect.Click();
                  EXPECT_TRUE(mLink.DSRDetectActive());
                  form.cmdCancel.Click();
              }),
              2);
    EXPECT_EQ(mLink.Baudrate(), "19200");
    EXPECT_TRUE(mLink.DSRDetectActive());
    EXPECT_EQ(Stored("DSRDetectActive"), "nothing");
}

TEST_F(CommSettings, EitherSearchOptionEnablesTheSearchAndNoneDisablesIt) {
    frmCommSettings form(mLink);
    EXPECT_TRUE(form.cmdAutoConnect.Enabled());
    form.chkUseHighestBaudrate.Click();
    EXPECT_TRUE(form.cmdAutoConnect.Enabled());
    form.chkUseHighestBaudrate.Click();
    EXPECT_FALSE(form.cmdAutoConnect.Enabled());
    form.chkSearchAllPorts.Click();
    EXPECT_FALSE(form.cmdAutoConnect.Enabled());
    form.chkAutoConnect.Click();
    EXPECT_TRUE(form.cmdAutoConnect.Enabled());
}

TEST_F(CommSettings, TheSearchOptionsAreKeptByOkWhenOneOfThemChanged) {
    const auto section = "AutoConnctSettings";
    Show([](frmCommSettings& form) { form.cmdOK.Click(); });
    EXPECT_EQ(Stored("SearchAllPorts", section), "nothing");
    Show([](frmCommSettings& form) {
        form.chkAutoConnect.Click();
        form.cmdCancel.Click();
    });
    EXPECT_EQ(Stored("AutoConnect", section), "nothing");
    Show([](frmCommSettings& form) {
        form.chkSearchAllPorts.Click();
        form.cmdOK.Click();
    });
    EXPECT_EQ(Stored("SearchAllPorts", section), "True");
    EXPECT_EQ(Stored("UseHighestBaudrate", section), "False");
    EXPECT_EQ(Stored("AutoConnect", section), "False");
    Show([](frmCommSettings& form) {
        form.chkAutoConnect.Click();
        form.cmdOK.Click();
    });
    EXPECT_EQ(Stored("AutoConnect", section), "True");
    mSettings->WriteValue(section, "UseHighestBaudrate", "no Boolean");
    const frmCommSettings again(mLink);
    EXPECT_TRUE(again.chkSearchAllPorts.Checked());
    EXPECT_FALSE(again.chkUseHighestBaudrate.Checked());
}

TEST_F(CommSettings, LoadingAndOkShowTheHourglassAndPutTheFormerPointerBack) {
    std::vector<std::int16_t> shapes;
    const Subscription follow =
        Pointer::Screen().Changed.Connect([&](std::int16_t shape) { shapes.push_back(shape); });
    frmCommSettings form(mLink);
    EXPECT_THAT(std::exchange(shapes, {}), ElementsAre(PointerHourglass, PointerDefault));
    form.cmdOK.Click();
    EXPECT_THAT(std::exchange(shapes, {}), ElementsAre(PointerHourglass, PointerDefault));
    Pointer::Screen().Set(PointerHourglass); // of an operation that runs
    shapes.clear();
    frmCommSettings busy(mLink);
    busy.cmdOK.Click();
    EXPECT_THAT(shapes, ElementsAre()) << "its pointer stays";
    Pointer::Screen().Set(PointerDefault);
}

TEST_F(CommSettings, AValueWithoutAnEntryKeepsTheFormerSelection) {
    frmCommSettings form(mLink);
    mLink.SetBaudrate("300");
    form.ShowCurrentSettings();
    EXPECT_EQ(form.cmbBaudrate.SelectedValue(), 19200);
}

TEST_F(CommSettings, AFailedSearchLeavesTheFieldsTheDialogAndTheMark) {
    EXPECT_EQ(Show([this](frmCommSettings& form) {
                  PickValue(form.cmbPort, 3);
                  PickValue(form.cmbBaudrate, 2400);
                  mSerial.mOnOpen = [this] {
                      EXPECT_EQ(mSerial.Tag(), "EXCLUSIVE_USE");
                      EXPECT_EQ(mSerial.PortNumber(), 3) << "the port that is picked";
                  };
                  mSerial.OnSend([](std::string&) {}); // nobody answers
                  form.cmdAutoConnect.Click();
                  EXPECT_TRUE(form.IsOpen());
                  EXPECT_EQ(mSerial.Tag(), "EXCLUSIVE_USE");
                  EXPECT_EQ(form.cmbBaudrate.SelectedValue(), 2400);
                  EXPECT_EQ(form.cmbPort.SelectedValue(), 3);
                  EXPECT_TRUE(form.cmdAutoConnect.Enabled());
              }),
              2);
    EXPECT_FALSE(mSerial.mSent.empty());
    EXPECT_EQ(mSerial.Tag(), "");
    EXPECT_EQ(mLink.Commport(), "1");
}

TEST_F(CommSettings, DuringASearchTheUserMayLeaveButNotAccept) {
    int boxes = 0;
    Show([&](frmCommSettings& form) {
        mSerial.OnSend([](std::string&) {});
        mLoop.After(10, [&] {
            ++boxes;
            EXPECT_FALSE(form.cmdOK.Enabled());
            EXPECT_FALSE(form.cmdAutoConnect.Enabled());
            form.cmbPort.Pick(1);
            form.chkAutoConnect.Click();
            EXPECT_FALSE(form.cmdOK.Enabled());
            EXPECT_FALSE(form.cmdAutoConnect.Enabled());
        });
        mLoop.After(100, [&] {
            ++boxes;
            form.cmdCancel.Click();
        });
        form.cmdAutoConnect.Click();
    });
    EXPECT_EQ(boxes, 2);
    EXPECT_LT(CountInLog("Open"), 5) << "leaving ends the search";
}

/// Answers every command line that comes at 57600 baud as a printer does.
void AnswerAsPrinter(ScriptedSerial& serial, std::string& sent) {
    const std::string bytes = std::exchange(sent, {});
    if (!EqualNoCase(serial.PortSettings(), "57600,n,8,2")) return;
    for (std::string line : SplitNonEmpty(ReplaceAll(bytes, "\x11", ""), "\r")) {
        std::string reply = line + "\r\n";
        if (line.find("HELLO") != std::string::npos) reply += "HELLO\r\n";
        if (line.find("UART1:") != std::string::npos) reply += "=1\r\n";
        if (line.find("SETUP WRITE") != std::string::npos)
            reply += "UART1,BAUDRATE,57600\r\nUART1,CHAR LENGTH,8\r\nUART1,PARITY,NONE\r\n"
                     "UART1,STOPBITS,2\r\nUART1,FLOWCONTROL,RTS/CTS,ENABLE\r\n";
        serial.Arrive(reply + "Ok\r\n", 10);
    }
}

TEST_F(CommSettings, ASearchThatFindsThePrinterShowsAndKeepsItsSettingsAndPort) {
    mSerial.OnSend([this](std::string& sent) { AnswerAsPrinter(mSerial, sent); });
    EXPECT_EQ(Show([this](frmCommSettings& form) {
                  PickValue(form.cmbPort, 3);
                  form.cmdAutoConnect.Click();
                  EXPECT_EQ(mSerial.Tag(), "EXCLUSIVE_USE");
                  EXPECT_EQ(form.cmbBaudrate.SelectedValue(), 57600);
                  EXPECT_EQ(form.cmbFlowcontrol.SelectedValue(), 2);
                  EXPECT_EQ(form.cmbPort.SelectedValue(), 3);
                  EXPECT_TRUE(form.cmdOK.Enabled());
                  EXPECT_TRUE(form.IsOpen());
                  form.cmdCancel.Click();
              }),
              2);
    EXPECT_EQ(mSerial.PortNumber(), 3) << "the port that was searched is the one that is set";
    EXPECT_EQ(mLink.Commport(), "3");
    EXPECT_EQ(Stored("Commport"), "3");
    EXPECT_EQ(Stored("Baudrate"), "57600");
}

} // namespace
} // namespace qncomm
