// Labels as they would be burnt, compared dot by dot with kept pictures that were looked at.
#include "PrinterRig.h"
#include "label/TextPainter.h"
#include "testing/printer/TestPictures.h"

#include <algorithm>
#include <filesystem>
#include <unistd.h>

namespace qncomm::testing {
namespace {

using Dots = std::vector<std::string>;

/// A folder of its own for each test, gone afterwards.
class LabelTest : public ::testing::Test {
  protected:
    LabelTest()
        : mFolder(::testing::TempDir() + "labels-" + std::to_string(::getpid()) + "-"
                  + ::testing::UnitTest::GetInstance()->current_test_info()->name()) {}
    ~LabelTest() override {
        std::error_code error;
        std::filesystem::remove_all(mFolder, error);
    }

    PrinterRig Rig(const std::string& model = "R7G") const {
        return PrinterRig(model + "?labels=" + mFolder);
    }
    Dots Printed(int number = 1) const {
        return ReadPng(mFolder + "/label-000" + std::to_string(number) + ".png");
    }
    /// A small label with those statements on it.
    Dots Label(const std::string& statements) const {
        std::filesystem::remove_all(mFolder);
        PrinterRig rig = Rig();
        rig.Ask("SETUP\"LABEL,WIDTH,60\":SETUP\"LABEL,LENGTH,40\"");
        EXPECT_TRUE(rig.Lines("CLL:" + statements + ":PF").empty()) << statements;
        return Printed();
    }
    static void Store(PrinterRig& rig, const std::string& name, const std::string& bytes) {
        rig.Send("IMAGE LOAD \"" + name + "\"," + std::to_string(bytes.size()) + ",\"\"\r");
        rig.Send(bytes);
        rig.Read();
    }

