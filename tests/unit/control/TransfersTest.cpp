#include "common/modErrorHandling.h"
#include "dialogs/frmBinaryTransfer.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using ::testing::Contains;
using testing::ControlFixture;
using ::testing::ElementsAre;
using testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using testing::Strings;

class Transfers : public ControlFixture {
  protected:
    Transfers() { mModel = "R7A"; }

    void TransferGoesWell(std::int32_t bytes) {
        mSerial.mTransferSize = 0;
        mSerial.mTransfer = {{10, TransferStarted},
                             {10, TransferAnnounced},
                             {10, TransferMoving, bytes},
                             {10, TransferIdle}};
    }

    /// Presses a key whose dialog is answered with a name in the scratch folder.
    void Press(const std::string& key, const std::string& name, std::int32_t protocol) {
        mForms.On<frmBinaryTransfer>([=, this](frmBinaryTransfer& form) {
            mAction = form.Action();
            form.lblFolder.SetCaption(mFolder.Path());
            form.txtFilename.Type(name, 0);
            form.cmbProtocol.Pick(protocol == BinaryKermit ? 0 : 1);
            form.cmdButton[0].Click();
        });
        mControl->PressToolbarKey(key);
    }

    std::int16_t mAction = -1;
};

TEST_F(Transfers, UploadBSendsTheChosenFileByTheChosenProtocol) {
    Show();
    TransferGoesWell(3);
    Press("UploadB", "a.bin", BinaryZModem);
    EXPECT_EQ(mDesktop.mBoxes.size(), 1U) << "there is no such file";
    EXPECT_THAT(mSerial.mLog, Not(Contains(StartsWith("SendFile"))));
    const std::string path = mFolder.Write("a.bin", "abc");
    Press("UploadB", "a.bin", BinaryZModem);
    EXPECT_EQ(mAction, PrinterReceives);
    EXPECT_THAT(mSerial.mLog, Contains("SendFile " + path));
    EXPECT_THAT(mSerial.mLog, Contains("Kind 2"));
    EXPECT_THAT(mSerial.mLog, Contains("Protocol 5"));
    TransferGoesWell(3);
    Press("UploadB", "a.bin", BinaryKermit);
    EXPECT_THAT(mSerial.mLog, Contains("Protocol 6"));
}

TEST_F(Transfers, DownloadBWritesTheChosenFileByTheChosenProtocol) {
    Show();
    TransferGoesWell(3);
    Press("DownloadB", "new.bin", BinaryKermit);
    EXPECT_EQ(mAction, PrinterSends);
    EXPECT_THAT(mSerial.mLog, Contains("ReceiveFile " + mFolder.File("new.bin")));
    EXPECT_THAT(mSerial.mLog, Contains("Protocol 6"));
}

