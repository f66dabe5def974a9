#include "LinkFixture.h"

#include <filesystem>
#include <fstream>

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::Not;
using ::testing::StartsWith;
using Reported = ScriptedSerial::Reported;

class FileTransfer : public LinkFixture {
  protected:
    FileTransfer() : mPath((std::filesystem::path(::testing::TempDir()) / "label.prg").string()) {
        std::ofstream(mPath) << "10 PRINT 1";
        mLink.SetImmediateMode(true);
    }
    ~FileTransfer() override { std::filesystem::remove(mPath); }

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

    std::string mPath;
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

TEST_F(FileTransfer, APercentageIsReportedOnce) {
    Expect("TRANSFER K \"R\"");
    GoesWell(1000, {7, 7, 7});
    mLink.KermitUpload(mPath, "X");
    EXPECT_EQ(std::count(mMessages.begin(), mMessages.end(), "Uploading X 7"), 1);
}

TEST_F(FileTransfer, AnEmptyFileIsAllDone) {
    Expect("TRANSFER K \"R\"");
    GoesWell(0, {});
    mLink.KermitUpload(mPath, "X");
    EXPECT_THAT(mMessages, ElementsAre("Uploading X 100", "Uploading X 100", "Uploading X -1"));
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
