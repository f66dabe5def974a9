// Loads whose bytes follow the command line.
#include "PrinterRig.h"
#include "testing/printer/TestPictures.h"

namespace qncomm::testing {
namespace {

std::string Load(PrinterRig& rig, const std::string& command, const std::string& name,
                 const std::string& bytes, const std::string& flag = ",\"\"") {
    rig.Send(command + " \"" + name + "\"," + std::to_string(bytes.size()) + flag + "\r");
    rig.Send(bytes);
    const auto lines = PrinterRig::SplitLines(rig.Read());
    EXPECT_GE(lines.size(), 2U);
    return lines.size() == 2 ? lines[1] : lines[lines.size() - 2];
}

TEST(FileLoad, TakesEveryByteAsItIs) {
    PrinterRig rig;
    std::string bytes;
    for (int round = 0; round < 3; ++round) {
        for (int value = 0; value < 256; ++value)
            bytes += static_cast<char>(value);
    }
    EXPECT_EQ(Load(rig, "FILE& LOAD", "ALL.BIN", bytes, ""), "Ok");
    rig.Ask("OPEN \"ALL.BIN\" FOR INPUT AS 1:LINE INPUT#1,A$");
    // The first line of the file: bytes 0 to 9, the line feed is byte 10.
    EXPECT_EQ(rig.Line("PRINT LEN(A$);ASC(MID$(A$,4));ASC(RIGHT$(A$,1))"), "1039");
    EXPECT_NE(rig.Ask("FILES").find("ALL.BIN                    768"), std::string::npos);
}

TEST(FileLoad, StoresOnTheCurrentDirectory) {
    PrinterRig rig;
    rig.Ask("CHDIR \"tmp:\"");
    EXPECT_EQ(Load(rig, "FILE& LOAD", "X", "abc", ""), "Ok");
    EXPECT_TRUE(rig.Lines("KILL \"tmp:X\"").empty());
}

TEST(FileLoad, OfNoBytesMakesAnEmptyFile) {
    PrinterRig rig;
    EXPECT_EQ(Load(rig, "FILE& LOAD", "EMPTY", "", ""), "Ok");
    EXPECT_TRUE(rig.Lines("KILL \"EMPTY\"").empty());
}

TEST(FileLoad, ThatDoesNotFitTakesItsBytesAndFails) {
    PrinterRig rig("R7A?capacity=1000");
    EXPECT_EQ(Load(rig, "FILE& LOAD", "BIG", std::string(2000, '\r'), ""),
              "Error 1019: Device full");
    EXPECT_EQ(Load(rig, "FILE& LOAD", "HUGE", std::string(8'000'000, '\r'), ""),
              "Error 1019: Device full");
    EXPECT_EQ(rig.Line("PRINT 1"), "1");
}

TEST(FileLoad, WhoseBytesStopComingFails) {
    PrinterRig rig;
    rig.Send("FILE& LOAD \"X\",10\rabc");
    EXPECT_EQ(rig.Read(4'999'999), "FILE& LOAD \"X\",10\r\n");
    EXPECT_EQ(rig.Read(1), "Error 1028: Time-out while receiving data\r\nOk\r\n");
    EXPECT_EQ(rig.Line("PRINT 1"), "1");
}

TEST(ImageLoad, StoresAndListsAPicture) {
    PrinterRig rig;
    EXPECT_EQ(rig.Lines("IMAGES").size(), 1U);
    const std::string picture = TestPcx(30, 20);
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "LOGO.PCX", picture), "Ok");
    EXPECT_EQ(rig.Lines("IMAGES").front().substr(0, 10), "LOGO.PCX  ");
    EXPECT_TRUE(rig.Lines("REMOVE IMAGE \"LOGO.PCX\"").empty());
    EXPECT_EQ(rig.Line("REMOVE IMAGE \"LOGO.PCX\""), "Error 1042: Image not found");
}

TEST(ImageLoad, KeepsPermanentPicturesOverARestart) {
    PrinterRig rig("R7G?boot-ms=0");
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "A.PCX", TestPcx(8, 8)), "Ok");
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "B.PCX", TestPcx(8, 8), ",\"S\""), "Ok");
    rig.Ask("REBOOT");
    const std::string listing = rig.Ask("IMAGES");
    EXPECT_EQ(listing.find("A.PCX"), std::string::npos);
    EXPECT_NE(listing.find("B.PCX"), std::string::npos);
}

TEST(ImageLoad, RefusesWhatIsNoPicture) {
    PrinterRig rig;
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "N.PCX", "hello"), "Error 1043: Not an image");
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "Z.PCX", ""), "Error 1043: Not an image");
    std::string cut = TestPcx(64, 64);
    cut.resize(cut.size() - 3);
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "C.PCX", cut), "Error 1043: Not an image");
    std::string colour = TestPcx(8, 8);
    colour[3] = 8;
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "D.PCX", colour), "Error 1043: Not an image");
    std::string vast = TestPcx(8, 8);
    vast[9] = '\x7F';
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "V.PCX", vast), "Error 1043: Not an image");
    std::string endless = TestPcx(8, 8).substr(0, 128);
    for (int i = 0; i < 100'000; ++i)
        endless += std::string("\xC0\x00", 2);
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "E.PCX", endless), "Error 1043: Not an image");
}

TEST(ImageLoad, StoresAScalableFontOnModelsThatHaveThem) {
    const std::string font = TestFont();
    PrinterRig rig("R7G");
    EXPECT_EQ(Load(rig, "IMAGE LOAD", "SANS.TTF", font, ",\"S\""), "Ok");
    EXPECT_NE(rig.Ask("FONTS").find("SANS.TTF\r\n"), std::string::npos);
    EXPECT_TRUE(rig.Lines("REMOVE FONT \"SANS.TTF\"").empty());
    EXPECT_EQ(rig.Line("REMOVE FONT \"SANS.TTF\""), "Error 1040: Font not found");
    PrinterRig older("R7A");
    EXPECT_EQ(Load(older, "IMAGE LOAD", "SANS.TTF", font), "Error 1041: Not a font");
}

TEST(Fonts, ListTheBuiltInOnesWhichStay) {
    PrinterRig two("R7B?uart=1");
    EXPECT_EQ(two.Lines("FONTS").size(), 21U);
    PrinterRig one("R7G");
    const auto lines = one.Lines("FONTS");
    EXPECT_EQ(lines.size(), 11U);
    EXPECT_EQ(lines.front(), "MS030RMN.1              MS030RMN.2");
    EXPECT_EQ(one.Line("REMOVE FONT \"MS030RMN.1\""), "Error 1020: Device is write protected");
}

} // namespace
} // namespace qncomm::testing
