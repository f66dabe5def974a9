#include "dialogs/frmBinaryTransfer.h"
#include "dialogs/frmCommSettings.h"
#include "dialogs/frmFunctionKeysSetup.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using ::testing::Contains;
using testing::ControlFixture;
using testing::ElementsAre;
using testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using testing::Strings;

class Lifecycle : public ControlFixture {};

TEST_F(Lifecycle, AFreshInstanceOnAFormIsDockedAtTheBottom) {
    mControl->UserControl_InitProperties();
    EXPECT_EQ(mHost.mAlign, DockBottom);
    EXPECT_TRUE(mControl->ToolbarVisible());
    EXPECT_EQ(mControl->Caption(), "Terminal");
    EXPECT_EQ(mControl->lblCaption.Caption(), "Terminal");
    EXPECT_EQ(mControl->TerminalFontName(), "Courier");
    EXPECT_EQ(mTerminal.mColumns, 300);
    EXPECT_EQ(mTerminal.mRows, 300);
    EXPECT_EQ(mControl->BackColor(), 15);
    EXPECT_EQ(mControl->ForeColor(), 0);
}

TEST_F(Lifecycle, DesignTimeTouchesNoPortAndShowsThePlaceholder) {
    mControl->UserControl_ReadProperties(MemoryPropertyBag());
    mControl->UserControl_Show();
    EXPECT_EQ(mTerminal.mState, DisplayDesign);
    EXPECT_EQ(mTerminal.mFocused, 0);
    mControl->UserControl_Hide();
    EXPECT_THAT(mSerial.mLog, IsEmpty());
    EXPECT_FALSE(mSerial.HasSink());
    EXPECT_RAISED(mControl->PrinterType(), RtObjectNotSet);
    EXPECT_RAISED(mControl->SetRegSettings(mSettings), RtObjectNotSet);
    EXPECT_EQ(mControl->RegSettings(), mSettings) << "kept before it is handed on";
}

TEST_F(Lifecycle, ShowingOpensThePortForTheTerminalAndSendsNothing) {
    Run();
    mControl->UserControl_Show();
    EXPECT_THAT(mSerial.mLog, ElementsAre("Open", "Mode 2"));
    EXPECT_THAT(mPortStates, ElementsAre(true));
    EXPECT_EQ(mSerial.mSent, "");
    EXPECT_EQ(mTerminal.mFocused, 1);
    mControl->UserControl_Show();
    EXPECT_EQ(mSerial.mSent, "");
    mControl->UserControl_Hide();
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_THAT(mPortStates, ElementsAre(true, false));
}

TEST_F(Lifecycle, AControlThatEndsWhileItIsShownTakesNoFocus) {
    Run();
    mOnPortState = [this](bool) { mControl->TearDown(); };
    mControl->UserControl_Show();
    EXPECT_EQ(mTerminal.mFocused, 0);
    mLoop.Yield(10); // what of it was kept for the event goes
}

TEST_F(Lifecycle, TheCloseButtonHidesTheControlAndTheLabelGivesTheFocus) {
    Show();
    mControl->cmdClose.Click();
    EXPECT_FALSE(mHost.mVisible);
    mControl->lblCaption.Click();
    EXPECT_EQ(mTerminal.mFocused, 2);
    EXPECT_EQ(mControl->PrinterType(), "R7G") << "hidden, not taken down";
}

TEST_F(Lifecycle, TheTitleFollowsTheFocus) {
    mControl->UserControl_EnterFocus();
    EXPECT_EQ(mControl->lblCaption.BackColor(), ActiveTitleColor);
    EXPECT_EQ(mControl->lblCaption.ForeColor(), ActiveTitleTextColor);
    mControl->UserControl_ExitFocus();
    EXPECT_EQ(mControl->lblCaption.BackColor(), InactiveTitleColor);
    EXPECT_EQ(mControl->lblCaption.ForeColor(), InactiveTitleTextColor);
}

