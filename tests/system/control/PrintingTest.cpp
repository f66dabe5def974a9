// Images, fonts and what they look like on a label, through the control.

#include "testing/printer/TestPictures.h"
#include "testing/stack/AssembledFixture.h"

#include "common/modErrorHandling.h"
#include "testing/core/ExpectRaised.h"

#include <algorithm>

namespace qncomm::testing {
namespace {

using qncomm::testing::ReadPng;
using qncomm::testing::TestFont;
using qncomm::testing::TestPcx;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;

class Printing : public AssembledFixture {
  protected:
    Printing() { Assemble("sim:R7G?" + Labels()); }
    ~Printing() override { EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault); }

    std::string Labels() const { return "labels=" + mFolder.File("labels"); }

    /// The dots of the next label; empty when none was printed.
    Strings NextLabel() {
        const std::string name = "labels/label-000" + std::to_string(++mLabel) + ".png";
        return mFolder.Has(name) ? ReadPng(mFolder.File(name)) : Strings{};
    }
    static long BlackDots(const Strings& label) {
        long dots = 0;
        for (const std::string& row : label)
            dots += std::count(row.begin(), row.end(), '#');
        return dots;
    }
    /// The column of the leftmost black dot, counted from 0.
    static std::size_t LeftEdge(const Strings& label) {
        std::size_t edge = std::string::npos;
        for (const std::string& row : label)
            edge = std::min(edge, row.find('#'));
        return edge;
    }
    Strings PrintedText(PrintFontArgs args) {
        Control().PrintFont(args);
        return NextLabel();
    }

    std::string mPicture = mFolder.Write("logo.pcx", TestPcx(32, 20));

