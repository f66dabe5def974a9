// What the user types, marks, copies and looks for in the terminal view.

#include "common/Windows1252.h"
#include "terminal/view/Letters.h"
#include "terminal/view/TerminalText.h"
#include "testing/face/Accessible.h"
#include "testing/face/Pictures.h"
#include "testing/face/ViewRig.h"
#include "testing/face/Windows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QInputMethodEvent>
#include <QLineEdit>

namespace qncomm::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// -- Keys

TEST(ViewKeys, TypedTextGoesToTheLineAsItsBytes) {
    ViewRig rig;
    for (const QChar letter : QStringLiteral("Print \"\u00E9\u20AC\"")) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(letter));
        QApplication::sendEvent(&rig.view, &press);
    }
    EXPECT_EQ(rig.input.typed, "Print \"\xE9\x80\"");
}

TEST(ViewKeys, KeysWithABytesOfTheirOwnSendIt) {
    ViewRig rig;
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Backspace, Qt::Key_Tab,
                          Qt::Key_Escape, Qt::Key_Delete, Qt::Key_Home, Qt::Key_F1, Qt::Key_F9})
        rig.Press(key);
    EXPECT_EQ(rig.input.typed, "\r\r\b\t\x1B");
}

TEST(ViewKeys, ALetterWithCtrlIsItsControlCharacter) {
    ViewRig rig;
    rig.Press(Qt::Key_C, Qt::ControlModifier);
    rig.Press(Qt::Key_Z, Qt::ControlModifier);
    rig.Press(Qt::Key_Space, Qt::ControlModifier);
    rig.Press(Qt::Key_BracketLeft, Qt::ControlModifier);
    EXPECT_EQ(rig.input.typed, std::string("\x03\x1A\0\x1B", 4));
}

TEST(ViewKeys, TheKeyFilterSeesAKeyFirstAndMaySwallowIt) {
    ViewRig rig;
    rig.Press(Qt::Key_Left);
    rig.Press(Qt::Key_Insert, Qt::ControlModifier);
    rig.Press(Qt::Key_A, Qt::ShiftModifier);
    EXPECT_THAT(rig.input.keys, ElementsAre(KeyStroke{37, 0}, KeyStroke{45, 2}, KeyStroke{65, 1}));
    rig.input.typed.clear();
    rig.input.swallow = true;
    QTest::keyClicks(&rig.view, QStringLiteral("a"));
    EXPECT_EQ(rig.input.typed, "");
}