TEST_F(Lifecycle, SettingsReachTheLinkOnceWithSevenRates) {
    Run();
    mControl->ShowCommSettings();
    EXPECT_EQ(mControl->RegSettings(), mSettings);
    mForms.On<frmCommSettings>([](frmCommSettings& form) { form.cmdOK.Click(); });
    mControl->ShowCommSettings();
    EXPECT_EQ(mSettings->ReadValue("AutoConnctSettings", "Baud1", ""), "9600");
    EXPECT_EQ(mSettings->ReadValue("AutoConnctSettings", "Baud7", ""), "2400");
    EXPECT_EQ(mSettings->ReadValue("AutoConnctSettings", "Baud8", "none"), "none");
}

TEST_F(Lifecycle, TipsAreEmptyWithoutAStoreAndFollowTheSettings) {
    SetMacro("F2", "0;abc");
    mHost.mUserMode = true;
    mControl->UserControl_ReadProperties(MemoryPropertyBag());
    EXPECT_EQ(mControl->Toolbar1.Find("F2")->toolTip, "");
    mControl->SetRegSettings(mSettings);
    EXPECT_EQ(mControl->Toolbar1.Find("F2")->toolTip, "Text:\"abc\"");
}

TEST_F(Lifecycle, LinkAndTipsAreThereBeforeTheTerminalGetsItsSize) {
    Run();
    SetMacro("F2", "0;abc");
    bool linked = false;
    std::string tip;
    mTerminal.mOnRows = [&] {
        linked = mSerial.HasSink();
        tip = mControl->Toolbar1.Find("F2")->toolTip;
    };
    mTerminal.mLog.clear();
    mControl->UserControl_ReadProperties(MemoryPropertyBag());
    EXPECT_TRUE(linked);
    EXPECT_EQ(tip, "Text:\"abc\"");
    EXPECT_EQ(mTerminal.mLog.back(), "Move") << "laid out at the very end";
}

TEST_F(Lifecycle, AHostThatCancelsStopsTheRunningOperation) {
    mSilent = true;
    Run();
    EXPECT_FALSE(mControl->DoAutoconnect());
    const std::size_t whole = mMessages.size();
    mMessages.clear();
    mOnStatus = [](std::string&, bool& cancel) { cancel = true; };
    EXPECT_FALSE(mControl->DoAutoconnect());
    EXPECT_LT(mMessages.size(), whole);
    EXPECT_FALSE(mMessages.empty());
}

TEST_F(Lifecycle, TheLayersEventsAreRelayedToo) {
    Run().PrinterType();
    mMessages.clear();
    ModuleUploadArgs args{{}, "m", "10 REM\r\n"};
    mControl->ModuleUpload(args);
    EXPECT_THAT(mMessages, Contains("Transfering Module tmp:m"));
    EXPECT_EQ(args.sTargetPath, "tmp:m");
}

TEST_F(Lifecycle, TearDownClosesThePortAndMayBeRepeated) {
    Show();
    mPortStates.clear();
    mControl->TearDown();
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_FALSE(mSerial.HasSink());
    EXPECT_THAT(mPortStates, IsEmpty());
    mControl->TearDown();
    mControl->UserControl_Hide();
    EXPECT_RAISED(mControl->UserControl_Show(), RtObjectNotSet);
    EXPECT_RAISED(mControl->Fre(), RtObjectNotSet);
    mControl.reset();
}

TEST_F(Lifecycle, TearDownFromWithinAnEventEndsTheOperation) {
    Show();
    mOnPortState = [this](bool) { mControl->TearDown(); };
    mControl->UserControl_Hide();
    EXPECT_FALSE(mSerial.HasSink());
    mLoop.Yield(10);
    mOnPortState = {};
    Show();
    mOnStatus = [this](std::string&, bool&) { mControl->TearDown(); };
    EXPECT_EQ(mControl->PrinterType(), "");
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_RAISED(mControl->PrinterType(), RtObjectNotSet);
    mOnStatus = {};
    EXPECT_EQ(Run().PrinterType(), "R7G") << "and the control can be brought up again";
}