  private:
    int mLabel = 0;
};

TEST_F(Printing, AnImageIsInstalledListedCountedAndRemoved) {
    EXPECT_EQ(Control().ImagesCount(), 0);
    EXPECT_THAT(NamesOf(Control().Images()), Not(Contains("LOGO.PCX")));
    Control().InstallImage(mPicture);
    EXPECT_THAT(NamesOf(Control().Images()), Contains("LOGO.PCX")) << "the list was out of date";
    EXPECT_EQ(Control().ImagesCount(), 1);
    TakeSent();
    Control().Images();
    EXPECT_EQ(TakeSent(), "");
    Control().Images(true);
    EXPECT_THAT(TakeCommands(), Contains("IMAGES"));
    Control().RemoveImage("LOGO.PCX");
    EXPECT_THAT(NamesOf(Control().Images()), IsEmpty());
    EXPECT_EQ(Control().ImagesCount(), 0);
}

TEST_F(Printing, AnInstalledImageIsReplacedAndOnlyAPermanentOneOutlivesARestart) {
    Control().InstallImage(mPicture);
    mFolder.Write("logo.pcx", TestPcx(64, 64));
    Control().InstallImage(mPicture);
    EXPECT_EQ(Control().Images()->Count(), 1U);
    Control().InstallImage(mFolder.Write("kept.pcx", TestPcx(8, 8)), true);
    Control().Reboot();
    EXPECT_THAT(NamesOf(Control().Images()), ::testing::ElementsAre("KEPT.PCX"));
}

TEST_F(Printing, AnImageIsPrintedWhereItIsWantedAndSentOnlyWhenItIsMissing) {
    Control().PrintImage(mPicture);
    const Strings atTheCorner = NextLabel();
    EXPECT_GT(BlackDots(atTheCorner), 50);
    TakeSent();
    Control().PrintImage(mPicture, 101, 50);
    EXPECT_THAT(TakeSent(), Not(::testing::HasSubstr("IMAGE LOAD")));
    const Strings moved = NextLabel();
    EXPECT_EQ(LeftEdge(moved), LeftEdge(atTheCorner) + 100);
    EXPECT_EQ(BlackDots(moved), BlackDots(atTheCorner));
}

TEST_F(Printing, AnImageIsPrintedInverseAndLoadedAnewWhenAskedFor) {
    Control().PrintImage(mPicture);
    const long black = BlackDots(NextLabel());
    Control().PrintImage(mPicture, 1, 1, true);
    EXPECT_EQ(BlackDots(NextLabel()), 32 * 20 - black);
    mFolder.Write("logo.pcx", TestPcx(32, 20, [](int, int) { return true; }));
    Control().PrintImage(mPicture);
    EXPECT_EQ(BlackDots(NextLabel()), black) << "the printer's own is used";
    Control().PrintImage(mPicture, 1, 1, false, true);
    EXPECT_EQ(BlackDots(NextLabel()), 32 * 20);
}

TEST_F(Printing, ThePointerIsTheDefaultAfterEachThatWentWell) {
    Control().PrinterType();
    PrintFontArgs text{.sText = "x", .sFontName = "SW080BSN.1"};
    const std::string font = mFolder.Write("mine.ttf", TestFont());
    const std::vector<std::function<void()>> works = {
        [&] { Control().InstallImage(mPicture); },
        [&] { Control().PrintImage(mPicture); },
        [&] { Control().Images(true); },
        [&] { Control().InstallFont(font); },
        [&] { Control().PrintFont(text); },
        [&] { Control().Fonts(true); },
        [&] { Control().Setup(); },
    };
    for (const auto& work : works) {
        Pointer::Screen().Set(PointerHourglass);
        EXPECT_EQ(NumberRaisedBy(work), 0);
        EXPECT_EQ(Pointer::Screen().Shape(), PointerDefault) << &work - works.data();
    }
}

TEST_F(Printing, WhatIsNoImageIsRefusedAndNothingIsSent) {
    Control().PrinterType();
    TakeSent();
    EXPECT_EQ(NumberRaisedBy([&] { Control().InstallImage(mFolder.File("none.pcx")); }),
              ErrImageName);
    EXPECT_EQ(TakeSent(), "");
    const std::string text = mFolder.Write("text.pcx", "no picture");
    EXPECT_EQ(NumberRaisedBy([&] { Control().InstallImage(text); }), ErrImageFormat);
    EXPECT_EQ(NumberRaisedBy([&] { Control().PrintImage(text); }), ErrImageFormat);
    EXPECT_THAT(TakeSent(), Not(::testing::HasSubstr("LOAD")));
    EXPECT_THAT(NextLabel(), IsEmpty());
    Control().RemoveImage("NONE.PCX");
}

TEST_F(Printing, ALineThatCarriesNoRawBytesIsAdjustedWhenTheUserAgrees) {
    Assemble("sim:R7G?format=n,7,2&" + Labels());
    mDesktop.mAnswers = {MsgBoxResult::No, MsgBoxResult::Yes};
    EXPECT_EQ(NumberRaisedBy([&] { Control().InstallImage(mPicture); }), ErrImageSettings);
    Control().InstallImage(mPicture);
    EXPECT_THAT(NamesOf(Control().Images()), Contains("LOGO.PCX"));
    EXPECT_EQ(Control().Setup()->Item("SER-COM,UART1,CHAR LENGTH")->Value, "8");
}

TEST_F(Printing, FontsAreListedCountedAndFiltered) {
    EXPECT_EQ(Control().FontsCount(), 0);
    const Strings all = NamesOf(Control().Fonts());
    EXPECT_THAT(all, Contains("MS030RMN.1"));
    EXPECT_EQ(Control().FontsCount(), static_cast<std::int16_t>(all.size()));
    TakeSent();
    EXPECT_EQ(NamesOf(Control().Fonts(false, true)), all) << "the list is kept as it is";
    EXPECT_EQ(TakeSent(), "");
    EXPECT_THAT(NamesOf(Control().Fonts(true, true)), Not(Contains("MS030RMN.1")));
    EXPECT_EQ(mSettings->ReadValue("FontsFilterList", "Font03", ""), "MS050RMN.2");
}

TEST_F(Printing, AFontIsInstalledAndPrintsOtherThanTheBuiltInOnes) {
    Control().InstallFont(mFolder.Write("mine.ttf", TestFont()), true);
    EXPECT_THAT(NamesOf(Control().Fonts()), Contains("MINE.TTF"));
    const Strings mine = PrintedText({.sText = "Label", .sFontName = "MINE.TTF", .iSize = 20});
    const Strings other = PrintedText({.sText = "Label", .sFontName = "SW080BSN.1"});
    EXPECT_GT(BlackDots(mine), 0);
    EXPECT_GT(BlackDots(other), 0);
    EXPECT_NE(mine, other);
    Control().Reboot();
    EXPECT_THAT(NamesOf(Control().Fonts()), Contains("MINE.TTF"));
}

TEST_F(Printing, AFontIsRefusedWhereItCannotBe) {
    EXPECT_EQ(NumberRaisedBy([&] { Control().InstallFont(mFolder.File("none.ttf")); }),
              ErrFontName);
    Assemble("sim:R7A");
    const std::string font = mFolder.Write("mine.ttf", TestFont());
    EXPECT_EQ(NumberRaisedBy([&] { Control().InstallFont(font); }), ErrNoTrueType);
}

TEST_F(Printing, TextIsPrintedAsAskedAndTheDefaultsAreWrittenBack) {
    PrintFontArgs args{.sText = {}, .sFontName = "SW080BSN.1"};
    Control().PrintFont(args);
    EXPECT_EQ(args.sText, "The quick brown fox...");
    EXPECT_EQ(args.iSize, 12);
    EXPECT_EQ(args.iWidth, 100);
    EXPECT_EQ(args.iDir, 1);
    EXPECT_GT(BlackDots(NextLabel()), 0);
    args = {.sText = "abc", .sFontName = "SW080BSN.1", .bUcase = true};
    const Strings upper = PrintedText(args);
    EXPECT_EQ(upper, PrintedText({.sText = "ABC", .sFontName = "SW080BSN.1"}));
    const Strings inverse =
        PrintedText({.sText = "ABC", .sFontName = "SW080BSN.1", .bInverse = true});
    EXPECT_NE(inverse, upper);
    EXPECT_NE(PrintedText({.sText = "ABC", .sFontName = "SW080BSN.1", .iSlant = 20}), upper);
    const Strings turned = PrintedText({.sText = "ABC", .sFontName = "SW080BSN.1", .iDir = 3});
    EXPECT_NE(turned, upper);
    EXPECT_EQ(BlackDots(turned), BlackDots(upper));
    PrintFontArgs unknown{.sText = "x", .sFontName = "NONE.1"};
    EXPECT_EQ(NumberRaisedBy([&] { Control().PrintFont(unknown); }), 61040);
}

} // namespace
} // namespace qncomm::testing
