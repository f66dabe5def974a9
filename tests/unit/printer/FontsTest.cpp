#include "PrinterFixture.h"
#include "platform/SystemFiles.h"
#include "testing/core/ScratchFolder.h"

namespace qncomm::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Fonts : public PrinterFixture {
  protected:
    static Lines ListingOf(const Lines& rows) {
        Lines reply = rows;
        reply.emplace_back("100 BYTES FREE  20 BYTES USED");
        return reply;
    }
    Lines Listed() { return PrinterFixture::Listed(*Device("fonts:").Files); }

    /// One line of sample text, whose statement the printer answers.
    void ScriptPrint(const std::string& statement) { mSerial.Handshake().Exchange(statement); }
    void Print(const std::string& font, std::int16_t direction) {
        std::string text = "x";
        std::int16_t size = 0;
        std::int16_t width = 0;
        mQuorin.PrintFont(text, font, size, 0, width, direction);
    }

    ScratchFolder mFolder;
};

// -- Listing

TEST_F(Fonts, AreListedWithoutAHeader) {
    ScriptIdentity("R7B");
    Script("FONTS", ListingOf({"MS030RMN.1    MS030RMN.2", "SWISS"}));
    mQuorin.Fonts();
    EXPECT_THAT(Listed(), ElementsAre("MS030RMN.1 0", "MS030RMN.2 0", "SWISS 0"));
    EXPECT_EQ(Device("fonts:").BytesFree, 100);
    EXPECT_EQ(Device("fonts:").BytesUsed, 20);
    EXPECT_FALSE(Device("fonts:").Dirty);
}

TEST_F(Fonts, ARowThatCannotBeToldApartShowsABox) {
    Know("R7B");
    Script("FONTS", ListingOf({"A  B  C", "SWISS", "swiss"}));
    mQuorin.Fonts();
    EXPECT_THAT(Listed(), ElementsAre("SWISS 0"));
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "Dubble white spaces are used as part of a fontname.\r\n"
                                       "Can\xC2\xB4t show all files!");
    EXPECT_EQ(mDesktop.mBoxes[0].icon, MsgBoxIcon::Exclamation);
}

TEST_F(Fonts, OfAModelWithoutListingAreNoneAndStayDirty) {
    ScriptIdentity("R7C");
    Script("FONTS", ListingOf({"SWISS"}));
    mQuorin.Fonts();
    EXPECT_THAT(Listed(), IsEmpty());
    EXPECT_TRUE(Device("fonts:").Dirty);
    ASSERT_EQ(mDesktop.mBoxes.size(), 1U);
    EXPECT_EQ(mDesktop.mBoxes[0].text, "File not implemented for the R7C printer.");
}

TEST_F(Fonts, AreNotListedOnARefusedPort) {
    KnowCleanDevices("R7B");
    const auto before = Device("fonts:").Files;
    RefusePort();
    mQuorin.Fonts(true);
    mQuorin.RemoveFont("SWISS");
    EXPECT_EQ(Device("fonts:").Files, before);
    EXPECT_THAT(DirtyDevices(), IsEmpty());
    GrantPort();
}

TEST_F(Fonts, AreFilteredOnExtendedModelsOnly) {
    Know("R7G");
    Script("FONTS", ListingOf({"MS030RMN.1    MS030RMN.2", "SWISS    sw120bsn.2"}));
    mQuorin.Fonts(true);
    EXPECT_THAT(Listed(), ElementsAre("SWISS 0"));
    Script("FONTS", ListingOf({"MS030RMN.1"}));
    mQuorin.Fonts(false);
    EXPECT_THAT(Listed(), ElementsAre("MS030RMN.1 0"));
    Reconnect("R7B");
    Script("FONTS", ListingOf({"MS030RMN.1    SWISS"}));
    mQuorin.Fonts(true);
    EXPECT_THAT(Listed(), ElementsAre("MS030RMN.1 0", "SWISS 0"));
}

