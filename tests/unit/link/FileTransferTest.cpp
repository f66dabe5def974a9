#include "LinkFixture.h"
#include "testing/core/ScratchFolder.h"

namespace qncomm::testing {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::Not;
using ::testing::StartsWith;
using Reported = ScriptedSerial::Reported;

class FileTransfer : public LinkFixture {
  protected:
    FileTransfer() { mLink.SetImmediateMode(true); }

    /// The claim, the command with its echo, and what the printer says when the transfer is over.
    void Expect(const std::string& command, const std::string& afterwards = "Ok\r\n") {
        mSerial.Handshake();
        mSerial.Expect(command + "\r\n").Reply(command + "\r\n");
        if (!afterwards.empty()) mSerial.Arrive(afterwards, 400);
    }

    /// A transfer of size bytes that goes well, in steps of the given percentages.
    void GoesWell(std::int32_t size, const std::vector<int>& percents) {
        mSerial.mTransferSize = size;
        mSerial.mTransfer = {{10, TransferStarted}, {10, TransferAnnounced}};
        for (const int percent : percents)
            mSerial.mTransfer.push_back({10, TransferMoving, size / 100 * percent});
        mSerial.mTransfer.push_back({10, TransferClosing});
        mSerial.mTransfer.push_back({10, TransferIdle});
    }

    void ExpectGivenBack() {
        EXPECT_EQ(mLink.UseCount(), 0);
        EXPECT_FALSE(mSerial.PortOpen());
        EXPECT_EQ(mSerial.ReceiveThreshold(), 1);
    }

    ScratchFolder mFolder;
    const std::string mPath = mFolder.Write("label.prg", "10 PRINT 1");
};

TEST_F(FileTransfer, KermitUploadStartsThePrintersSideAndReports) {
    Expect("CHDIR\"ram:\":TRANSFER K \"R\"");
    GoesWell(1000, {0, 25, 100});
    mLink.KermitUpload(mPath, "ram:LABEL.PRG");
    EXPECT_THAT(mMessages, ElementsAre("Uploading LABEL.PRG 0", "Uploading LABEL.PRG 25",
                                       "Uploading LABEL.PRG 100", "Uploading LABEL.PRG 100",
                                       "Uploading LABEL.PRG -1"));
    EXPECT_THAT(mSerial.mLog, Contains("Kind 0"));
    EXPECT_THAT(mSerial.mLog, Contains("SendFile " + mPath));
    EXPECT_EQ(mSerial.mTransferName, "LABEL.PRG") << "the name that travels";
    ExpectGivenBack();
}

TEST_F(FileTransfer, ADestinationWithoutDeviceChangesNone) {
    Expect("TRANSFER K \"R\"");
    GoesWell(10, {});
    mLink.KermitUpload(mPath, "OTHER.PRG");
    EXPECT_EQ(mSerial.mTransferName, "OTHER.PRG");
}

TEST_F(FileTransfer, WithoutADestinationTheHostFilesNameTravels) {
    Expect("TRANSFER K \"R\"");
    GoesWell(10, {});
    mLink.KermitUpload(mPath, "");
    EXPECT_EQ(mSerial.mTransferName, "label.prg");
}

TEST_F(FileTransfer, AHostNameTravelsInThePrintersCharacterSetAndIsToldInUtf8) {
    Expect("TRANSFER K \"R\"");
    GoesWell(1000, {});
    mLink.KermitUpload(mFolder.Write("gr\u00F6\u00DFe.prg", "10 PRINT 1"), "");
    EXPECT_EQ(mSerial.mTransferName, "gr\xF6\xDF"
                                     "e.prg");
    EXPECT_THAT(mMessages, Contains("Uploading gr\u00F6\u00DFe.prg 0"));
}

TEST_F(FileTransfer, KermitUploadOfAMissingFileSendsNothing) {
    EXPECT_RAISED_FROM(mLink.KermitUpload("/no/such/file", "ram:X"), "1011 clsDataLink,Upload");
    EXPECT_EQ(mSerial.mSent, "");
    EXPECT_THAT(mPortStates, IsEmpty());
}

TEST_F(FileTransfer, AManualUploadSendsNoByteAndLooksForNoFile) {
    mLink.SetImmediateMode(false); // no search either
    mLink.SetDSRDetectActive(true);
    mSerial.mDsr = false;
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferFailed}};
    EXPECT_RAISED_FROM(mLink.KermitUpload("/no/such/file", "X", true),
                       "1023 QNComm, clsDataLink:KermitUpload");
    EXPECT_EQ(mSerial.mSent, "");
    EXPECT_THAT(mSerial.mLog, Contains("SendFile /no/such/file"));
    ExpectGivenBack();
}

