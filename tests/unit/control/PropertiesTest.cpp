#include "testing/core/CommaLocale.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using testing::ControlFixture;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Strings;

class Properties : public ControlFixture {
  protected:
    Strings Written() {
        Strings names;
        struct : PropertyBag {
            const Variant* Find(std::string_view) const override { return nullptr; }
            void Store(std::string_view name, const Variant&) override {
                names->emplace_back(name);
            }
            Strings* names = nullptr;
        } bag;
        bag.names = &names;
        mControl->UserControl_WriteProperties(bag);
        return names;
    }
};

TEST_F(Properties, AnEmptyBagYieldsTheDefaults) {
    mControl->UserControl_ReadProperties(MemoryPropertyBag());
    EXPECT_EQ(mControl->BackColor(), 15);
    EXPECT_EQ(mControl->ForeColor(), 0);
    EXPECT_TRUE(mControl->Enabled());
    EXPECT_EQ(mControl->BackStyle(), 1);
    EXPECT_EQ(mControl->BorderStyle(), 0);
    EXPECT_EQ(mTerminal.mColumns, 300);
    EXPECT_EQ(mTerminal.mRows, 300);
    EXPECT_EQ(mControl->Caption(), "Terminal");
    EXPECT_TRUE(mControl->ToolbarVisible());
    EXPECT_EQ(mControl->ToolbarAlign(), 1);
}

TEST_F(Properties, WhatEqualsItsDefaultIsNotStored) {
    mControl->UserControl_ReadProperties(MemoryPropertyBag());
    EXPECT_THAT(Written(), ElementsAre("Font"));
}

TEST_F(Properties, ElevenAreStoredInTheirOrderAndReadBack) {
    MemoryPropertyBag bag;
    bag.mValues = {{"BackColor", std::int32_t{255}},
                   {"ForeColor", std::int32_t{65280}},
                   {"Enabled", false},
                   {"BackStyle", std::int16_t{0}},
                   {"BorderStyle", std::int16_t{1}},
                   {"Columns", std::int16_t{80}},
                   {"Rows", std::int16_t{24}},
                   {"Caption", Variant("Labels")},
                   {"ToolbarVisible", false},
                   {"ToolbarAlign", std::int16_t{2}},
                   {"Unknown", Variant("ignored")}};
    mControl->UserControl_ReadProperties(bag);
    EXPECT_THAT(Written(), ElementsAre("BackColor", "ForeColor", "Enabled", "BackStyle",
                                       "BorderStyle", "Columns", "Rows", "Caption",
                                       "ToolbarVisible", "ToolbarAlign", "Font"));
    MemoryPropertyBag again;
    mControl->UserControl_WriteProperties(again);
    bag.mValues.erase("Unknown");
    bag.mValues["Font"] = FontRecord(mTerminal.mFont);
    EXPECT_EQ(again.mValues, bag.mValues);
}

TEST_F(Properties, TheFontIsWrittenAndNeverRead) {
    MemoryPropertyBag bag;
    bag.mValues["Font"] = FontRecord({"Serif", 40.0F});
    mControl->UserControl_ReadProperties(bag);
    EXPECT_EQ(mTerminal.mFont.name, "Monospace");
}

TEST_F(Properties, AtRunTimeTheTerminalIsAlways300By300) {
    MemoryPropertyBag bag;
    bag.mValues = {{"Columns", std::int16_t{80}}, {"Rows", std::int16_t{24}}};
    Run(bag);
    EXPECT_THAT(mTerminal.mLog,
                ElementsAre("Columns 80", "Rows 24", "Rows 300", "Columns 300", "Move"));
}

TEST_F(Properties, AValueOfAWrongTypeChangesNothingAndTheControlStaysUsable) {
    MemoryPropertyBag bag;
    bag.mValues = {{"BackColor", std::int32_t{255}}, {"Rows", Variant("many")}};
    mHost.mUserMode = true;
    EXPECT_RAISED(mControl->UserControl_ReadProperties(bag), RtTypeMismatch);
    EXPECT_EQ(mTerminal.mBack, 0x00FFFFFF);
    bag.mValues["Rows"] = std::int32_t{70000};
    EXPECT_RAISED(mControl->UserControl_ReadProperties(bag), RtOverflow);
    bag.mValues["Rows"] = FontRecord({});
    EXPECT_RAISED(mControl->UserControl_ReadProperties(bag), RtTypeMismatch);
    bag.mValues["Rows"] = Variant("24");
    bag.mValues["Enabled"] = Variant("false");
    bag.mValues["Caption"] = std::int32_t{7};
    EXPECT_EQ(Run(bag).PrinterType(), "R7G");
    EXPECT_FALSE(mControl->Enabled());
    EXPECT_EQ(mControl->Caption(), "7");
}