TEST_F(Fonts, TheFilterReadsKeysWithoutALeadingZeroAndWritesTwoDigits) {
    mSettings->WriteValue("FontsFilterList", "Font3", "swiss");
    mSettings->WriteValue("FontsFilterList", "Font03", "nothing reads this");
    mSettings->WriteValue("FontsFilterList", "Font12", "dutch");
    Know("R7G");
    Script("FONTS", ListingOf({"SWISS    DUTCH", "MS050RMN.2    SW050RSN.1", "MS030RMN.1"}));
    mQuorin.Fonts(true);
    EXPECT_THAT(Listed(), ElementsAre("MS050RMN.2 0", "SW050RSN.1 0"))
        << "the defaults that were replaced are shown";
    const auto value = [this](const char* key) {
        return mSettings->ReadValue("FontsFilterList", key, "-");
    };
    EXPECT_EQ(value("Font00"), "MS030RMN.1");
    EXPECT_EQ(value("Font0"), "-");
    EXPECT_EQ(value("Font03"), "nothing reads this");
    EXPECT_EQ(value("Font09"), "SW020BSN.2");
    EXPECT_EQ(value("Font10"), "SW030RSN.1") << "the one that has two digits either way";
    EXPECT_EQ(value("Font12"), "dutch");
    EXPECT_EQ(value("Font19"), "SW120BSN.2");
}

TEST_F(Fonts, TheFilterIsBuiltOnce) {
    Know("R7G");
    Script("FONTS", ListingOf({"SWISS"}));
    mQuorin.Fonts(true);
    mSettings->WriteValue("FontsFilterList", "Font10", "SWISS");
    Script("FONTS", ListingOf({"SWISS"}));
    mQuorin.Fonts(true);
    EXPECT_THAT(Listed(), ElementsAre("SWISS 0"));
}

TEST_F(Fonts, AFilterWithTheSameNameTwiceOrWithoutSettingsStillFilters) {
    mSettings->WriteValue("FontsFilterList", "Font10", "MS030RMN.1");
    Know("R7G");
    Script("FONTS", ListingOf({"MS030RMN.1    SW120BSN.2"}));
    mQuorin.Fonts(true);
    EXPECT_THAT(Listed(), IsEmpty());
    mLink.SetRegSettings(nullptr);
    clsQuorin withoutSettings(mLink, mDesktop, SystemFiles());
    Script("FONTS", ListingOf({"MS030RMN.1    SWISS"}));
    withoutSettings.Fonts(true);
    EXPECT_EQ(withoutSettings.PrinterDevices()->Item("fonts:")->Files->Count(), 1U);
}

TEST_F(Fonts, SettingsThatCannotBeWrittenDoNotKeepTheFontsFromBeingListed) {
    struct ReadOnlySettings : MemorySettings {
        void WriteValue(std::string_view /*section*/, std::string_view /*key*/,
                        std::string_view /*value*/) override {
            RaiseRuntimeError(RtPermissionDenied);
        }
    };
    mLink.SetRegSettings(std::make_shared<ReadOnlySettings>());
    mLink.SetImmediateMode(true);
    Know("R7G");
    Script("FONTS", ListingOf({"MS030RMN.1    SWISS"}));
    mQuorin.Fonts(true);
    EXPECT_THAT(Listed(), ElementsAre("SWISS 0"));
    EXPECT_THAT(mDesktop.mLog, ElementsAre("Permission denied"));
}

TEST_F(Fonts, ARemovalSendsTheNameAndMarksTheFonts) {
    KnowCleanDevices("R7A");
    Script("REMOVE FONT \"Swiss 721\"");
    mQuorin.RemoveFont("Swiss 721");
    EXPECT_THAT(DirtyDevices(), ElementsAre("fonts:"));
}

// -- Installing

TEST_F(Fonts, AFontFileIsAnnouncedAndSent) {
    KnowCleanDevices("R7G");
    const std::string bytes("\0\x01\r\n\x1A\xFF Ok\r\n", 11);
    const std::string path = mFolder.Write("Swiss.ttf", bytes);
    mSerial.Handshake()
        .Expect("IMAGE LOAD \"SWISS.TTF\",11,\"S\"\r")
        .Reply("IMAGE LOAD \"SWISS.TTF\",11,\"S\"\r\n");
    mSerial.Expect(bytes).Reply("\r\nOk\r\n", 9999);
    mQuorin.InstallFont(path, true);
    EXPECT_THAT(DirtyDevices(), ElementsAre("fonts:"));
    EXPECT_THAT(mMessages,
                ElementsAre("Downloading " + path + " 0", "Downloading " + path + " -1"));
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
}