TEST(ViewKeys, CtrlWithBreakAndCtrlShiftBBreakTheLineAndTypeNothing) {
    ViewRig rig;
    rig.Press(Qt::Key_Pause, Qt::ControlModifier);
    rig.Press(Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(rig.input.breaks, 2);
    rig.Press(Qt::Key_Pause);
    EXPECT_EQ(rig.input.breaks, 2);
    EXPECT_EQ(rig.input.typed, "");
}

TEST(ViewKeys, CtrlShiftAndF1ToF8PressTheToolbar) {
    ViewRig rig;
    rig.Press(Qt::Key_F1, Qt::ControlModifier | Qt::ShiftModifier);
    rig.Press(Qt::Key_F8, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_THAT(rig.input.functionKeys, ElementsAre(1, 8));
    EXPECT_THAT(rig.input.keys, IsEmpty());
}

TEST(ViewKeys, AKeyOfTheLineIsNoShortcutOfTheProgram) {
    ViewRig rig;
    QKeyEvent typed(QEvent::ShortcutOverride, Qt::Key_C, Qt::ControlModifier);
    typed.ignore();
    QApplication::sendEvent(&rig.view, &typed);
    EXPECT_TRUE(typed.isAccepted());
    QKeyEvent menu(QEvent::ShortcutOverride, Qt::Key_F, Qt::AltModifier, QStringLiteral("f"));
    menu.ignore();
    QApplication::sendEvent(&rig.view, &menu);
    EXPECT_FALSE(menu.isAccepted());
}

TEST(ViewKeys, AnInputMethodsTextIsTypedAndItsDraftIsNot) {
    ViewRig rig;
    QInputMethodEvent draft(QStringLiteral("e'"), {});
    QApplication::sendEvent(&rig.view, &draft);
    EXPECT_EQ(rig.input.typed, "");
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("\u00E9"));
    QApplication::sendEvent(&rig.view, &commit);
    EXPECT_EQ(rig.input.typed, "\xE9");
    const QRect cursor = rig.view.inputMethodQuery(Qt::ImCursorRectangle).toRect();
    EXPECT_FALSE(cursor.isEmpty());
    EXPECT_TRUE(rig.view.rect().contains(cursor));
}

TEST(ViewKeys, TheRightButtonAsksForTheMenu) {
    ViewRig rig;
    QTest::mouseClick(rig.view.viewport(), Qt::RightButton);
    EXPECT_EQ(rig.input.menus, 1);
}

// -- Marking

TEST(ViewSelection, ADragMarksFromCellToCellAcrossLines) {
    ViewRig rig;
    rig.Receive("first line   \r\nsecond line\r\n");
    rig.Drag(rig.CellAt(0, 6), rig.CellAt(1, 6));
    EXPECT_EQ(rig.view.SelectedText(), "line\r\nsecond");
    rig.Press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(rig.input.copied, "line\r\nsecond");
}

TEST(ViewSelection, ADoubleClickMarksTheWordAndAThirdTheLine) {
    ViewRig rig;
    rig.Receive("FILES \"ram:name.prg\" now\r\n");
    QTest::mouseDClick(rig.view.viewport(), Qt::LeftButton, {}, rig.CellAt(0, 10));
    EXPECT_EQ(rig.view.SelectedText(), "ram:name.prg");
    QTest::mousePress(rig.view.viewport(), Qt::LeftButton, {}, rig.CellAt(0, 10));
    QTest::mouseRelease(rig.view.viewport(), Qt::LeftButton, {}, rig.CellAt(0, 10));
    EXPECT_EQ(rig.view.SelectedText(), "FILES \"ram:name.prg\" now");
}

TEST(ViewSelection, ShiftExtendsWhatIsMarked) {
    ViewRig rig;
    rig.Receive("one two three four\r\n");
    rig.Drag(rig.CellAt(0, 4), rig.CellAt(0, 6));
    const std::string before = rig.view.SelectedText();
    QTest::mouseClick(rig.view.viewport(), Qt::LeftButton, Qt::ShiftModifier, rig.CellAt(0, 14));
    EXPECT_GT(rig.view.SelectedText().size(), before.size());
    EXPECT_EQ(rig.view.SelectedText().substr(0, 3), "two");
}

TEST(ViewSelection, AltMarksARectangle) {
    ViewRig rig;
    rig.Receive("abcdef\r\nghijkl\r\nmnopqr\r\n");
    rig.Drag(rig.CellAt(0, 1), rig.CellAt(2, 3) + QPoint(2, 0), Qt::AltModifier);
    EXPECT_EQ(rig.view.SelectedText(), "bcd\r\nhij\r\nnop");
}

TEST(ViewSelection, ALineBrokenForWantOfColumnsIsOneLine) {
    Terminal::Options options;
    options.columns = 20;
    ViewRig rig(options);
    const std::string text = "a line that is longer than twenty columns";
    rig.Receive(text + "\r\nnext\r\n");
    rig.Drag(rig.CellAt(0, 0) - QPoint(3, 0), rig.CellAt(3, 3) + QPoint(3, 0));
    EXPECT_EQ(rig.view.SelectedText(), text + "\r\nnext");
}

TEST(ViewSelection, MarkedTextThatChangesIsNoLongerMarkedAndOtherStays) {
    ViewRig rig;
    rig.Receive("one\r\ntwo\r\n");
    rig.Drag(rig.CellAt(0, 0) - QPoint(3, 0), rig.CellAt(0, 3));
    rig.Receive("three\r\n");
    EXPECT_EQ(rig.view.SelectedText(), "one");
    rig.Receive("\x1B[HONE");
    EXPECT_FALSE(rig.view.HasSelection());
}

TEST(ViewSelection, MarkedTextIsStillMarkedWhenItHasScrolledOff) {
    Terminal::Options options;
    options.rows = 30;
    ViewRig rig(options);
    rig.Receive("marked\r\n");
    rig.Drag(rig.CellAt(0, 0) - QPoint(3, 0), rig.CellAt(0, 6));
    rig.ReceiveLines(1, 200);
    EXPECT_EQ(rig.view.SelectedText(), "marked");
}

TEST(ViewSelection, EverythingIsMarkedFromTheFirstKeptLineOn) {
    Terminal::Options options;
    options.rows = 5;
    ViewRig rig(options);
    rig.ReceiveLines(1, 8);
    rig.Press(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    const std::string all = rig.view.SelectedText();
    EXPECT_EQ(all.substr(0, 16), "line 1\r\nline 2\r\n");
    EXPECT_NE(all.find("line 8"), std::string::npos);
}

// -- Search

/// The text of the line on which the marked text starts.
std::string MarkedLine(ViewRig& rig) {
    return TerminalText(rig.grid).Line(rig.view.SelectionRange().first.line).text;
}

TEST(ViewSearch, FindsNewestFirstGoesOnBothWaysAndRoundTheEnds) {
    ViewRig rig;
    rig.ReceiveLines(1, 400);
    std::vector<std::string> found;
    const auto find = [&](bool back) {
        const QString text = QStringLiteral("LINE 39"); // letters in either case
        EXPECT_TRUE(back ? rig.view.FindPrevious(text) : rig.view.FindNext(text));
        found.push_back(MarkedLine(rig));
    };
    find(true);
    find(true);
    find(false);
    find(false);
    find(true);
    EXPECT_THAT(found, ElementsAre("line 399", "line 398", "line 399", "line 39", "line 399"));
}

TEST(ViewSearch, WhatIsFoundIsInView) {
    ViewRig rig;
    rig.ReceiveLines(1, 900);
    EXPECT_TRUE(rig.view.FindPrevious(QStringLiteral("line 17")));
    const std::uint64_t line = rig.view.SelectionRange().first.line;
    EXPECT_TRUE(rig.view.viewport()->rect().contains(rig.view.CellRect(line, 0)));
    EXPECT_EQ(rig.view.SelectedText(), "line 17");
}

TEST(ViewSearch, TextAcrossABrokenLineIsFound) {
    Terminal::Options options;
    options.columns = 10;
    ViewRig rig(options);
    rig.Receive("12345 across 67890\r\n");
    EXPECT_TRUE(rig.view.FindNext(QStringLiteral("ACROSS")));
    EXPECT_EQ(rig.view.SelectedText(), "across");
}

TEST(ViewSearch, WhatIsNowhereIsNotFound) {
    ViewRig rig;
    rig.ReceiveLines(1, 20);
    EXPECT_FALSE(rig.view.FindNext(QStringLiteral("nowhere")));
    EXPECT_FALSE(rig.view.FindPrevious(QString()));
    EXPECT_FALSE(rig.view.HasSelection());
}

TEST(ViewSearch, CtrlFAsksEnterGoesOnAndEscapeReturnsToTheTerminal) {
    ViewRig rig;
    rig.ReceiveLines(1, 50);
    rig.Press(Qt::Key_F, Qt::ControlModifier);
    auto* text = rig.view.findChild<QLineEdit*>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return text->hasFocus(); }));
    QTest::keyClicks(text, QStringLiteral("line 2"));
    QTest::keyClick(text, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(MarkedLine(rig), "line 29");
    SavePicture(rig.view, QStringLiteral("view-search"));
    EXPECT_EQ(StopsOf(rig.view).nameless, std::vector<std::string>());
    EXPECT_EQ(StopsOf(rig.view).count, 5) << "terminal, text, back, forward, close";
    QTest::keyClicks(text, QStringLiteral(" not there"));
    QTest::keyClick(text, Qt::Key_Return);
    SavePicture(rig.view, QStringLiteral("view-search-nothing"));
    QTest::keyClick(text, Qt::Key_Escape);
    EXPECT_TRUE(rig.view.hasFocus());
    EXPECT_FALSE(text->isVisible());
    EXPECT_EQ(rig.input.typed, "");
}