TEST_F(Properties, TheContainerHearsOfTheseChangesAndOfNoOthers) {
    Run();
    mControl->SetBackColor(1);
    mControl->SetForeColor(2);
    mControl->SetBackStyle(0);
    mControl->SetBorderStyle(1);
    mControl->SetEnabled(false);
    mControl->SetToolbarVisible(false);
    mControl->SetToolbarAlign(2);
    mControl->SetFont({"Serif", 9.0F});
    mControl->SetCursorRow(4);
    mControl->SetTerminalFontName("Sans");
    mControl->SetTerminalFontSize("11");
    mControl->SetCaptureToFile("/x");
    mControl->SetRegSettings(mSettings);
    EXPECT_THAT(mHost.mChanged,
                ElementsAre("BackColor", "ForeColor", "BackStyle", "BorderStyle", "Enabled",
                            "ToolbarVisible", "ToolbarAlign", "Font", "CursorRow"));
    EXPECT_EQ(mTerminal.mBack, 1);
    EXPECT_EQ(mTerminal.mFont, (TerminalFont{"Sans", 11.0F}));
    EXPECT_EQ(mTerminal.mRow, 4);
}

TEST_F(Properties, TheToolbarIsHiddenAtOnceByTheLetAndByTheBagOnlyWithTheNextPaint) {
    MemoryPropertyBag bag;
    bag.mValues["ToolbarVisible"] = false;
    Run(bag);
    EXPECT_TRUE(mControl->Toolbar1.Visible());
    EXPECT_EQ(mTerminal.mPlace, (Rectangle{0, 50, 800, 950}));
    mControl->Refresh();
    EXPECT_FALSE(mControl->Toolbar1.Visible());
    EXPECT_EQ(mTerminal.mPlace, (Rectangle{0, 20, 800, 980}));
    mControl->SetToolbarVisible(true);
    EXPECT_TRUE(mControl->Toolbar1.Visible());
    EXPECT_EQ(mTerminal.mPlace, (Rectangle{0, 50, 800, 950}));
}

TEST_F(Properties, TheToolbarIsHiddenBeforeTheWindowPaints) {
    Run();
    mWindow.mPaintsAtOnce = false;
    mControl->SetToolbarVisible(false);
    EXPECT_FALSE(mControl->Toolbar1.Visible());
    EXPECT_EQ(mWindow.mRepaints, 1);
    EXPECT_EQ(mTerminal.mPlace, (Rectangle{0, 50, 800, 950})) << "laid out when it paints";
}

TEST_F(Properties, TheFontSizeIsATextWithAPoint) {
    mTerminal.mFont.size = 9.75F;
    EXPECT_EQ(mControl->TerminalFontSize(), "9.75");
    mTerminal.mFont.size = 12.0F;
    EXPECT_EQ(mControl->TerminalFontSize(), "12");
    mControl->SetTerminalFontSize(" 8.25 ");
    EXPECT_EQ(mTerminal.mFont.size, 8.25F);
    EXPECT_RAISED(mControl->SetTerminalFontSize("big"), RtTypeMismatch);
    EXPECT_RAISED(mControl->SetTerminalFontSize("8,25"), RtTypeMismatch);
    EXPECT_RAISED(mControl->SetTerminalFontSize("0"), RtInvalidCall);
    EXPECT_RAISED(mControl->SetTerminalFontSize("nan"), RtInvalidCall);
    EXPECT_RAISED(mControl->SetTerminalFontSize("1e99"), RtOverflow);
    EXPECT_EQ(mTerminal.mFont.size, 8.25F);
}

TEST_F(Properties, TheFontSizeHasItsPointWhereNumbersHaveCommas) {
    const testing::CommaLocale elsewhere;
    mControl->SetTerminalFontSize("9.75");
    EXPECT_EQ(mTerminal.mFont.size, 9.75F);
    EXPECT_EQ(mControl->TerminalFontSize(), "9.75");
    mControl->SetTerminalFontSize("1234.5");
    EXPECT_EQ(mControl->TerminalFontSize(), "1234.5");
}

TEST_F(Properties, TheHelpFileGoesToTheApplication) {
    mControl->SetHelpFile("/usr/share/help");
    EXPECT_EQ(mWindow.mHelpFile, "/usr/share/help");
    EXPECT_THAT(mHost.mChanged, IsEmpty());
}

} // namespace
} // namespace qncomm