TEST_F(FileTransfer, KermitDownloadNamesTheFileAndItsTarget) {
    Expect("TRANSFER K \"S\",\"ram:DATA\"");
    GoesWell(1000, {50});
    mLink.KermitDownload("ram:DATA", mPath);
    EXPECT_THAT(mMessages, ElementsAre("Downloading ram:DATA 0", "Downloading ram:DATA 50",
                                       "Downloading ram:DATA 100", "Downloading ram:DATA -1"));
    EXPECT_THAT(mSerial.mLog, Contains("ReceiveFile " + mPath));
    EXPECT_EQ(mSerial.mTransferName, mPath);
    ExpectGivenBack();
}

TEST_F(FileTransfer, ADownloadCountsAgainstTheSizeItIsGiven) {
    Expect("TRANSFER K \"S\",\"D\"");
    mSerial.mTransferSize = 0;
    mSerial.mTransfer = {
        {1, TransferStarted}, {1, TransferAnnounced}, {1, TransferMoving, 250}, {1, TransferIdle}};
    mLink.KermitDownload("D", mPath, 500);
    EXPECT_THAT(mMessages, Contains("Downloading D 50"));
}

TEST_F(FileTransfer, ASizeThatIsToldBehindTheAnnouncementCounts) {
    Expect("TRANSFER K \"S\",\"D\"");
    mSerial.mTransferSize = 0;
    mSerial.mTransfer = {{1, TransferStarted},
                         {1, TransferAnnounced},
                         {1, TransferMoving, 5000},
                         {1, TransferMoving, 10100},
                         {1, TransferIdle}};
    const Subscription told =
        mLink.StatusEvent.Connect([this](std::string& /*text*/, std::int16_t& percent, bool&) {
            if (percent == 0) mSerial.mTransferSize = 20000;
        });
    mLink.KermitDownload("D", mPath);
    EXPECT_THAT(mMessages, ElementsAre("Downloading D 0", "Downloading D 50", "Downloading D 100",
                                       "Downloading D -1"))
        << "50.5 is 50, and of a large file";
}

TEST_F(FileTransfer, SmallFilesReportEveryPercentAndLargeOnesTheEvenOnes) {
    for (const auto& [size, odd] : {std::pair{10239, true}, std::pair{10240, false}}) {
        mMessages.clear();
        Expect("TRANSFER K \"R\"");
        mSerial.mTransferSize = size;
        mSerial.mTransfer = {{1, TransferStarted}, {1, TransferAnnounced}};
        for (int percent = 1; percent <= 4; ++percent)
            mSerial.mTransfer.push_back({1, TransferMoving, (size * percent + 50) / 100});
        mSerial.mTransfer.push_back({1, TransferIdle});
        mLink.KermitUpload(mPath, "X");
        EXPECT_EQ(std::count(mMessages.begin(), mMessages.end(), "Uploading X 3"), odd ? 1 : 0)
            << size;
        EXPECT_EQ(std::count(mMessages.begin(), mMessages.end(), "Uploading X 4"), 1) << size;
    }
}

TEST_F(FileTransfer, HalfAPercentGoesToTheEvenNeighbour) {
    Expect("TRANSFER K \"R\"");
    mSerial.mTransferSize = 200;
    mSerial.mTransfer = {{1, TransferStarted}, {1, TransferAnnounced}};
    for (const int bytes : {1, 3, 5, 7})
        mSerial.mTransfer.push_back({1, TransferMoving, bytes});
    mSerial.mTransfer.push_back({1, TransferIdle});
    mLink.KermitUpload(mPath, "X");
    EXPECT_THAT(mMessages, ElementsAre("Uploading X 0", "Uploading X 2", "Uploading X 4",
                                       "Uploading X 100", "Uploading X -1"));
}