    std::string mFolder;
};

struct Box {
    int left;
    int top;
    int width;
    int height;
    bool operator==(const Box&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Box& box) {
    return out << box.left << ',' << box.top << ' ' << box.width << 'x' << box.height;
}

/// The smallest box that holds every black dot.
Box Extent(const Dots& dots) {
    int left = 1 << 30;
    int top = left;
    int right = -1;
    int bottom = -1;
    for (std::size_t y = 0; y < dots.size(); ++y) {
        for (std::size_t x = 0; x < dots[y].size(); ++x) {
            if (dots[y][x] != '#') continue;
            left = std::min(left, static_cast<int>(x));
            right = std::max(right, static_cast<int>(x));
            top = std::min(top, static_cast<int>(y));
            bottom = std::max(bottom, static_cast<int>(y));
        }
    }
    return {left, top, right - left + 1, bottom - top + 1};
}

TEST_F(LabelTest, IsAsLargeAsTheSetupSays) {
    const Dots dots = Label("PP 0,0");
    EXPECT_EQ(dots.size(), 40U);
    EXPECT_EQ(dots.front().size(), 60U);
    EXPECT_EQ(Extent(dots).width, 0 - (1 << 30));
}

TEST_F(LabelTest, AnchorsNameThePlaceThatLiesOnThePosition) {
    // A line of 11 by 5 dots at 30 from the left and 20 from below; the label is 40 high.
    const std::vector<Box> boxes{{30, 15, 11, 5}, {25, 15, 11, 5}, {20, 15, 11, 5},
                                 {30, 17, 11, 5}, {25, 17, 11, 5}, {20, 17, 11, 5},
                                 {30, 19, 11, 5}, {25, 19, 11, 5}, {20, 19, 11, 5}};
    for (std::size_t anchor = 1; anchor <= boxes.size(); ++anchor) {
        const std::string statements = "PP 30,20:AN " + std::to_string(anchor) + ":PL 11,5";
        EXPECT_EQ(Extent(Label(statements)), boxes[anchor - 1]) << "anchor " << anchor;
    }
}

TEST_F(LabelTest, DirectionsTurnClockwiseAroundTheAnchor) {
    EXPECT_EQ(Extent(Label("PP 30,20:DIR 1:PL 11,5")), (Box{30, 15, 11, 5}));
    EXPECT_EQ(Extent(Label("PP 30,20:DIR 2:PL 11,5")), (Box{30, 19, 5, 11}));
    EXPECT_EQ(Extent(Label("PP 30,20:DIR 3:PL 11,5")), (Box{20, 19, 11, 5}));
    EXPECT_EQ(Extent(Label("PP 30,20:DIR 4:PL 11,5")), (Box{26, 9, 5, 11}));
}

TEST_F(LabelTest, CornersStayOnTheLabelInEveryDirection) {
    // The anchors that put an object inside the label when it is printed at its lower left corner.
    for (const auto& [direction, anchor] :
         std::vector<std::pair<int, int>>{{1, 1}, {2, 3}, {3, 9}, {4, 7}}) {
        const Box box = Extent(Label("PP 1,1:AN " + std::to_string(anchor) + ":DIR "
                                     + std::to_string(direction) + ":PL 11,5"));
        EXPECT_EQ(box.left, 1) << direction;
        EXPECT_EQ(box.top + box.height, 39) << direction;
    }
}

TEST_F(LabelTest, WhatLiesOutsideIsCutOff) {
    EXPECT_EQ(Extent(Label("PP -5,-5:PL 11,10")), (Box{0, 35, 6, 5}));
    EXPECT_EQ(Extent(Label("PP 55,35:PL 100,100")), (Box{55, 0, 5, 5}));
    EXPECT_EQ(Extent(Label("PP 30000,0:PL 30000")).width, 0 - (1 << 30));
}

TEST_F(LabelTest, BoxesAreFramesUntilTheirSidesMeet) {
    const Dots frame = Label("PP 10,10:PX 9,12,2");
    EXPECT_EQ(Extent(frame), (Box{10, 21, 12, 9}));
    EXPECT_EQ(frame[25].substr(10, 12), "##........##");
    EXPECT_EQ(Label("PP 10,10:PX 9,12,6")[25].substr(10, 12), "############");
    PrinterRig rig = Rig();
    EXPECT_EQ(rig.Line("PX 5000,5000"), "Error 5: Illegal argument");
    EXPECT_EQ(rig.Line("PL 32767,32767"), "Error 5: Illegal argument");
}

TEST_F(LabelTest, DrawingLeavesTheHostItsTurns) {
    PrinterRig rig = Rig();
    rig.Send("PX 4000,4000,2000:PX 4000,4000,2000:PRINT 1\r");
    rig.Printer().Advance(rig.Now());
    const auto due = rig.Printer().NextDue();
    ASSERT_TRUE(due.has_value());
    rig.Send("\x03");
    EXPECT_NE(rig.Read().find("Break\r\n"), std::string::npos);
}

TEST_F(LabelTest, ImagesArePrintedDotByDot) {
    PrinterRig rig = Rig();
    Store(rig, "F.PCX", TestPcx(9, 7));
    rig.Ask("SETUP\"LABEL,WIDTH,11\":SETUP\"LABEL,LENGTH,9\"");
    EXPECT_TRUE(rig.Lines("CLL:PP1,1:NORIMAGE:PM\"F.PCX\":PF").empty());
    EXPECT_EQ(Printed(),
              (Dots{"...........", ".#########.", ".##......#.", ".#.#.....#.", ".#..#....#.",
                    ".#...#...#.", ".#....#..#.", ".#########.", "..........."}));
    EXPECT_TRUE(rig.Lines("CLL:PP1,1:INVIMAGE:PM\"F.PCX\":PF").empty());
    EXPECT_EQ(Printed(2)[2], "...######..");
    EXPECT_EQ(rig.Line("PM \"NONE.PCX\""), "Error 1042: Image not found");
}

TEST_F(LabelTest, BuiltInFontsAreAsHighAsTheirNamesSay) {
    const auto height = [this](const std::string& font) {
        return Extent(Label("FT \"" + font + "\":PT \"H\"")).height;
    };
    // Seven of eight rows stand above the base line.
    EXPECT_EQ(height("SW020BSN.1"), 14);
    EXPECT_EQ(height("MS030RMN.1"), 21);
    EXPECT_EQ(height("sw030rsn.2"), 21);
}

TEST_F(LabelTest, ScalableFontsFollowSizeWidthAndSlant) {
    PrinterRig rig = Rig();
    Store(rig, "SANS.TTF", TestFont());
    int number = 0;
    const auto extent = [&](const std::string& font) {
        EXPECT_TRUE(rig.Lines("CLL:PP 100,100:FT \"SANS.TTF\"" + font + ":PT \"HELP\":PF").empty());
        return Extent(Printed(++number));
    };
    const Box plain = extent("");
    EXPECT_EQ(extent(",12,0,100"), plain);
    EXPECT_NEAR(extent(",24").height, 2 * plain.height, 2);
    EXPECT_NEAR(extent(",12,0,200").width, 2 * plain.width, 4);
    EXPECT_EQ(extent(",12,0,200").height, plain.height);
    EXPECT_GT(extent(",12,30").width, plain.width);
    EXPECT_EQ(rig.Line("FT \"NONE.TTF\",12"), "Error 1040: Font not found");
    EXPECT_EQ(rig.Line("FT \"SANS.TTF\",0"), "Error 5: Illegal argument");
}

/// The font with two bytes of one of its tables set.
std::string WithNumber(std::string font, const std::string& table, std::size_t at, int number) {
    const std::size_t entry = font.find(table);
    std::size_t offset = 0;
    for (std::size_t n = 8; n < 12; ++n)
        offset = offset * 256 + static_cast<unsigned char>(font.at(entry + n));
    font.at(offset + at) = static_cast<char>(number / 256);
    font.at(offset + at + 1) = static_cast<char>(number % 256);
    return font;
}

TEST(ScalableText, OfAFontThatSaysItIsHugeIsNotDrawnSo) {
    FontChoice font;
    font.points = 400;
    constexpr int dotsPerMm = 8;
    constexpr int mostDots = 4 * (400 * 203 / 72 + 1);
    const Bitmap usual = PaintScalableText("HELP", font, dotsPerMm, TestFont());
    EXPECT_GT(usual.Height(), mostDots / 4);
    EXPECT_LT(usual.Height(), mostDots);
    // Its height above the line, and how many units its size has: 16 instead of 2048.
    std::string huge = WithNumber(TestFont(), "hhea", 4, 32767);
    huge = WithNumber(huge, "head", 18, 16);
    const Bitmap drawn = PaintScalableText("HELP", font, dotsPerMm, huge);
    EXPECT_LE(drawn.Height(), 2 * mostDots);
    EXPECT_LE(drawn.RowBytes(), 32'000U / 8);
}

TEST_F(LabelTest, FeedClearsTheLabelAndNumbersThePictures) {
    PrinterRig rig = Rig();
    rig.Ask("SETUP\"LABEL,WIDTH,20\":SETUP\"LABEL,LENGTH,20\"");
    rig.Ask("CLL:PP 2,2:PL 5,5:PF");
    rig.Ask("PF");
    EXPECT_EQ(Extent(Printed(1)), (Box{2, 13, 5, 5}));
    EXPECT_EQ(Extent(Printed(2)).width, 0 - (1 << 30));
    PrinterRig next = Rig();
    next.Ask("PF");
    EXPECT_EQ(Printed(3).size(), 480U);
}

TEST_F(LabelTest, FolderThatCannotBeWrittenIsNamed) {
    const PrinterRig good = Rig();
    VirtualPrinter printer(PrinterRig::Parse("R7G?labels=/proc/none"));
    EXPECT_NE(printer.Problem().find("/proc/none"), std::string::npos);
    printer.HostOpened(1);
    printer.FromHost("PF\r", 1);
    EXPECT_NE(printer.ToHost(1, 1000).find("Error 1098: Label could not be delivered"),
              std::string::npos);
}

const std::vector<std::pair<std::string, std::vector<std::string>>>& ReferenceLabels() {
    static const std::vector<std::pair<std::string, std::vector<std::string>>> labels{
        {"fonts",
         {"CLL:PP 10,300:FT \"MS030RMN.1\":PT \"MS030 The quick brown fox\"",
          "PP 10,250:FT \"OB035RM1.1\":PT \"OB035 0123456789 ()[]{}<>\"",
          "PP 10,200:FT \"SW050RSN.1\":PT \"SW050 jumps over\"",
          "PP 10,140:FT \"SW060BSN.1\":PT \"SW060 the lazy dog\"",
          "PP 10,20:FT \"SW120BSN.1\":PT \"SW120 !?\""}},
        {"directions",
         {"CLL:FT \"SW030RSN.1\":PP 300,160:PX 9,9:PP 320,180:DIR 1:PT \"DIR 1\"",
          "PP 320,140:DIR 2:PT \"DIR 2\":PP 280,140:DIR 3:PT \"DIR 3\"",
          "PP 280,180:DIR 4:PT \"DIR 4\""}},
        {"shelf",
         {"CLL:PP 10,10:PX 300,580,4:PP 40,220:FT \"SW080BSN.1\":PT \"PLUMS\"",
          "INVIMAGE:PP 40,40:FT \"SW120BSN.1\":PT \"2.10\":NORIMAGE",
          "PP 560,280:AN 9:PM \"LOGO.PCX\":AN 9:DIR 2:FT \"MS030RMN.1\":PP 560,30:PT \"Class 1\""}},
    };
    return labels;
}

TEST_F(LabelTest, LooksAsTheKeptPictures) {
    PrinterRig rig = Rig();
    rig.Ask("SETUP\"LABEL,WIDTH,600\":SETUP\"LABEL,LENGTH,340\"");
    Store(rig, "LOGO.PCX", TestPcx(96, 96, [](int x, int y) {
              const int distance = (x - 48) * (x - 48) + (y - 48) * (y - 48);
              return distance < 47 * 47 && (distance > 40 * 40 || (x + y) % 16 < 6);
          }));
    int number = 0;
    for (const auto& [name, lines] : ReferenceLabels()) {
        for (const std::string& line : lines)
            EXPECT_TRUE(rig.Lines(line).empty()) << line;
        rig.Ask("PF");
        const Dots kept = ReadPng(std::string(REFERENCE_LABELS) + "/" + name + ".png");
        EXPECT_TRUE(Printed(++number) == kept) << name;
    }
}

} // namespace
} // namespace qncomm::testing