// -- Screen readers

TEST(ViewForReaders, TheTerminalIsATextWithACursor) {
    ViewRig rig;
    rig.Receive("first  \r\nOk\r\n> ");
    QAccessibleInterface* view = QAccessible::queryAccessibleInterface(&rig.view);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->role(), QAccessible::Terminal);
    EXPECT_EQ(view->text(QAccessible::Name), QStringLiteral("Terminal"));
    QAccessibleTextInterface* text = view->textInterface();
    ASSERT_NE(text, nullptr);
    const QString all = text->text(0, text->characterCount());
    EXPECT_EQ(all, QStringLiteral("first\nOk\n> "));
    EXPECT_EQ(text->cursorPosition(), all.size());
    EXPECT_EQ(text->text(6, 8), QStringLiteral("Ok"));
    const QRect letter = text->characterRect(6);
    EXPECT_EQ(text->offsetAtPoint(letter.center()), 6);
    text->setSelection(0, 6, 8);
    EXPECT_EQ(rig.view.SelectedText(), "Ok");
    int start = 0;
    int end = 0;
    text->selection(0, &start, &end);
    EXPECT_EQ(start, 6);
    EXPECT_EQ(end, 8);
}

/// Letters and case are told by a table of bytes; the toolkit knows them of every character.
TEST(ViewSearch, LettersAndCaseAreTheToolkitsForEveryByte) {
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        const QChar character(CharacterOf(byte));
        EXPECT_EQ(IsLetterOrNumber(byte), character.isLetterOrNumber()) << value;
        const auto small = LineByteOf(character.toLower().unicode());
        EXPECT_EQ(WithSmallLetters({&byte, 1}), std::string(1, small.value_or(byte))) << value;
    }
}

} // namespace
} // namespace qncomm::testing