TEST_F(FileTransfer, APercentageBeyondItsTypeIsCut) {
    Expect("TRANSFER K \"S\",\"D\"");
    mSerial.mTransfer = {{1, TransferStarted}, {1, TransferMoving, 1000}, {1, TransferIdle}};
    mLink.KermitDownload("D", mPath, 1);
    EXPECT_THAT(mMessages, Contains("Downloading D 32767"));
}

TEST_F(FileTransfer, APercentageIsReportedOnce) {
    Expect("TRANSFER K \"R\"");
    GoesWell(1000, {7, 7, 7});
    mLink.KermitUpload(mPath, "X");
    EXPECT_EQ(std::count(mMessages.begin(), mMessages.end(), "Uploading X 7"), 1);
}

TEST_F(FileTransfer, AnEmptyFileIsAllDoneAtItsEnd) {
    Expect("TRANSFER K \"R\"");
    GoesWell(0, {});
    mLink.KermitUpload(mPath, "X");
    EXPECT_THAT(mMessages, ElementsAre("Uploading X 0", "Uploading X 100", "Uploading X -1"));
}

TEST_F(FileTransfer, IdleBeforeAnyActivityIsNotTheEnd) {
    Expect("TRANSFER K \"R\"", "");
    mSerial.mTransfer = {{10, TransferIdle}, {5000, TransferStarted}, {10, TransferIdle}};
    mSerial.Arrive("Ok\r\n", 6000);
    const std::int64_t start = mLoop.NowMs();
    mLink.KermitUpload(mPath, "X");
    EXPECT_GE(mLoop.NowMs() - start, 5000);
}

TEST_F(FileTransfer, AFailureWaitsASecondAndIsRaisedAfterEverythingIsGivenBack) {
    Expect("TRANSFER K \"S\",\"D\"", "");
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferFailed}};
    const std::int64_t start = mLoop.NowMs();
    EXPECT_RAISED_FROM(mLink.KermitDownload("D", mPath), "1022 QNComm, clsDataLink:KermitDownload");
    EXPECT_EQ(mLoop.NowMs() - start, 20 + 1001 + 2001);
    EXPECT_THAT(mMessages, ElementsAre("Downloading D 100", "Downloading D -1"));
    ExpectGivenBack();
}

TEST_F(FileTransfer, TheEndComesInItsOrder) {
    Expect("TRANSFER K \"R\"", "");
    // The control is left running; what it does after the loop has left is no longer followed.
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferAborting}, {500, TransferStarted}};
    mSerial.mAnswerToAbort = TransferFailed;
    std::int64_t allDone = 0;
    mOnStatus = [&](const std::string&, bool&) {
        if (mMessages.back() == "Uploading label.prg 100")
            mSerial.Arrive("Ok\r\n", 700);
        else
            EXPECT_EQ(mLoop.NowMs() - allDone, 700) << "the prompt was waited for in between";
        allDone = mLoop.NowMs();
        mSerial.mLog.push_back(mMessages.back());
    };
    EXPECT_RAISED(mLink.KermitUpload(mPath, "X"), 1023);
    const auto from = std::ranges::find(mSerial.mLog, "Uploading label.prg 100");
    EXPECT_THAT(Lines(from, mSerial.mLog.end()),
                ElementsAre("Uploading label.prg 100", "Uploading label.prg -1", "TransferState 6",
                            "Close", "Mode 0", "Threshold 1"));
}

TEST_F(FileTransfer, AControlThatCannotBeAbortedIsLeftToItself) {
    Expect("TRANSFER K \"R\"", "");
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferAborting}};
    mSerial.mOnAbort = [] { throw QNError(SerialErrDevice, "PDQComm", "gone"); };
    EXPECT_RAISED(mLink.KermitUpload(mPath, "X"), 1023);
    ExpectGivenBack();
}

TEST_F(FileTransfer, ASecondTransferStartsAfresh) {
    Expect("TRANSFER K \"R\"", "");
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferFailed}};
    EXPECT_RAISED(mLink.KermitUpload(mPath, "X"), 1023);
    Expect("TRANSFER K \"R\"");
    GoesWell(1000, {50});
    mLink.KermitUpload(mPath, "Y");
    EXPECT_THAT(mMessages, Contains("Uploading Y 50"));
}

