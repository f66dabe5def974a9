#include "dialogs/frmFunctionKeysSetup.h"

#include "common/MemorySettings.h"
#include "common/RuntimeErrors.h"
#include "testing/core/DeskTools.h"
#include "testing/core/ExpectRaised.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qncomm {
namespace {

using ::testing::ElementsAre;
using testing::ScriptedFileDialogs;

class FunctionKeysSetup : public ::testing::Test {
  protected:
    void Store(std::string_view key, std::string_view value) {
        mSettings->WriteValue("FunctionKeys", key, value);
    }
    std::string Stored(std::string_view key) {
        return mSettings->ReadValue("FunctionKeys", key, "nothing");
    }

    /// Presses a key; true when it went further.
    static bool Press(frmFunctionKeysSetup& form, std::int16_t code, std::int16_t shift) {
        form.Form_KeyDown(code, shift);
        EXPECT_EQ(code == 0, shift == 0);
        return code != 0;
    }

    std::shared_ptr<MemorySettings> mSettings = std::make_shared<MemorySettings>();
    ScriptedFileDialogs mFiles;
};

constexpr std::int16_t Ctrl = 2;
constexpr std::int16_t CtrlShift = 3;

TEST_F(FunctionKeysSetup, TheCaptionsReadAsDesigned) {
    frmFunctionKeysSetup form(mSettings, mFiles);
    EXPECT_EQ(form.Caption(), "Function Keys Setup");
    EXPECT_THAT(form.SSTab1.Captions(),
                ElementsAre("F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8"));
    EXPECT_EQ(form.pic1[0].lblALT.Caption(), "On CTRL+Shift+F1...");
    EXPECT_EQ(form.pic1[7].lblALT.Caption(), "On CTRL+Shift+F8...");
    EXPECT_EQ(form.pic1[3].cmdAlt.Caption(), "...");
    EXPECT_EQ(form.Command1[0].Caption(), "&Ok");
    EXPECT_EQ(form.Command1[1].Caption(), "&Cancel");
    std::vector<std::string> kinds;
    for (const auto& entry : form.pic1[5].cmbAlt.Entries())
        kinds.push_back(entry.text);
    EXPECT_THAT(kinds, ElementsAre("Text:", "File:", "Run:"));
}

TEST_F(FunctionKeysSetup, AMissingValueIsAnEmptyText) {
    const frmFunctionKeysSetup form(mSettings, mFiles);
    EXPECT_EQ(form.pic1[0].cmbAlt.ListIndex(), TextMacro);
    EXPECT_EQ(form.pic1[0].txtAlt.Text(), "");
}

TEST_F(FunctionKeysSetup, AValueIsSplitAtItsFirstSeparatorOnly) {
    Store("F1", "0;a;b");
    Store("F2", "2");
    Store("F3", "1;/tmp/x y.txt");
    const frmFunctionKeysSetup form(mSettings, mFiles);
    EXPECT_EQ(form.pic1[0].cmbAlt.ListIndex(), TextMacro);
    EXPECT_EQ(form.pic1[0].txtAlt.Text(), "a;b");
    EXPECT_EQ(form.pic1[1].cmbAlt.ListIndex(), RunMacro);
    EXPECT_EQ(form.pic1[1].txtAlt.Text(), "");
    EXPECT_EQ(form.pic1[2].cmbAlt.ListIndex(), FileMacro);
    EXPECT_EQ(form.pic1[2].txtAlt.Text(), "/tmp/x y.txt");
}

TEST_F(FunctionKeysSetup, AKindThatIsNoneCountsAsText) {
    const std::vector<std::string> kinds = {"3", "-1",  "99999999999999", "1E999", "Nada",
                                            "",  "Run:"};
    for (const std::string& kind : kinds) {
        Store("F1", kind + ";x");
        const frmFunctionKeysSetup form(mSettings, mFiles);
        EXPECT_EQ(form.pic1[0].cmbAlt.ListIndex(), TextMacro) << kind;
        EXPECT_EQ(form.pic1[0].txtAlt.Text(), "x") << kind;
    }
}

TEST_F(FunctionKeysSetup, OnlyTheCurrentTabsPanelIsVisible) {
    frmFunctionKeysSetup form(mSettings, mFiles);
    const auto visible = [&] {
        std::vector<std::size_t> tabs;
        for (std::size_t i = 0; i < form.pic1.size(); ++i)
            if (form.pic1[i].Visible()) tabs.push_back(i);
        return tabs;
    };
    EXPECT_THAT(visible(), ElementsAre(0));
    form.SSTab1.Pick(4);
    EXPECT_THAT(visible(), ElementsAre(4));
    form.SSTab1.Pick(4);
    EXPECT_THAT(visible(), ElementsAre(4));
}

TEST_F(FunctionKeysSetup, TheBrowseButtonIsHiddenForAText) {
    Store("F2", "1;x");
    frmFunctionKeysSetup form(mSettings, mFiles);
    EXPECT_FALSE(form.pic1[0].cmdAlt.Visible());
    EXPECT_TRUE(form.pic1[1].cmdAlt.Visible());
    EXPECT_EQ(form.pic1[1].txtAlt.Kind(), TextKind::Host);
    form.pic1[1].cmbAlt.Pick(TextMacro);
    EXPECT_FALSE(form.pic1[1].cmdAlt.Visible());
    EXPECT_EQ(form.pic1[1].txtAlt.Kind(), TextKind::Line);
    form.pic1[1].cmbAlt.Pick(RunMacro);
    EXPECT_TRUE(form.pic1[1].cmdAlt.Visible());
}

TEST_F(FunctionKeysSetup, BrowsingOffersTheKindsFiles) {
    frmFunctionKeysSetup form(mSettings, mFiles);
    form.pic1[0].cmbAlt.Pick(FileMacro);
    form.pic1[0].cmdAlt.Click();
    form.pic1[0].cmbAlt.Pick(RunMacro);
    form.pic1[0].cmdAlt.Click();
    ASSERT_EQ(mFiles.mShown.size(), 2U);
    EXPECT_THAT(mFiles.mShown[0].filters, ElementsAre(FileFilter{"Text Files (*.txt)", "*.txt"},
                                                      FileFilter{"All Files (*.*)", "*.*"}));
    EXPECT_THAT(mFiles.mShown[1].filters, ElementsAre(FileFilter{"Executables (*.exe)", "*.exe"},
                                                      FileFilter{"All Files (*.*)", "*.*"}));
}

TEST_F(FunctionKeysSetup, OnlyAProgramPathWithABlankIsQuoted) {
    frmFunctionKeysSetup form(mSettings, mFiles);
    FunctionKeyPanel& panel = form.pic1[0];
    mFiles.mAnswers = {"/opt/my tool/run", "/opt/tool", "/home/a b.txt"};
    panel.cmbAlt.Pick(RunMacro);
    panel.cmdAlt.Click();
    EXPECT_EQ(panel.txtAlt.Text(), "\"/opt/my tool/run\"");
    panel.cmdAlt.Click();
    EXPECT_EQ(panel.txtAlt.Text(), "/opt/tool");
    panel.cmbAlt.Pick(FileMacro);
    panel.cmdAlt.Click();
    EXPECT_EQ(panel.txtAlt.Text(), "/home/a b.txt");
    panel.cmdAlt.Click(); // cancelled
    EXPECT_EQ(panel.txtAlt.Text(), "/home/a b.txt");
}

TEST_F(FunctionKeysSetup, CtrlAndALetterInsertTheNameAtTheCursor) {
    Store("F1", "0;ab");
    frmFunctionKeysSetup form(mSettings, mFiles);
    TextBoxModel& text = form.pic1[0].txtAlt;
    text.Select(1);
    EXPECT_FALSE(Press(form, 'M', Ctrl));
    EXPECT_EQ(text.Text(), "a<CR>b");
    EXPECT_FALSE(Press(form, 'J', CtrlShift));
    EXPECT_EQ(text.Text(), "a<CR><LF>b");
    text.Select(0, 5);
    EXPECT_FALSE(Press(form, 'A', Ctrl));
    EXPECT_EQ(text.Text(), "<SOH><LF>b");
}

TEST_F(FunctionKeysSetup, EveryCodeUpTo95HasItsNameAnd96InsertsNothing) {
    const std::vector<std::pair<std::int16_t, std::string>> names = {
        {'C', "<ETX>"}, {'V', "<SYN>"}, {'Z', "<SUB>"}, {91, "<ESC>"}, {95, "<US>"}, {96, ""}};
    for (const auto& [code, mark] : names) {
        frmFunctionKeysSetup form(mSettings, mFiles);
        EXPECT_FALSE(Press(form, code, Ctrl)) << code;
        EXPECT_EQ(form.pic1[0].txtAlt.Text(), mark) << code;
    }
}

TEST_F(FunctionKeysSetup, OtherKeysAndOtherKindsAreLeftAlone) {
    frmFunctionKeysSetup form(mSettings, mFiles);
    EXPECT_TRUE(Press(form, 'M', 1));
    EXPECT_TRUE(Press(form, 64, Ctrl));
    EXPECT_TRUE(Press(form, 97, Ctrl));
    form.pic1[0].cmbAlt.Pick(RunMacro);
    EXPECT_TRUE(Press(form, 'M', Ctrl));
    form.pic1[0].cmbAlt.Pick(FileMacro);
    EXPECT_TRUE(Press(form, 'M', Ctrl));
    EXPECT_EQ(form.pic1[0].txtAlt.Text(), "");
    form.SSTab1.Pick(1);
    EXPECT_FALSE(Press(form, 'M', Ctrl));
    EXPECT_EQ(form.pic1[1].txtAlt.Text(), "<CR>");
}

TEST_F(FunctionKeysSetup, OkWritesAllEightAndCancelNone) {
    Store("F2", "9;x");
    {
        frmFunctionKeysSetup form(mSettings, mFiles);
        form.pic1[0].txtAlt.Type("PRINT A;B", 9);
        form.Command1[1].Click();
        EXPECT_FALSE(form.IsOpen());
    }
    EXPECT_EQ(Stored("F1"), "nothing");
    frmFunctionKeysSetup form(mSettings, mFiles);
    form.pic1[0].txtAlt.Type("PRINT A;B", 9);
    form.pic1[2].cmbAlt.Pick(RunMacro);
    form.pic1[2].txtAlt.Type("x y", 3);
    form.Command1[0].Click();
    EXPECT_FALSE(form.IsOpen());
    EXPECT_EQ(Stored("F1"), "0;PRINT A;B");
    EXPECT_EQ(Stored("F2"), "0;x");
    EXPECT_EQ(Stored("F3"), "2;x y");
    for (const char* key : {"F4", "F5", "F6", "F7", "F8"})
        EXPECT_EQ(Stored(key), "0;");
}

TEST_F(FunctionKeysSetup, WithoutAStoreTheFormIsEmptyAndOkFails) {
    frmFunctionKeysSetup form(nullptr, mFiles);
    EXPECT_EQ(form.pic1[0].txtAlt.Text(), "");
    EXPECT_RAISED(form.Command1[0].Click(), RtObjectNotSet);
    EXPECT_TRUE(form.IsOpen());
    EXPECT_TRUE(form.Unload(UnloadMode::ControlMenu));
}

} // namespace
} // namespace qncomm
