// The toolbar's keys and macros, the clipboard and the capture, with the printer's answers.

#include "testing/stack/AssembledFixture.h"

#include "common/RuntimeErrors.h"
#include "common/modErrorHandling.h"
#include "dialogs/frmFunctionKeysSetup.h"
#include "testing/core/ExpectRaised.h"

namespace qncomm::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Keys : public AssembledFixture {
  protected:
    Keys() {
        Show().DoAutoconnect();
        Fresh();
    }

    void SetMacro(const std::string& key, const std::string& record) {
        mSettings->WriteValue("FunctionKeys", key, record);
    }
    /// Presses a key and gives the screen that comes of it.
    std::string Press(std::string_view key) {
        Fresh();
        Control().PressToolbarKey(key);
        mReactor.Pass(1000);
        return Screen();
    }
    std::string Run(const std::string& record) {
        SetMacro("F1", record);
        return Press("F1");
    }
    void Fresh() {
        Control().Clear();
        Control().SetCursorRow(1);
    }
};

TEST_F(Keys, EachFunctionKeySendsItsText) {
    for (int key = 1; key <= 8; ++key) {
        const std::string number = std::to_string(key);
        SetMacro("F" + number, "0;PRINT " + number + "*111<CR>");
        EXPECT_THAT(Press("F" + number), HasSubstr("\r\n" + number + number + number + "\r\nOk"));
    }
    EXPECT_THAT(Press("f8"), HasSubstr("888")) << "in any case";
    Control().PressToolbarKey(11);
    mReactor.Pass(1000);
    EXPECT_THAT(Screen(), HasSubstr("111")) << "F1 is the eleventh button";
}

TEST_F(Keys, PromptsAreAskedRememberedAndOfferedAgain) {
    mInputs.mAnswers = {"7", ""};
    EXPECT_THAT(Run("0;PRINT &&?Count\"How many?\"&&+1<cr>"), HasSubstr("\r\n8\r\n"));
    EXPECT_EQ(mInputs.mBoxes[0].prompt, "How many?");
    EXPECT_THAT(Run("0;PRINT &&?COUNT&&+2<CR>"), HasSubstr("\r\n9\r\n"));
    EXPECT_EQ(mInputs.mBoxes[1].answer, "7");
    EXPECT_THAT(Run("0;PRINT &&count&&+3<CR>"), HasSubstr("\r\n10\r\n"));
    EXPECT_EQ(mInputs.mBoxes.size(), 2U);
}

TEST_F(Keys, ASemicolonBelongsToTheText) {
    EXPECT_THAT(Run("0;PRINT 1;2;3<CR>"), HasSubstr("\r\n123\r\n"));
}

TEST_F(Keys, AFileMacroTypesAProgramThatThenRuns) {
    const std::string path = mFolder.Write("p.txt", "10 PRINT \"from a file\"\r\nRUN\r\n");
    EXPECT_THAT(Run("1;" + path), EndsWith("from a file\r\nOk"));
    EXPECT_EQ(Listing(), "10 PRINT \"from a file\"\r\n");
}

