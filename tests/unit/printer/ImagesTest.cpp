#include "PrinterFixture.h"
#include "testing/core/ScratchFolder.h"

#include <filesystem>

namespace qncomm::testing {
namespace {

const std::string Pcx = std::string("\x0A\x05", 2) + "pixels";

class Images : public PrinterFixture {
  protected:
    /// A known model with a clean listing that holds these images.
    void KnowImages(const Lines& rows) {
        Know("R7A");
        ScriptListing(rows);
        mQuorin.Images();
    }
    void ScriptListing(Lines rows) {
        rows.emplace_back("100 BYTES FREE  20 BYTES USED");
        Script("IMAGES", rows);
    }
    /// The line of an installation and the file behind it.
    void ScriptLoad(const std::string& line, const std::string& bytes = Pcx) {
        mSerial.Expect(line + "\r").Reply(line + "\r\n").Expect(bytes).Reply("\r\nOk\r\n", 4999);
    }
    Lines Listed() { return PrinterFixture::Listed(*Device("images:").Files); }

    /// Files of the test's folder that this process holds open.
    std::size_t OpenFiles() const {
        std::size_t open = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            const auto target = std::filesystem::read_symlink(entry.path(), gone).string();
            open += target.starts_with(mFolder.File("")) ? 1U : 0U;
        }
        return open;
    }

    ScratchFolder mFolder;
};

// -- Listing and removing

TEST_F(Images, AreListedWithoutAHeader) {
    ScriptIdentity("R7A");
    ScriptListing({"LOGO.PCX  120     A.PCX  7", "B.PCX  8", "not told apart"});
    mQuorin.Images();
    EXPECT_THAT(Listed(), ElementsAre("LOGO.PCX 120", "A.PCX 7", "B.PCX 8"));
    EXPECT_EQ(Device("images:").BytesFree, 100);
    EXPECT_FALSE(Device("images:").Dirty);
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_THAT(mDesktop.mBoxes[0].text, ::testing::HasSubstr("PrinterDevice 'images:'."));
}

TEST_F(Images, OfAModelWithoutListingAreNoneAndStayDirty) {
    ScriptIdentity("R7C");
    ScriptListing({"LOGO.PCX  120"});
    mQuorin.Images();
    EXPECT_THAT(Listed(), IsEmpty());
    EXPECT_TRUE(Device("images:").Dirty);
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "File not implemented for the R7C printer.");
    EXPECT_EQ(mDesktop.mBoxes[0].title, "");
}

