#include "PrinterFixture.h"
#include "testing/core/ScratchFolder.h"

namespace qncomm::testing {
namespace {

class Transfers : public PrinterFixture {
  protected:
    Transfers() {
        mSerial.mTransferSize = 10;
        mSerial.mTransfer = {{1, TransferStarted}, {1, TransferAnnounced}, {1, TransferIdle}};
    }

    void ScriptCurrentDevice(const std::string& device) {
        mSerial.Handshake().Exchange("FILES \".\"",
                                     {"FILES ON " + device, "1 BYTES FREE 1 BYTES USED"});
    }
    /// A device whose list is not out of date, nor becomes so before the file travels.
    std::shared_ptr<clsPrinterDevice> Listed(const std::string& name) {
        Know("R7A");
        mQuorin.Devices(); // fills the table
        const auto device = mQuorin.PrinterDevices()->Item(name);
        mSerial.mOnThreshold = [device](std::int16_t) { device->Dirty = false; };
        device->Dirty = false;
        return device;
    }
    void ScriptKermit(const std::string& command) {
        mSerial.Handshake().Expect(command + "\r\n").Reply(command + "\r\n").Reply("Ok\r\n", 100);
    }

    ScratchFolder mFolder;
    const std::string mPath = mFolder.Write("kermit-upload.prg", "10 PRINT 1");
};

TEST_F(Transfers, AnUploadReplacesThePrintersFileAndKeepsTheCurrentDevice) {
    Know("R7A");
    ScriptCurrentDevice("ram:");
    mSerial.Handshake().Exchange("KILL \"card1:X.PRG\"");
    ScriptKermit("CHDIR\"card1:\":TRANSFER K \"R\"");
    mSerial.Handshake().Exchange("CHDIR \"ram:\"");
    mQuorin.KermitUpload(mPath, "card1:X.PRG");
    EXPECT_TRUE(mQuorin.PrinterDevices()->Item("card1:")->Dirty);
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Transfers, AnUploadToTheCurrentDeviceChangesNone) {
    Know("R7A");
    ScriptCurrentDevice("ram:");
    mSerial.Handshake().Exchange("KILL \"ram:X.PRG\"", {"Error 1022: File not found"});
    ScriptKermit("CHDIR\"ram:\":TRANSFER K \"R\"");
    mQuorin.KermitUpload(mPath, "ram:X.PRG");
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Transfers, AnUploadToADeviceAloneDeletesTheFileOfItsName) {
    Know("R7A");
    ScriptCurrentDevice("card1:");
    mSerial.Handshake().Exchange("KILL \"card1:kermit-upload.prg\"");
    ScriptKermit("CHDIR\"card1:\":TRANSFER K \"R\"");
    mQuorin.KermitUpload(mPath, "card1:");
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Transfers, AnUploadThatWorkedIsNoErrorForADeviceThatTheTableLacks) {
    Know("R7C");
    ScriptCurrentDevice("ram:");
    mSerial.Handshake().Exchange("KILL \"tmp:X.PRG\"");
    ScriptKermit("CHDIR\"tmp:\":TRANSFER K \"R\"");
    mSerial.Handshake().Exchange("CHDIR \"ram:\"");
    EXPECT_NO_THROW(mQuorin.KermitUpload(mPath, "tmp:X.PRG"));
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Transfers, AMissingHostFileDoesNotCostThePrintersCopy) {
    EXPECT_RAISED_FROM(mQuorin.KermitUpload("/no/such/file", "ram:X.PRG"),
                       "1011 clsDataLink,Upload");
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(Transfers, AnUploadMarksTheDeviceWhenItIsThere) {
    const auto device = Listed("ram:");
    ScriptCurrentDevice("ram:");
    mSerial.Handshake().Exchange("KILL \"ram:X.PRG\"");
    ScriptKermit("CHDIR\"ram:\":TRANSFER K \"R\"");
    mQuorin.KermitUpload(mPath, "ram:X.PRG");
    EXPECT_TRUE(device->Dirty);
}

TEST_F(Transfers, AnUploadWithoutADeviceMarksTheCurrentOneAndMakesNoneCurrent) {
    const auto device = Listed("ram:");
    ScriptCurrentDevice("ram:");
    mSerial.Handshake().Exchange("KILL \"X.PRG\"");
    ScriptCurrentDevice("ram:"); // what was deleted
    ScriptKermit("TRANSFER K \"R\"");
    ScriptCurrentDevice("ram:"); // what has come
    mQuorin.KermitUpload(mPath, "X.PRG");
    EXPECT_TRUE(device->Dirty);
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Transfers, AFailedUploadMarksTheDeviceAllTheSame) {
    const auto device = Listed("ram:");
    ScriptCurrentDevice("ram:");
    mSerial.Handshake().Exchange("KILL \"ram:X.PRG\"");
    mSerial.Handshake()
        .Expect("CHDIR\"ram:\":TRANSFER K \"R\"\r\n")
        .Reply("CHDIR\"ram:\":TRANSFER K \"R\"\r\n");
    mSerial.mTransfer = {{1, TransferStarted}, {1, TransferFailed}};
    EXPECT_RAISED(mQuorin.KermitUpload(mPath, "ram:X.PRG"), 1023);
    EXPECT_TRUE(device->Dirty);
}

TEST_F(Transfers, AManualUploadSendsNothingAndMarksItsDevice) {
    const auto device = Listed("ram:");
    const std::size_t sent = mSerial.mSent.size();
    mQuorin.KermitUpload(mPath, "ram:X.PRG", true);
    EXPECT_EQ(mSerial.mSent.size(), sent);
    EXPECT_TRUE(device->Dirty);
}

TEST_F(Transfers, AManualUploadLooksForNoPrinterWhereNothingIsListedYet) {
    mQuorin.KermitUpload(mPath, "X.PRG", true);
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(Transfers, AFailedUploadAsksNothingMoreOfThePrinter) {
    Know("R7A");
    ScriptCurrentDevice("ram:");
    mSerial.Handshake().Exchange("KILL \"card1:X.PRG\"");
    mSerial.Handshake()
        .Expect("CHDIR\"card1:\":TRANSFER K \"R\"\r\n")
        .Reply("CHDIR\"card1:\":TRANSFER K \"R\"\r\n");
    mSerial.mTransfer = {{1, TransferStarted}, {1, TransferFailed}};
    EXPECT_RAISED(mQuorin.KermitUpload(mPath, "card1:X.PRG"), 1023);
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Transfers, WithoutAKnownCurrentDeviceNoneIsMadeCurrentAgain) {
    Know("R7A");
    mSerial.Handshake().Exchange("FILES \".\"", {"no device here"});
    mSerial.Handshake().Exchange("KILL \"card1:X.PRG\"");
    ScriptKermit("CHDIR\"card1:\":TRANSFER K \"R\"");
    mQuorin.KermitUpload(mPath, "card1:X.PRG");
    EXPECT_TRUE(mSerial.ScriptDone());
}

} // namespace
} // namespace qncomm::testing