TEST_F(Transfers, LeavingTheDialogOtherwiseTransfersNothing) {
    Show();
    mFolder.Write("a.bin", "abc");
    for (const bool byCloseBox : {true, false}) {
        mForms.On<frmBinaryTransfer>([&](frmBinaryTransfer& form) {
            form.lblFolder.SetCaption(mFolder.Path());
            form.txtFilename.Type("a.bin", 0);
            if (byCloseBox)
                form.Unload(UnloadMode::ControlMenu);
            else
                form.cmdButton[1].Click();
        });
        mControl->PressToolbarKey("UploadB");
    }
    mForms.On<frmBinaryTransfer>({});
    mControl->PressToolbarKey("DownloadB");
    EXPECT_THAT(mSerial.mLog, Not(Contains(StartsWith("Kind"))));
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(Transfers, ABinaryUploadNeedsAnOpenPortAndAFile) {
    Run();
    EXPECT_RAISED_FROM(mControl->BinaryUpload("/no/such"), "1011 clsDataLink, BinaryUpload");
    EXPECT_RAISED_FROM(mControl->BinaryUpload(mFolder.Write("f", "x")),
                       "1024 clsDataLink, BinaryUpload");
}

TEST_F(Transfers, AKermitDownloadCountsAgainstTheListedSizeOrAgainst5120) {
    mReplies["FILES\"ram:\""] = {"FILES ON ram:", "A.PRG          1000    X:B            2000",
                                 "1000 BYTES FREE  46 BYTES USED"};
    Run();
    TransferGoesWell(500);
    mControl->KermitDownload("ram:a.prg", mFolder.File("a.prg"));
    EXPECT_THAT(mProgress, Contains(50));
    EXPECT_THAT(TakeCommands(), Contains("TRANSFER K \"S\",\"ram:a.prg\""));
    EXPECT_THAT(mSerial.mLog, Contains("ReceiveFile " + mFolder.File("a.prg")));
    TransferGoesWell(500);
    mControl->KermitDownload("ram:a.prg", mFolder.File("a.prg"));
    EXPECT_THAT(TakeCommands(), ElementsAre("TRANSFER K \"S\",\"ram:a.prg\""))
        << "the list is kept";
    mProgress.clear();
    TransferGoesWell(500);
    mControl->KermitDownload("ram:x:b", mFolder.File("b"));
    EXPECT_THAT(mProgress, Contains(25)) << "the device ends at the first colon";
    for (const char* name : {"ram:missing", "missing", "nodevice:a.prg"}) {
        mProgress.clear();
        TransferGoesWell(2560);
        mControl->KermitDownload(name, mFolder.File("b"));
        EXPECT_THAT(mProgress, Contains(50)) << name;
    }
}

TEST_F(Transfers, AKermitUploadReplacesThePrintersFile) {
    mReplies["KILL \"ram:A.PRG\""] = {};
    Run();
    const std::string path = mFolder.Write("a.prg", "abc");
    TransferGoesWell(3);
    mControl->KermitUpload(path, "ram:A.PRG");
    const Strings commands = TakeCommands();
    EXPECT_THAT(commands, Contains("KILL \"ram:A.PRG\""));
    EXPECT_THAT(commands, Contains("CHDIR\"ram:\":TRANSFER K \"R\""));
    EXPECT_THAT(mSerial.mLog, Contains("SendFile " + path));
}

TEST_F(Transfers, AManualKermitUploadSendsTheFileAndNoCommand) {
    Run().PrinterType();
    const std::string path = mFolder.Write("a.prg", "abc");
    TransferGoesWell(3);
    TakeCommands();
    mControl->KermitUpload(path, "ram:A.PRG", true);
    EXPECT_THAT(TakeCommands(), IsEmpty());
    EXPECT_THAT(mSerial.mLog, Contains("SendFile " + path));
}

TEST_F(Transfers, AKermitUploadOfNoFileDoesNotReachThePrinter) {
    Run();
    EXPECT_RAISED_FROM(mControl->KermitUpload("/no/such", "ram:A.PRG"), "1011 clsDataLink,Upload");
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Transfers, AControlHiddenDuringABinaryTransferClosesThePortAfterIt) {
    Show();
    TransferGoesWell(3);
    bool openWhenHidden = false;
    mLoop.After(25, [&] {
        mControl->UserControl_Hide();
        openWhenHidden = mSerial.PortOpen();
    });
    mControl->BinaryDownload(mFolder.File("x"));
    EXPECT_TRUE(openWhenHidden);
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_THAT(mPortStates, ElementsAre(true, false));
}

TEST_F(Transfers, WhatAHostRaisesWhenItHearsOfTheClosedPortIsPassedOn) {
    Show();
    TransferGoesWell(3);
    mLoop.After(25, [&] { mControl->UserControl_Hide(); });
    mOnPortState = [](bool busy) {
        if (!busy) RaiseRuntimeError(RtInvalidCall);
    };
    EXPECT_RAISED(mControl->BinaryDownload(mFolder.File("x")), RtInvalidCall);
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(Transfers, AControlHiddenDuringATransferThatAHostEndsClosesThePortToo) {
    Show();
    TransferGoesWell(3);
    mSerial.mTransferSize = 3;
    mOnStatus = [this](std::string&, bool&) {
        mControl->UserControl_Hide();
        EXPECT_TRUE(mSerial.PortOpen());
        RaiseRuntimeError(RtInvalidCall);
    };
    EXPECT_RAISED(mControl->BinaryDownload(mFolder.File("x")), RtInvalidCall);
    EXPECT_FALSE(mSerial.PortOpen());
    EXPECT_THAT(mSerial.mLog, Contains("TransferState 6"));
}

TEST_F(Transfers, AHostMayChangeTheMessageForTheRestOfTheTransfer) {
    Show();
    TransferGoesWell(3);
    mOnStatus = [](std::string& text, bool&) { text = "mine"; };
    mControl->BinaryDownload(mFolder.File("x"));
    EXPECT_EQ(mMessages.front(), "Downloading x");
    EXPECT_EQ(mMessages.back(), "mine");
}

TEST_F(Transfers, ABinaryTransferIsRefusedWithinAnOperation) {
    Run();
    mOnStatus = [this](std::string&, bool&) { mControl->BinaryUpload("/no/such"); };
    EXPECT_TRUE(mControl->DoAutoconnect());
    EXPECT_THAT(mDesktop.mLog, Contains("Nothing was sent: an operation is running."));
}

} // namespace
} // namespace qncomm