TEST_F(Fonts, AFontThatIsNotPermanentHasAnEmptyOption) {
    Know("R7C");
    const std::string path = mFolder.Write("a.ttf", "xy");
    mSerial.Handshake()
        .Expect("IMAGE LOAD \"A.TTF\",2,\"\"\r")
        .Expect("xy")
        .Reply("IMAGE LOAD \"A.TTF\",2,\"\"\r\nOk\r\n");
    mQuorin.InstallFont(path);
    EXPECT_TRUE(Device("fonts:").Dirty);
}

TEST_F(Fonts, AMissingFileIsRefusedBeforeThePrinterIsAsked) {
    EXPECT_RAISED_FROM(mQuorin.InstallFont(mFolder.File("none.ttf")), "1016 clsQuorin:InstallFont");
    EXPECT_RAISED_FROM(mQuorin.InstallFont(mFolder.File("")), "1016 clsQuorin:InstallFont");
    EXPECT_EQ(mSerial.mSent, "");
}

TEST_F(Fonts, AModelWithoutTrueTypeIsRefused) {
    const std::string path = mFolder.Write("a.ttf", "xy");
    for (const char* model : {"R7A", "R7B", "R7D", "R7E", "R7F", "R9Z"}) {
        Reconnect(model);
        EXPECT_RAISED_FROM(mQuorin.InstallFont(path), "1017 clsQuorin:InstallFont") << model;
    }
    mLink.SetImmediateMode(false);
    RefusePort();
    mQuorin.InstallFont(path);
    EXPECT_THAT(mDesktop.mLog, ElementsAre("port not available"));
    GrantPort();
}

TEST_F(Fonts, SettingsThatDoNotCarryRawBytesAreRefusedWithoutAsking) {
    const std::string path = mFolder.Write("a.ttf", "xy");
    const auto refused = [&](const char* databits, const char* flow) {
        mLink.SetDatabits(databits);
        mLink.SetFlowcontrol(flow);
        Reconnect("R7G");
        mSerial.Handshake();
        EXPECT_RAISED_FROM(mQuorin.InstallFont(path), "1014 clsQuorin:InstallFont");
        EXPECT_FALSE(mSerial.PortOpen());
    };
    refused("7", "0");
    refused("8", "1");
    refused("8", "3");
    EXPECT_THAT(mDesktop.mBoxes, IsEmpty());
    mLink.SetFlowcontrol("2");
    Reconnect("R7G");
    mSerial.Handshake()
        .Expect("IMAGE LOAD \"A.TTF\",2,\"\"\r")
        .Expect("xy")
        .Reply("IMAGE LOAD \"A.TTF\",2,\"\"\r\nOk\r\n");
    mQuorin.InstallFont(path);
}

// -- Printing

TEST_F(Fonts, ASampleHasDefaultsThatReturnToTheCaller) {
    Know("R7G");
    ScriptPrint("CLL:PP 1,1:NORIMAGE:AN 1:DIR 1:FT\"Swiss\",12,0,100:"
                "PT\"The quick brown fox...\":PF");
    std::string text;
    std::int16_t size = 0;
    std::int16_t width = 0;
    std::int16_t direction = 0;
    mQuorin.PrintFont(text, "Swiss", size, 0, width, direction);
    EXPECT_EQ(text, "The quick brown fox...");
    EXPECT_EQ(size, 12);
    EXPECT_EQ(width, 100);
    EXPECT_EQ(direction, 1);
}

TEST_F(Fonts, ASampleTakesWhatItIsGiven) {
    Know("R7G");
    ScriptPrint("CLL:PP 1,1:INVIMAGE:AN 9:DIR 3:FT\"Swiss\",20,-15,80:PT\"ABC \xE4\":PF");
    std::string text = "abc \xE4";
    std::int16_t size = 20;
    std::int16_t width = 80;
    std::int16_t direction = 3;
    mQuorin.PrintFont(text, "Swiss", size, -15, width, direction, true, true);
    EXPECT_EQ(text, "ABC \xE4");
}

