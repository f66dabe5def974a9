#include "common/modErrorHandling.h"
#include "testing/core/ControlFixture.h"

namespace qncomm {
namespace {

using testing::ControlFixture;
using testing::IsEmpty;

class Viewport : public ControlFixture {
  protected:
    /// Presses a key; true when it goes further.
    bool Press(std::int16_t code, std::int16_t shift = 0) {
        const std::int16_t pressed = code;
        mControl->PDQComm1_KeyDown(code, shift);
        EXPECT_TRUE(code == 0 || code == pressed);
        return code != 0;
    }
};

TEST_F(Viewport, ArrowKeysAreSwallowed) {
    Show();
    for (const std::int16_t key : std::initializer_list<std::int16_t>{37, 38, 39, 40})
        EXPECT_FALSE(Press(key));
    for (const std::int16_t key : std::initializer_list<std::int16_t>{36, 41, 112, 115, 119, 65})
        EXPECT_TRUE(Press(key));
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Viewport, DeleteIsWrittenInTheLinksModeAndAlwaysGoesOn) {
    Show();
    EXPECT_TRUE(Press(46));
    EXPECT_EQ(TakeSent(), "") << "the terminal's mode";
    mSerial.SetReceiveMode(ReceiveToLink);
    EXPECT_TRUE(Press(46));
    EXPECT_EQ(TakeSent(), "\x7F");
    mSerial.SetPortOpen(false);
    EXPECT_TRUE(Press(46));
    EXPECT_EQ(TakeSent(), "");
}

TEST_F(Viewport, InsertCopiesWithCtrlAndPastesWithShiftAlone) {
    Show();
    mTerminal.mText = "A";
    mClipboard.mText = "B";
    for (const std::int16_t shift : std::initializer_list<std::int16_t>{0, 3, 4, 5, 6, 7})
        EXPECT_TRUE(Press(45, shift));
    EXPECT_EQ(mClipboard.mText, "B");
    EXPECT_EQ(TakeSent(), "");
    Press(45, 1);
    EXPECT_EQ(TakeSent(), "B");
    Press(45, 2);
    EXPECT_EQ(mClipboard.mText, "A");
}

TEST_F(Viewport, AKeyRaisesNothingOnAClosedPort) {
    Run();
    mClipboard.mText = "B";
    EXPECT_TRUE(Press(45, 1));
    EXPECT_FALSE(mDesktop.mLog.empty());
}

TEST_F(Viewport, ClearKeepsTheRow) {
    mTerminal.mText = "x";
    mTerminal.mRow = 12;
    mTerminal.mColumn = 5;
    mControl->Clear();
    EXPECT_EQ(mTerminal.mText, "");
    EXPECT_EQ(mControl->CursorRow(), 12);
    EXPECT_EQ(mControl->CursorColumn(), 1);
}

TEST_F(Viewport, CopyTrimsBlanksAtLineEndsOnly) {
    mTerminal.mText = "A   \r\n  B\r\n    \r\n\tC \t";
    mControl->CopyCB();
    EXPECT_EQ(mClipboard.mText, "A\r\n  B\r\n\r\n\tC \t");
}

TEST_F(Viewport, CopyKeepsAllLinesOfTheGrid) {
    std::string expected;
    for (int row = 1; row <= 300; ++row) {
        mTerminal.mText += (row == 1 ? "x" : " ") + std::string(299, ' ');
        expected += row == 1 ? "x" : "";
        if (row < 300) mTerminal.mText += "\r\n", expected += "\r\n";
    }
    mControl->CopyCB();
    EXPECT_EQ(mClipboard.mText, expected);
}

TEST_F(Viewport, AnEmptyScreenCopiesAsAnEmptyText) {
    mTerminal.mText = "   \r\n   ";
    mControl->CopyCB();
    EXPECT_EQ(mClipboard.mText, "");
    mClipboard.mText.reset();
    mTerminal.mText.clear();
    mControl->CopyCB();
    EXPECT_EQ(mClipboard.mText, "");
}

TEST_F(Viewport, PasteSendsWithoutAClaimAndFailsOnAClosedPort) {
    Show();
    mClipboard.mText = "PRINT 1\r\n";
    mControl->PasteCB();
    EXPECT_EQ(TakeSent(), "PRINT 1\r\n");
    mControl->UserControl_Hide();
    EXPECT_RAISED_FROM(mControl->PasteCB(), "1024 Datalink:OutputText");
    mClipboard.mText.reset();
    EXPECT_RAISED(mControl->PasteCB(), ErrPortNotOpen);
}

TEST_F(Viewport, TheRightButtonShowsTheMenuOfCopyAndPaste) {
    Show();
    mControl->PDQComm1_MouseDown(1);
    EXPECT_THAT(mWindow.mMenus, IsEmpty());
    mControl->PDQComm1_MouseDown(2);
    ASSERT_EQ(mWindow.mMenus.size(), 1U);
    const auto& items = mWindow.mMenus[0].items;
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].caption, "Copy");
    EXPECT_EQ(items[1].caption, "Paste");
    mTerminal.mText = "A";
    mControl->mnuPopUp_Click(0);
    mControl->mnuPopUp_Click(3);
    EXPECT_FALSE(mClipboard.mText.has_value());
    mControl->mnuPopUp_Click(1);
    EXPECT_EQ(mClipboard.mText, "A");
    mControl->mnuPopUp_Click(2);
    EXPECT_EQ(TakeSent(), "A");
}

TEST_F(Viewport, CaptureGoesToTheTerminalAndFailsAsItDoes) {
    mControl->SetCaptureToFile("/a");
    mControl->SetCaptureToFile("/b");
    EXPECT_EQ(mTerminal.mCapture, "/b");
    mTerminal.mCaptureFails = true;
    EXPECT_RAISED(mControl->SetCaptureToFile("/no/where"), RtPathNotFound);
    EXPECT_EQ(mTerminal.mCapture, "/b");
}

} // namespace
} // namespace qncomm