TEST_F(FileTransfer, TheLineIsEmptyWhenTheProtocolBegins) {
    mSerial.mOnThreshold = [this](std::int16_t threshold) {
        if (threshold != 0) return;
        mSerial.Arrive("left behind\r\n");
        mSerial.mFlushes.clear();
    };
    Expect("TRANSFER K \"R\"");
    GoesWell(1000, {50});
    mOnStatus = [this](const std::string&, bool&) {
        EXPECT_EQ(mSerial.ReceiveCount(), 0) << "neither old bytes nor the command's echo";
        mOnStatus = {};
    };
    mLink.KermitUpload(mPath, "X");
    EXPECT_THAT(mSerial.mFlushes, ElementsAre("Transmit", "Receive"));
}

TEST_F(FileTransfer, TheStateOfClosingIsActivity) {
    Expect("TRANSFER K \"R\"");
    mSerial.mTransfer = {{10, TransferClosing}, {10, TransferIdle}};
    mLink.KermitUpload(mPath, "X");
    EXPECT_THAT(mMessages.back(), "Uploading label.prg -1");
}

TEST_F(FileTransfer, ARefusedClaimTransfersNothingAndRaisesNothing) {
    mSerial.SetTag("EXCLUSIVE_USE");
    mLink.KermitUpload(mPath, "X");
    mLink.KermitUpload(mPath, "X", true);
    mLink.KermitDownload("X", mPath);
    EXPECT_THAT(mMessages, IsEmpty());
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(FileTransfer, AfterACancelTheControlsEndDecides) {
    Expect("TRANSFER K \"R\"");
    GoesWell(1000, {50, 75}); // it was all but over
    mOnStatus = [](const std::string&, bool& cancel) { cancel = true; };
    mLink.KermitUpload(mPath, "X");
    EXPECT_THAT(mSerial.mLog, Contains("TransferState 6"));
    EXPECT_THAT(mMessages, Contains("Uploading X 75"));
}

TEST_F(FileTransfer, ACancelAbortsAndGoesOnUntilTheControlEnds) {
    Expect("TRANSFER K \"R\"");
    mSerial.mTransferSize = 1000;
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferAnnounced}, {10, TransferMoving, 500}};
    mSerial.mAnswerToAbort = TransferFailed;
    mOnStatus = [](const std::string&, bool& cancel) { cancel = true; };
    EXPECT_RAISED_FROM(mLink.KermitUpload(mPath, "X"), "1023 QNComm, clsDataLink:KermitUpload");
    EXPECT_THAT(mSerial.mLog, Contains("TransferState 6"));
    ExpectGivenBack();
}

TEST_F(FileTransfer, AnAbortThatTheControlAsksForIsWrittenAndAwaited) {
    Expect("TRANSFER K \"R\"");
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferAbortRequest}};
    mSerial.mAnswerToAbort = TransferFailed;
    EXPECT_RAISED(mLink.KermitUpload(mPath, "X"), 1023);
    EXPECT_THAT(mSerial.mLog, Contains("TransferState 6"));
}

TEST_F(FileTransfer, AnAbortThatTheControlAsksForIsNotTheEndYet) {
    Expect("TRANSFER K \"R\"");
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferAbortRequest}, {10, TransferIdle}};
    mLink.KermitUpload(mPath, "X");
    EXPECT_THAT(mSerial.mLog, Contains("TransferState 6"));
}

TEST_F(FileTransfer, TheThresholdComesBackWhenTheCommandCannotBeSent) {
    mSerial.Handshake();
    mSerial.mOnThreshold = [this](std::int16_t threshold) {
        if (threshold == 0) mSerial.mDrainPerMs = 0; // from here on nothing leaves
    };
    mSerial.Expect("TRANSFER K \"R\"\r\n");
    EXPECT_RAISED(mLink.KermitUpload(mPath, "X"), 1007);
    ExpectGivenBack();
}

TEST_F(FileTransfer, ClaimsAreRefusedWhileAFileTravels) {
    Expect("TRANSFER K \"R\"");
    GoesWell(1000, {50});
    mOnStatus = [this](const std::string&, bool&) {
        EXPECT_FALSE(mLink.AcquirePort());
        EXPECT_FALSE(mLink.AutoConnect(1));
    };
    mLink.KermitUpload(mPath, "X");
    ExpectGivenBack();
}