TEST_F(Images, OfAModelThatBecameUnknownAreNoneWithoutAWord) {
    KnowImages({"LOGO.PCX  120"});
    Reconnect("R9Z");
    Device("images:").Dirty = true;
    ScriptListing({"LOGO.PCX  120"});
    mQuorin.Images();
    EXPECT_THAT(Listed(), IsEmpty());
    EXPECT_TRUE(Device("images:").Dirty);
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(Images, ARefusedPortChangesNothing) {
    KnowImages({"LOGO.PCX  120"});
    const std::string path = mFolder.Write("logo.pcx", Pcx);
    RefusePort();
    mQuorin.Images();
    mQuorin.RemoveImage("LOGO.PCX");
    mQuorin.InstallImage(path);
    mQuorin.PrintImage(path);
    mQuorin.Fileload(path);
    EXPECT_THAT(Listed(), ElementsAre("LOGO.PCX 120"));
    EXPECT_THAT(DirtyDevices(), ::testing::Not(::testing::Contains("images:")));
    GrantPort();
}

TEST_F(Images, ARemovalSendsTheNameAsItWasGiven) {
    KnowImages({"LOGO.PCX  120"});
    Script("REMOVE IMAGE \"Logo.pcx\"");
    mQuorin.RemoveImage("Logo.pcx");
    EXPECT_TRUE(Device("images:").Dirty);
}

TEST_F(Images, AHostNameTravelsInThePrintersCharacterSetAndIsRemovedByIt) {
    const std::string name = "GR\xF6\xDF"
                             "E.PCX";
    KnowImages({});
    mSerial.Handshake();
    ScriptLoad("IMAGE LOAD \"" + name + "\",8,\"\"");
    mQuorin.InstallImage(mFolder.Write("gr\u00F6\u00DFe.pcx", Pcx));
    ScriptListing({name + "  8"});
    Script("REMOVE IMAGE \"" + name + "\"");
    mQuorin.RemoveImage(name);
    EXPECT_TRUE(mSerial.ScriptDone());
}

TEST_F(Images, ARemovalOfAnUnknownNameSendsNothing) {
    KnowImages({"LOGO.PCX  120"});
    mQuorin.RemoveImage("OTHER.PCX");
    EXPECT_FALSE(Device("images:").Dirty);
}

TEST_F(Images, ARemovalListsFirstWhenTheListingIsMissingOrOutOfDate) {
    ScriptIdentity("R7A");
    ScriptListing({"LOGO.PCX  120"});
    Script("REMOVE IMAGE \"LOGO.PCX\"");
    mQuorin.RemoveImage("LOGO.PCX");
    ScriptListing({"B.PCX  8"});
    mQuorin.RemoveImage("LOGO.PCX");
    EXPECT_THAT(Listed(), ElementsAre("B.PCX 8"));
}

// -- Installing

TEST_F(Images, AnInstalledImageReplacesOneOfItsName) {
    KnowImages({"LOGO.PCX  120"});
    const std::string path = mFolder.Write("Logo.pcx", Pcx);
    mSerial.Handshake();
    Script("REMOVE IMAGE \"LOGO.PCX\"");
    ScriptLoad("IMAGE LOAD \"LOGO.PCX\",8,\"S\"");
    mQuorin.InstallImage(path, true);
    EXPECT_TRUE(Device("images:").Dirty);
    EXPECT_THAT(mMessages,
                ElementsAre("Downloading " + path + " 0", "Downloading " + path + " -1"));
}

TEST_F(Images, AnImageThatIsNotPermanentHasAnEmptyOption) {
    KnowImages({});
    const std::string bytes("\x0A\x03\0\r\n\x1AOk\r\n\xFF", 11);
    const std::string path = mFolder.Write("a.pcx", bytes);
    mSerial.Handshake();
    ScriptLoad("IMAGE LOAD \"A.PCX\",11,\"\"", bytes);
    mQuorin.InstallImage(path);
}

TEST_F(Images, AMissingFileIsRefusedBeforeThePrinterIsAsked) {
    EXPECT_RAISED_FROM(mQuorin.InstallImage(mFolder.File("none.pcx")),
                       "1013 clsQuorin:InstallImage");
    EXPECT_RAISED_FROM(mQuorin.InstallImage(mFolder.File("")), "1013 clsQuorin:InstallImage");
    EXPECT_RAISED_FROM(mQuorin.Fileload(mFolder.File("none.bin")), "1013 clsQuorin:InstallImage");
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(Images, OnlyTheFirstTwoBytesTellAnImage) {
    KnowImages({});
    for (const std::string& bytes :
         {std::string("\x0A\x02xx"), std::string("\x0A\x04xx"), std::string("\x0B\x05xx"),
          std::string("\x0A"), std::string()}) {
        const std::string path = mFolder.Write("a.pcx", bytes);
        mSerial.Handshake();
        EXPECT_RAISED_FROM(mQuorin.InstallImage(path), "1015 clsQuorin:InstallImage");
        EXPECT_FALSE(mSerial.PortOpen());
    }
    EXPECT_FALSE(Device("images:").Dirty);
}

TEST_F(Images, ARefusedImageStaysOpenUntilTearDown) {
    KnowImages({});
    for (const char* name : {"a.pcx", "b.pcx"}) {
        const std::string path = mFolder.Write(name, "no image");
        mSerial.Handshake();
        EXPECT_RAISED(mQuorin.InstallImage(path), ErrImageFormat);
        EXPECT_EQ(OpenFiles(), 1U) << "the last one alone";
    }
    mQuorin.TearDown();
    EXPECT_EQ(OpenFiles(), 0U);
}

TEST_F(Images, AnAcceptedImageIsClosed) {
    KnowImages({});
    const std::string path = mFolder.Write("a.pcx", Pcx);
    mSerial.Handshake();
    ScriptLoad("IMAGE LOAD \"A.PCX\",8,\"\"");
    mQuorin.InstallImage(path);
    EXPECT_EQ(OpenFiles(), 0U);
}

TEST_F(Images, ASilentPrinterOrAPrinterErrorLeavesNoClaimAndNoMark) {
    KnowImages({});
    const std::string path = mFolder.Write("a.pcx", Pcx);
    mSerial.Handshake().Expect("IMAGE LOAD \"A.PCX\",8,\"\"\r").Expect(Pcx);
    EXPECT_RAISED(mQuorin.InstallImage(path), ErrInputTimeout);
    mSerial.Handshake()
        .Expect("IMAGE LOAD \"A.PCX\",8,\"\"\r")
        .Reply("IMAGE LOAD \"A.PCX\",8,\"\"\r\n")
        .Expect(Pcx)
        .Reply("x\r\nError 1040: Disk full\r\nOk\r\n");
    EXPECT_RAISED(mQuorin.InstallImage(path), 61040);
    EXPECT_FALSE(Device("images:").Dirty);
}

TEST_F(Images, AHandlerIsRefusedThePortBetweenThePieces) {
    KnowImages({});
    const std::string path = mFolder.Write("a.pcx", Pcx);
    mOnStatus = [this](const std::string&, std::int16_t) {
        EXPECT_FALSE(mQuorin.PortOpen());
        return true; // a transfer always runs to its end
    };
    mSerial.Handshake();
    ScriptLoad("IMAGE LOAD \"A.PCX\",8,\"\"");
    mQuorin.InstallImage(path);
}

// -- Printing

TEST_F(Images, AListedImageIsPrintedWithoutInstallingIt) {
    KnowImages({"LOGO.PCX  120"});
    mSerial.Handshake().Exchange("CLL:PP1,1:NORIMAGE:PM\"LOGO.PCX\":PF");
    mQuorin.PrintImage("/no/such/folder/logo.pcx");
    mSerial.Handshake().Exchange("CLL:PP20,-3:INVIMAGE:PM\"LOGO.PCX\":PF");
    mQuorin.PrintImage("LOGO.PCX", 20, -3, true);
}

TEST_F(Images, AnImageThatIsNotListedIsInstalledFirst) {
    KnowImages({});
    const std::string path = mFolder.Write("logo.pcx", Pcx);
    mSerial.Handshake().Handshake();
    ScriptLoad("IMAGE LOAD \"LOGO.PCX\",8,\"\"");
    mSerial.Exchange("CLL:PP1,1:NORIMAGE:PM\"LOGO.PCX\":PF");
    mQuorin.PrintImage(path);
}

TEST_F(Images, AReloadRemovesAndInstallsAListedImage) {
    KnowImages({"LOGO.PCX  120"});
    const std::string path = mFolder.Write("logo.pcx", Pcx);
    mSerial.Handshake().Handshake();
    Script("REMOVE IMAGE \"LOGO.PCX\"");
    ScriptLoad("IMAGE LOAD \"LOGO.PCX\",8,\"\"");
    mSerial.Exchange("CLL:PP1,1:NORIMAGE:PM\"LOGO.PCX\":PF");
    mQuorin.PrintImage(path, 1, 1, false, true);
}

TEST_F(Images, AnErrorDeepInAPrintGivesBackEveryClaim) {
    KnowImages({"LOGO.PCX  120"});
    const std::string path = mFolder.Write("logo.pcx", Pcx);
    mSerial.Handshake().Handshake();
    Script("REMOVE IMAGE \"LOGO.PCX\"", {"Error 1030: Image in use"});
    EXPECT_RAISED(mQuorin.PrintImage(path, 1, 1, false, true), 61030);
    EXPECT_FALSE(mSerial.PortOpen());
    mSerial.Handshake();
    EXPECT_RAISED_FROM(mQuorin.PrintImage(mFolder.File("none.pcx")), "1013 clsQuorin:InstallImage");
    EXPECT_FALSE(mSerial.PortOpen());
}

// -- Any file

TEST_F(Images, AFileIsLoadedAsItIsAndMarksNothing) {
    KnowCleanDevices("R7A");
    const std::string path = mFolder.Write("data.bin", "no image\r\n");
    mSerial.Handshake()
        .Expect("FILE& LOAD \"DATA.BIN\",10\r")
        .Reply("FILE& LOAD \"DATA.BIN\",10\r\n");
    mSerial.Expect("no image\r\n").Reply("Ok\r\n", 999);
    mQuorin.Fileload(path, "card1:");
    EXPECT_THAT(DirtyDevices(), IsEmpty());
}

TEST_F(Images, AnEmptyFileSendsNoPiece) {
    KnowCleanDevices("R7A");
    const std::string path = mFolder.Write("empty.bin", "");
    mSerial.Handshake()
        .Expect("FILE& LOAD \"EMPTY.BIN\",0\r")
        .Reply("FILE& LOAD \"EMPTY.BIN\",0\r\nOk\r\n");
    mQuorin.Fileload(path);
    EXPECT_THAT(mMessages, ElementsAre("Downloading " + path + " -1"));
}

} // namespace
} // namespace qncomm::testing