TEST_F(Lifecycle, WhatEndsWithinItsOwnEventStaysUntilTheEventIsOver) {
    auto line = std::make_shared<int>();
    const std::weak_ptr<int> kept = line;
    Create(std::exchange(line, nullptr));
    Show();
    mOnPortState = [this, &kept](bool) {
        mControl->TearDown();
        mControl.reset();
        EXPECT_FALSE(kept.expired());
    };
    mControl->UserControl_Hide();
    EXPECT_FALSE(kept.expired());
    mLoop.Yield(10);
    EXPECT_TRUE(kept.expired());
}

TEST_F(Lifecycle, NothingIsHeardOfAControlThatWasTakenDown) {
    Show();
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferIdle}};
    mPortStates.clear();
    mOnStatus = [this](std::string&, bool&) { mControl->TearDown(); };
    mControl->BinaryDownload(mFolder.File("x"));
    mLoop.Yield(10);
    EXPECT_THAT(mMessages, ElementsAre("Downloading x")) << "not of the end of the transfer";
    EXPECT_THAT(mPortStates, IsEmpty());
}

TEST_F(Lifecycle, AHostMayDestroyTheControlFromWithinAnEvent) {
    Show();
    mOnStatus = [this](std::string&, bool&) { mControl.reset(); };
    try {
        mControl->DoAutoconnect();
    } catch (const QNError&) { // ends with whatever it needed last
    }
    EXPECT_EQ(mControl, nullptr);
    EXPECT_FALSE(mSerial.PortOpen());
    mLoop.Yield(10);
}

TEST_F(Lifecycle, AHostMayDestroyTheControlWhileItsBoxesAndDialogsAreShown) {
    SetMacro("F1", "0;&&?Count&&<CR>");
    const std::string path = mFolder.Write("full.txt", "old");
    const auto end = [this](auto&&...) { mControl.reset(); };
    mInputs.mOnBox = end;
    mFiles.mOnDialog = end;
    mForms.On<frmFunctionKeysSetup>(end);
    mForms.On<frmCommSettings>(end);
    mForms.On<frmBinaryTransfer>([&](frmBinaryTransfer& form) {
        form.lblFolder.SetCaption(mFolder.Path());
        form.txtFilename.Type("full.txt", 0);
        form.cmdButton[0].Click();
        end();
    });
    for (const char* key :
         {"F1", "UploadA", "DownloadA", "FunctionkeysSetup", "CommSettings", "UploadB"}) {
        mInputs.mAnswers = {"5"};
        mFiles.mAnswers = {path};
        Create();
        Show().PressToolbarKey(key);
        EXPECT_EQ(mControl, nullptr) << key;
        mLoop.Yield(10);
    }
    EXPECT_EQ(TakeSent(), "");
    EXPECT_EQ(mTerminal.mCapture, "");
    EXPECT_THAT(mSerial.mLog, Not(Contains(StartsWith("SendFile"))));
}

TEST_F(Lifecycle, AHostMayDestroyTheControlWhileItPastes) {
    Show();
    mClipboard.mText = std::string(5000, 'x');
    mSerial.mDrainPerMs = 1;
    mLoop.After(100, [this] { mControl.reset(); });
    std::int16_t key = 45;
    mControl->PDQComm1_KeyDown(key, 1);
    EXPECT_EQ(mControl, nullptr);
    EXPECT_FALSE(mDesktop.mLog.empty());
}

TEST_F(Lifecycle, ALostDeviceMayDestroyTheControl) {
    Show();
    mOnPortState = [this](bool) { mControl.reset(); };
    mSerial.Vanish();
    mLoop.Yield(10);
    EXPECT_EQ(mControl, nullptr);
    EXPECT_FALSE(mSerial.HasSink());
    mLoop.Yield(10);
    mLoop.Yield(10);
}

} // namespace
} // namespace qncomm