TEST_F(FileTransfer, BinaryUploadTakesTheOpenPortAsItIs) {
    EXPECT_RAISED_FROM(mLink.BinaryUpload("/no/such/file"), "1011 clsDataLink, BinaryUpload");
    EXPECT_RAISED_FROM(mLink.BinaryUpload(mPath), "1024 clsDataLink, BinaryUpload");
    mLink.SetTerminalActive(true);
    GoesWell(1000, {50});
    mLink.BinaryUpload(mPath, BinaryKermit);
    EXPECT_EQ(mSerial.mSent, "");
    EXPECT_THAT(mSerial.mLog, Contains("Protocol 6"));
    EXPECT_THAT(mSerial.mLog, Contains("Kind 2"));
    EXPECT_THAT(mSerial.mLog, Not(Contains("Threshold 0")));
    EXPECT_EQ(mMessages.back(), "Uploading label.prg -1");
    EXPECT_EQ(mLink.UseCount(), 1);
}

TEST_F(FileTransfer, ABinaryTransferStartsOnAnEmptyLine) {
    mLink.SetTerminalActive(true);
    mSerial.mFlushes.clear();
    GoesWell(1000, {50});
    mLink.BinaryDownload(mPath, BinaryKermit);
    EXPECT_THAT(mSerial.mFlushes, ElementsAre("Transmit", "Receive"));
    EXPECT_THAT(mSerial.mLog, Contains("Protocol 6"));
    EXPECT_THAT(mSerial.mLog, Contains("ReceiveFile " + mPath));
}

TEST_F(FileTransfer, ABinaryDownloadReadsItsBytesItself) {
    mLink.SetTerminalActive(true);
    GoesWell(1000, {50});
    std::vector<std::int16_t> thresholds;
    mOnStatus = [&](const std::string&, bool&) {
        thresholds.push_back(mSerial.ReceiveThreshold());
    };
    mLink.BinaryDownload(mPath);
    EXPECT_THAT(thresholds, AllOf(Not(IsEmpty()), Each(0)));
    EXPECT_EQ(mSerial.ReceiveThreshold(), 1);
}

TEST_F(FileTransfer, EachTransferHasATargetNameOfItsOwn) {
    Expect("TRANSFER K \"R\"");
    GoesWell(10, {});
    mLink.KermitUpload(mPath, "KERMITS.PRG");
    mLink.SetTerminalActive(true);
    GoesWell(10, {});
    mLink.BinaryUpload(mPath);
    EXPECT_EQ(mSerial.mTransferName, "label.prg");
    GoesWell(10, {});
    mLink.BinaryDownload(mPath);
    EXPECT_EQ(mSerial.mTransferName, mPath);
}

TEST_F(FileTransfer, BinaryFailuresCarryTheKermitSources) {
    mLink.SetTerminalActive(true);
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferFailed}};
    EXPECT_RAISED_FROM(mLink.BinaryUpload(mPath), "1023 QNComm, clsDataLink:KermitUpload");
    EXPECT_RAISED_FROM(mLink.BinaryDownload(mPath), "1022 QNComm, clsDataLink:KermitDownload");
    EXPECT_EQ(mSerial.ReceiveThreshold(), 1);
    EXPECT_EQ(mLink.UseCount(), 1);
}

TEST_F(FileTransfer, ATerminalHiddenMeanwhileIsGivenBackAtTheEnd) {
    mLink.SetTerminalActive(true);
    GoesWell(1000, {50});
    mOnStatus = [this](const std::string&, bool&) { mLink.SetTerminalActive(false); };
    mLink.BinaryDownload(mPath);
    EXPECT_FALSE(mSerial.PortOpen());
}

TEST_F(FileTransfer, TearDownBeforeTheFirstPacketEndsTheWait) {
    for (const bool binary : {false, true}) {
        mLoop.After(5000, [this] { mLink.TearDown(); });
        if (!binary) Expect("TRANSFER K \"R\"");
        const auto send = [&] {
            if (binary)
                mLink.BinaryUpload(mPath);
            else
                mLink.KermitUpload(mPath, "LABEL.PRG");
        };
        EXPECT_RAISED(send(), 91);
        EXPECT_EQ(mLink.UseCount(), 0);
        mLink.SetSerialPort(&mSerial);
        mSerial.SetPortOpen(true);
    }
}