TEST_F(Keys, FilesAndPastesLongerThanTheQueueArriveWholeOnASlowLine) {
    Assemble("sim:R7G?baud=2400&paced=on");
    Show().DoAutoconnect();
    std::string program;
    for (int line = 1; line <= 400; ++line)
        program += std::to_string(line * 10) + " REM a line\r\n";
    Run("1;" + mFolder.Write("p.txt", program));
    mReactor.Pass(60'000);
    EXPECT_TRUE(Listing() == program);
    Control().NewProgram();
    mClipboard.mText = program;
    Control().PasteCB();
    mReactor.Pass(60'000);
    EXPECT_TRUE(Listing() == program);
}

TEST_F(Keys, ARunMacroStartsAProgramAndSendsNothing) {
    TakeSent();
    Run("2;/usr/bin/printf \"a b\" c");
    ASSERT_EQ(mLauncher.mRequests.size(), 1U);
    EXPECT_EQ(mLauncher.mRequests[0].program, "/usr/bin/printf");
    EXPECT_THAT(mLauncher.mRequests[0].arguments, ElementsAre("a b", "c"));
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Keys, KeysAreDefinedInTheirDialogAndWorkAtOnce) {
    mForms.On<frmFunctionKeysSetup>([](frmFunctionKeysSetup& form) {
        form.SSTab1.Pick(2);
        form.pic1[2].txtAlt.Type("PRINT 33<CR>", 0);
        form.Command1[0].Click();
    });
    Control().PressToolbarKey("FunctionkeysSetup");
    EXPECT_EQ(Control().Toolbar1.Find("F3")->toolTip, "Text:\"PRINT 33<CR>\"");
    EXPECT_THAT(Press("F3"), HasSubstr("\r\n33\r\n"));
    TakeSent();
    EXPECT_EQ(Press("F4"), "") << "defined as an empty text";
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Keys, PasteSendsTheClipboardAsItIsAndCopyTakesTheScreen) {
    mClipboard.mText = "PRINT \"<CR>\";\"&&\"\r\n";
    Fresh();
    Control().PressToolbarKey("Paste");
    mReactor.Pass(1000);
    Control().PressToolbarKey("Copy");
    EXPECT_THAT(*mClipboard.mText, HasSubstr("\r\n<CR>&&\r\nOk\r\n"));
    Control().UserControl_Hide();
    EXPECT_EQ(NumberRaisedBy([&] { Control().PasteCB(); }), ErrPortNotOpen);
}

TEST_F(Keys, ClearEmptiesTheScreenAndKeepsTheRow) {
    Control().SetCursorRow(12);
    EXPECT_EQ(mAssembly->Viewport().Type("PRINT 1\rabc"), 11U);
    mReactor.Pass(1000);
    const std::int16_t row = Control().CursorRow();
    EXPECT_EQ(row, 15);
    EXPECT_EQ(Control().CursorColumn(), 4);
    Control().PressToolbarKey("Clear");
    EXPECT_EQ(Control().CursorRow(), row);
    EXPECT_EQ(Control().CursorColumn(), 1);
    EXPECT_EQ(Screen(), "");
}

TEST_F(Keys, UploadATypesAFileAndDownloadACapturesTheAnswer) {
    const std::string path = mFolder.File("captured.txt");
    mFiles.mAnswers = {path, mFolder.Write("cmd.txt", "PRINT 12*12\r\n")};
    Control().PressToolbarKey("DownloadA");
    EXPECT_THAT(Press("UploadA"), HasSubstr("\r\n144\r\n"));
    EXPECT_THAT(ContentOf(path), EndsWith("144\r\nOk\r\n"));
}

TEST_F(Keys, ACaptureAppendsAndANewOneEndsTheOneBefore) {
    const std::string first = mFolder.Write("first.txt", "before\r\n");
    Control().SetCaptureToFile(first);
    Run("0;PRINT 1<CR>");
    const std::string second = mFolder.File("second.txt");
    Control().SetCaptureToFile(second);
    Run("0;PRINT 2<CR>");
    EXPECT_EQ(ContentOf(first), "before\r\nPRINT 1\r\n1\r\nOk\r\n");
    EXPECT_EQ(ContentOf(second), "PRINT 2\r\n2\r\nOk\r\n");
}

TEST_F(Keys, ThePopUpMenuCopiesAndPastes) {
    mClipboard.mText = "PRINT 5\r";
    Fresh();
    Control().PDQComm1_MouseDown(2);
    ASSERT_EQ(mWindow.mMenus.size(), 1U);
    Control().mnuPopUp_Click(2);
    mReactor.Pass(1000);
    Control().mnuPopUp_Click(1);
    EXPECT_THAT(*mClipboard.mText, HasSubstr("PRINT 5\r\n5\r\nOk"));
}

TEST_F(Keys, DeleteOnAClosedPortIsNothing) {
    Control().UserControl_Hide();
    mTrace.mSent.clear();
    std::int16_t key = 46;
    Control().PDQComm1_KeyDown(key, 0);
    EXPECT_EQ(key, 46);
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Keys, TheKeysOfTheTerminalCopyPasteAndNeverMoveTheCursor) {
    mClipboard.mText = "PRINT 6\r";
    Fresh();
    std::int16_t key = 45;
    Control().PDQComm1_KeyDown(key, 1);
    mReactor.Pass(1000);
    Control().PDQComm1_KeyDown(key, 2);
    EXPECT_THAT(*mClipboard.mText, HasSubstr("\r\n6\r\nOk"));
    TakeSent();
    const std::int16_t row = Control().CursorRow();
    for (key = 37; key <= 40; ++key) {
        std::int16_t arrow = key;
        Control().PDQComm1_KeyDown(arrow, 0);
        EXPECT_EQ(arrow, 0);
    }
    EXPECT_EQ(Control().CursorRow(), row);
    EXPECT_EQ(TakeSent(), "");
}

} // namespace
} // namespace qncomm::testing