TEST_F(Fonts, TheDefaultsReturnOnARefusedPortToo) {
    RefusePort();
    std::string text;
    std::int16_t size = 0;
    std::int16_t width = 0;
    std::int16_t direction = 0;
    mQuorin.PrintFont(text, "Swiss", size, 0, width, direction, true);
    EXPECT_EQ(text, "THE QUICK BROWN FOX...");
    EXPECT_EQ(size, 12);
    GrantPort();
}

TEST_F(Fonts, EachDirectionHasItsAnchorAndOthersHaveNone) {
    Know("R7G");
    const std::pair<std::int16_t, const char*> rows[] = {{1, "AN 1:DIR 1:"},
                                                         {2, "AN 3:DIR 2:"},
                                                         {3, "AN 9:DIR 3:"},
                                                         {4, "AN 7:DIR 4:"},
                                                         {5, ""},
                                                         {-1, ""}};
    for (const auto& [direction, prefix] : rows) {
        ScriptPrint("CLL:PP 1,1:NORIMAGE:" + std::string(prefix) + "FT\"F\",12,0,100:PT\"x\":PF");
        Print("F", direction);
    }
}

TEST_F(Fonts, TheDirectionFollowsTheFontsOrientation) {
    Know("R7G");
    struct Row {
        const char* font;
        std::int16_t direction;
        const char* prefix;
    };
    const Row rows[] = {{"A.1", 2, "AN 1:DIR 1:"},
                        {"A.1", 4, "AN 9:DIR 3:"},
                        {"A.1", 3, "AN 9:DIR 3:"},
                        {"A.2", 1, "AN 3:DIR 2:"},
                        {"A.2", 3, "AN 7:DIR 4:"},
                        {"A.2", 4, "AN 7:DIR 4:"},
                        {"A.2", 5, ""}};
    for (const Row& row : rows) {
        ScriptPrint("CLL:PP 1,1:NORIMAGE:" + std::string(row.prefix) + "FT\"" + row.font
                    + "\",12,0,100:PT\"x\":PF");
        Print(row.font, row.direction);
    }
}

TEST_F(Fonts, TheFontStatementFollowsTheVersionAsText) {
    const std::pair<const char*, const char*> rows[] = {
        {"v6.99", "FT\"F\":"},          {"v7.00", "FT\"F\",12,0:"},
        {"v7.19", "FT\"F\",12,0:"},     {"v7.2", "FT\"F\",12,0:"},
        {"v7.20", "FT\"F\",12,0,100:"}, {"v8", "FT\"F\",12,0,100:"},
        {"v10.00", "FT\"F\":"},         {"none", "FT\"F\":"}};
    for (const auto& [version, statement] : rows) {
        mLink.SetImmediateMode(false);
        mLink.SetImmediateMode(true);
        Know("R7G", version);
        ScriptPrint("CLL:PP 1,1:NORIMAGE:AN 1:DIR 1:" + std::string(statement) + "PT\"x\":PF");
        Print("F", 1);
    }
}

TEST_F(Fonts, TheVersionIsAskedBeforeTheFirstByteOfTheStatement) {
    mSerial.Handshake();
    ScriptIdentity("R7G", "v7.20");
    mSerial.Exchange("CLL:PP 1,1:NORIMAGE:AN 1:DIR 1:FT\"F\",12,0,100:PT\"x\":PF");
    Print("F", 1);
}

TEST_F(Fonts, APrinterErrorInASampleIsRaisedAndItMayTakeFiveSeconds) {
    Know("R7G");
    const std::string statement = "CLL:PP 1,1:NORIMAGE:AN 1:DIR 1:FT\"F\",12,0,100:PT\"x\":PF";
    mSerial.Handshake().Exchange(statement, {"Error 1022 in line 0: Font not found"});
    EXPECT_RAISED(Print("F", 1), 61022);
    mSerial.Handshake().Expect(statement + "\r\n").Reply(statement + "\r\nOk\r\n", 4999);
    Print("F", 1);
    mSerial.Handshake().Expect(statement + "\r\n");
    EXPECT_RAISED(Print("F", 1), ErrInputTimeout);
}

} // namespace
} // namespace qncomm::testing