TEST_F(FileTransfer, APrinterThatRefusesEndsItAtOnceWithItsOwnError) {
    const std::string refusal = "Error 1018: Device not found\r\n";
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferStarted, 0, refusal}};
    Expect("TRANSFER K \"S\",\"card9:D\"", refusal + "Ok\r\n");
    const std::int64_t begun = mLoop.NowMs();
    EXPECT_RAISED_FROM(mLink.KermitDownload("card9:D", mPath), "61018 clsDatalink:GetPrinterError");
    EXPECT_EQ(mLoop.NowMs(), begun + 400) << "when the prompt comes";
    ExpectGivenBack();
}

// The printer was at its prompt: it complains of the packets, and what they leave in its input
// line would be the beginning of the next command.
TEST_F(FileTransfer, ABinaryTransferToAPromptEndsAtOnceAndItsPacketsAreNoCommand) {
    mLink.SetTerminalActive(true);
    mSerial.mTransfer = {{10, TransferStarted},
                         {10, TransferStarted, 0, "**B01\r\nError 19: Syntax error\r\n"}};
    const std::int64_t begun = mLoop.NowMs();
    EXPECT_RAISED_FROM(mLink.BinaryDownload(mPath), "1022 QNComm, clsDataLink:KermitDownload");
    EXPECT_EQ(mLoop.NowMs(), begun + 20);
    mSerial.Expect(")(\r\n").Reply(")(\r\nError 19: Syntax error\r\nOk\r\n");
    mSerial.Handshake();
    EXPECT_TRUE(mLink.AcquirePort());
    EXPECT_EQ(mLink.PreviousSysvar18(), 0);
    mSerial.Handshake();
    EXPECT_TRUE(mLink.AcquirePort()) << "once";
}

TEST_F(FileTransfer, APromptInThePlaceOfAPacketEndsItAsFailed) {
    const std::int64_t begun = mLoop.NowMs();
    Expect("TRANSFER K \"R\"");
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferStarted, 0, "Ok\r\n"}};
    EXPECT_RAISED_FROM(mLink.KermitUpload(mPath, "X"), "1023 QNComm, clsDataLink:KermitUpload");
    EXPECT_EQ(mLoop.NowMs(), begun + 400) << "when the prompt comes";
}

TEST_F(FileTransfer, WhatIsNoWholeLineOfARefusalIsNone) {
    for (const char* heard : {"Ok", "Okay\r\n", "Error 1018: Dev", "Errors: none\r\n", "\1+ N3"}) {
        Expect("TRANSFER K \"R\"");
        mSerial.mTransfer = {
            {10, TransferStarted}, {10, TransferStarted, 0, heard}, {10, TransferIdle}};
        EXPECT_NO_THROW(mLink.KermitUpload(mPath, "X")) << heard;
    }
}

TEST_F(FileTransfer, OnlyATransferThatAsksThePrinterHoldsItsFirstPacketBack) {
    mSerial.mTransfer = {{10, TransferStarted}, {10, TransferIdle}};
    Expect("TRANSFER K \"R\"");
    mLink.KermitUpload(mPath, "X");
    EXPECT_EQ(mSerial.TransferHold(), 400);
    mLink.KermitUpload(mPath, "X", true);
    EXPECT_EQ(mSerial.TransferHold(), 0) << "the printer's side was started by hand";
    Expect("TRANSFER K \"S\",\"X\"");
    mLink.KermitDownload("X", mPath);
    EXPECT_EQ(mSerial.TransferHold(), 400);
    mLink.SetTerminalActive(true);
    mLink.BinaryUpload(mPath);
    EXPECT_EQ(mSerial.TransferHold(), 0);
}

TEST_F(FileTransfer, TheEndOfTheProgramAbortsTheTransfer) {
    Expect("TRANSFER K \"R\"", "");
    mSerial.mTransfer = {{10, TransferStarted}};
    mLoop.After(500, [] { throw OperationCancelled(); });
    EXPECT_THROW(mLink.KermitUpload(mPath, "X"), OperationCancelled);
    EXPECT_THAT(mSerial.mLog, Contains("TransferState 6"));
    ExpectGivenBack();
}

} // namespace
} // namespace qncomm::testing
