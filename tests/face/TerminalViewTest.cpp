// What the terminal view shows, and where it stays while more comes.

#include "terminal/view/TerminalText.h"
#include "testing/face/Pictures.h"
#include "testing/face/ViewRig.h"
#include "testing/face/Windows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QWheelEvent>
#include <QtMath>

namespace qncomm::testing {
namespace {

void TurnWheel(QWidget& widget, int notches, Qt::KeyboardModifiers held = Qt::NoModifier) {
    const QPoint at = widget.rect().center();
    QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, notches * 120}, Qt::NoButton, held,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

TEST(View, FollowsTheTextToItsEnd) {
    ViewRig rig;
    rig.ReceiveLines(1, 100);
    EXPECT_TRUE(rig.view.Follows());
    EXPECT_TRUE(rig.view.rect().contains(rig.view.CursorRect()));
    rig.ReceiveLines(101, 1000); // beyond the screen, into the scroll-back
    EXPECT_TRUE(rig.view.rect().contains(rig.view.CursorRect()));
}

TEST(View, StaysWhereTheUserLooksBackWhileMoreComes) {
    ViewRig rig;
    rig.ReceiveLines(1, 400);
    TurnWheel(*rig.view.viewport(), 5);
    EXPECT_FALSE(rig.view.Follows());
    const std::string shown = rig.LineInView(0);
    const std::uint64_t top = rig.view.TopLine();
    rig.ReceiveLines(401, 500);
    EXPECT_EQ(rig.view.TopLine(), top);
    EXPECT_EQ(rig.LineInView(0), shown);
    rig.Press(Qt::Key_A); // who types wants to see it
    EXPECT_TRUE(rig.view.Follows());
    EXPECT_TRUE(rig.view.rect().contains(rig.view.CursorRect()));
}

TEST(View, AClearedScreenIsShownFromItsFirstRow) {
    ViewRig rig;
    rig.ReceiveLines(1, 400);
    rig.Receive("\x1B[2J\x1B[Hfresh");
    EXPECT_EQ(rig.LineInView(0), "fresh");
    EXPECT_TRUE(rig.view.Follows());
    TurnWheel(*rig.view.viewport(), 1);
    EXPECT_EQ(rig.LineInView(0).substr(0, 5), "line ") << "what scrolled off is kept";
    QScrollBar& bar = *rig.view.verticalScrollBar();
    bar.setValue(bar.maximum());
    EXPECT_EQ(rig.LineInView(0), "fresh");
    EXPECT_TRUE(rig.view.Follows());
}

TEST(View, ALineThatIsNoLongerKeptGivesWayToTheOldestThatIs) {
    Terminal::Options options;
    options.rows = 50;
    options.scrollbackLines = 100;
    ViewRig rig(options);
    rig.ReceiveLines(1, 200);
    rig.Press(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(rig.view.TopLine(), rig.grid.ScrollbackBegin());
    rig.ReceiveLines(201, 500);
    EXPECT_EQ(rig.view.TopLine(), rig.grid.ScrollbackBegin());
    EXPECT_FALSE(rig.view.Follows());
}

TEST(View, KeysAndScrollBarLookBackAndReturn) {
    ViewRig rig;
    rig.ReceiveLines(1, 600);
    const std::uint64_t end = rig.view.TopLine();
    rig.Press(Qt::Key_PageUp, Qt::ShiftModifier);
    EXPECT_LT(rig.view.TopLine(), end);
    rig.Press(Qt::Key_PageDown, Qt::ShiftModifier);
    EXPECT_EQ(rig.view.TopLine(), end);
    EXPECT_TRUE(rig.view.Follows());
    QScrollBar& bar = *rig.view.verticalScrollBar();
    bar.setValue(3);
    EXPECT_EQ(rig.LineInView(0), "line 4");
    bar.setValue(bar.maximum());
    EXPECT_TRUE(rig.view.Follows());
}

TEST(View, ALongLineIsFollowedWhileItIsTypedAndReachedByTheBarElse) {
    ViewRig rig({}, {400, 200});
    rig.Receive(std::string(200, 'x'));
    EXPECT_EQ(rig.view.horizontalScrollBar()->value(), 0);
    EXPECT_GT(rig.view.horizontalScrollBar()->maximum(), 100);
    rig.Press(Qt::Key_X);
    rig.Receive("x");
    EXPECT_TRUE(rig.view.rect().contains(rig.view.CursorRect()));
    rig.Receive("\r\n");
    EXPECT_EQ(rig.view.horizontalScrollBar()->value(), 0);
}

TEST(View, ThePictureAfterScrollingIsThatOfPaintingAnew) {
    ViewRig rig;
    rig.ReceiveLines(1, 40);
    for (int turn = 0; turn < 6; ++turn) {
        rig.ReceiveLines(41 + turn * 3, 3);
        rig.Receive("\x1B[3A\x1B[41mred\x1B[m\x1B[3B\r");
        QTest::qWait(20);
    }
    rig.view.clearFocus(); // the cursor rests
    QTest::qWait(20);
    const QImage kept = rig.view.window()->screen()->grabWindow(rig.view.winId()).toImage();
    rig.view.viewport()->update();
    QTest::qWait(20);
    const QImage anew = rig.view.window()->screen()->grabWindow(rig.view.winId()).toImage();
    EXPECT_FALSE(kept.isNull());
    SavePicture(kept, QStringLiteral("view-scrolled"));
    SavePicture(anew, QStringLiteral("view-scrolled-anew"));
    EXPECT_EQ(kept, anew);
}

/// The colours from the first row to the lower edge of the view, where there is no letter.
QSet<QRgb> ColoursDown(ViewRig& rig) {
    const QImage picture =
        rig.view.window()->screen()->grabWindow(rig.view.viewport()->winId()).toImage();
    QSet<QRgb> colours;
    const int x = picture.width() / 2;
    const int first = rig.view.CellRect(rig.view.TopLine(), 0).top();
    for (int y = qCeil(first * picture.devicePixelRatio()); y < picture.height(); ++y)
        colours.insert(picture.pixel(x, y));
    return colours;
}

TEST(View, ARowThatTheLowerEdgeCutsIsAsTheOthers) {
    ViewRig rig;
    rig.grid.Appearance().backColor = 15;
    for (int height = 300; height < 300 + rig.view.RowHeight(); ++height) {
        rig.view.resize(640, height);
        rig.ReceiveLines(1, 30);
        const QSet<QRgb> ground{qRgb(15, 0, 0)};
        EXPECT_TRUE(QTest::qWaitFor([&] { return ColoursDown(rig) == ground; })) << height;
    }
}

TEST(View, BetweenRowsOfOneColourThereIsNoOther) {
    ViewRig rig;
    rig.Receive("\x1B[48;2;1;2;3m\x1B[2J\x1B[H");
    for (int zoom = -3; zoom < 8; ++zoom) {
        rig.view.ZoomReset();
        rig.view.ZoomBy(zoom);
        rig.Receive("one\x1B[3;1Hthree\x1B[2;1Htwo\x1B[H");
        const QSet<QRgb> rows{qRgb(1, 2, 3)};
        EXPECT_TRUE(QTest::qWaitFor([&] { return ColoursDown(rig) == rows; })) << zoom;
    }
}

TEST(View, ColoursAreTheTerminalsOwnUntilASequenceSetsOthers) {
    ViewRig rig;
    rig.grid.Appearance().backColor = 0x00112233;
    rig.Receive("a \x1B[48;2;1;2;3m b \x1B[7;38;2;9;8;7m c");
    EXPECT_EQ(rig.ColourAt(5, 5), QColor(0x33, 0x22, 0x11));
    EXPECT_EQ(rig.ColourAt(0, 2), QColor(1, 2, 3));
    EXPECT_EQ(rig.ColourAt(0, 5), QColor(9, 8, 7)); // inverse
}

TEST(View, ANegativeColourIsThatOfTheDesktop) {
    ViewRig rig;
    rig.grid.Appearance().backColor = static_cast<std::int32_t>(0x80000005);
    rig.Receive(" ");
    EXPECT_EQ(rig.ColourAt(3, 3), rig.view.palette().color(QPalette::Base));
    const DarkDesktop dark;
    QTest::qWait(10);
    EXPECT_EQ(rig.ColourAt(3, 3), DarkPalette().color(QPalette::Base));
}

/// How many different colours stand in a cell: one for a blank.
int ColoursIn(ViewRig& rig, int row, int column) {
    const std::uint64_t line = rig.view.TopLine() + static_cast<std::uint64_t>(row);
    const QImage picture = rig.view.viewport()->grab().toImage();
    const QRect cell = rig.view.CellRect(line, static_cast<std::size_t>(column));
    QSet<QRgb> colours;
    // Whole pixels inside the cell, without the outermost, which the letters beside may touch.
    const qreal scale = picture.devicePixelRatio();
    const QRect inside =
        QRectF(cell.topLeft() * scale, QSizeF(cell.size()) * scale).toRect().adjusted(2, 0, -2, 0);
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            colours.insert(picture.pixel(x, y));
    return static_cast<int>(colours.size());
}

TEST(View, TextOfTheColourOfItsGroundIsMadeReadable) {
    ViewRig rig;
    rig.grid.Appearance().backColor = 15;
    rig.grid.Appearance().foreColor = 0;
    rig.Receive("M\r\n");
    EXPECT_GT(ColoursIn(rig, 0, 0), 1);
}

TEST(View, EveryAttributeShows) {
    ViewRig rig;
    rig.Receive(
        "plain\r\n\x1B[1mbold\x1B[m \x1B[2mfaint\x1B[m \x1B[3mitalic\x1B[m \x1B[4munder\x1B[m "
        "\x1B[21mdouble\x1B[m \x1B[5mblink\x1B[m \x1B[7minverse\x1B[m \x1B[8mhidden\x1B[m "
        "\x1B[9mstrike\x1B[m \x1B[53mover\x1B[m\r\n");
    for (int code = 30; code < 38; ++code)
        rig.Receive("\x1B[" + std::to_string(code) + "mcolour\x1B[m ");
    rig.Receive("\r\n\x80 \x84quoted\x93 \xE9t\xE9 \xFC\xDF \x8A \xA7 \x99 [\x81]\r\n");
    EXPECT_EQ(ColoursIn(rig, 1, 47), 1); // concealed
    EXPECT_GT(ColoursIn(rig, 1, 0), 1);
    SavePicture(rig.view, QStringLiteral("view-attributes"));
}

TEST(View, ZoomChangesTheCellsAndNotTheTerminalsFont) {
    ViewRig rig;
    const float size = rig.grid.Appearance().fontSize;
    const int height = rig.view.RowHeight();
    rig.Press(Qt::Key_Plus, Qt::ControlModifier);
    TurnWheel(*rig.view.viewport(), 3, Qt::ControlModifier);
    EXPECT_EQ(rig.view.ZoomSteps(), 4);
    EXPECT_GT(rig.view.RowHeight(), height);
    EXPECT_EQ(rig.grid.Appearance().fontSize, size);
    rig.Press(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(rig.view.ZoomSteps(), 3);
    rig.Press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(rig.view.RowHeight(), height);
}

TEST(View, AnotherFontIsTakenOverWithTheNextFrame) {
    ViewRig rig;
    const int height = rig.view.RowHeight();
    rig.grid.Appearance().fontSize = 20;
    rig.Receive("x");
    EXPECT_GT(rig.view.RowHeight(), height);
}

TEST(View, AFontWhoseLettersDifferInWidthKeepsTheColumns) {
    ViewRig rig;
    rig.grid.Appearance().fontName = "DejaVu Sans";
    rig.Receive("iiiiiiiiii|\r\nWWWWWWWWWW|\r\n");
    EXPECT_GT(ColoursIn(rig, 0, 10), 1);
    EXPECT_GT(ColoursIn(rig, 1, 10), 1);
    EXPECT_EQ(ColoursIn(rig, 0, 11), 1);
    EXPECT_EQ(ColoursIn(rig, 1, 11), 1);
    SavePicture(rig.view, QStringLiteral("view-proportional-font"));
}

TEST(View, FramesAreFewHoweverManyPiecesCome) {
    ViewRig rig;
    const std::uint64_t frames = rig.view.Frames();
    QElapsedTimer time;
    time.start();
    int pieces = 0;
    while (time.elapsed() < 200) {
        rig.grid.Write("some more text\r\n");
        rig.view.GridChanged();
        ++pieces;
        QCoreApplication::processEvents();
    }
    EXPECT_GT(pieces, 100);
    EXPECT_LE(rig.view.Frames() - frames, 200 / 16 + 2);
}

TEST(View, ThreeHundredColumnsOfWideLettersAndNoiseAreShown) {
    ViewRig rig;
    std::string noise;
    for (int i = 0; i < 100'000; ++i)
        noise += static_cast<char>(i * 7919 >> 3);
    rig.Receive(std::string(300, 'W') + "\r\n");
    QScrollBar& along = *rig.view.horizontalScrollBar();
    along.setValue(along.maximum());
    EXPECT_TRUE(rig.view.viewport()->rect().contains(rig.view.CellRect(0, 299)));
    EXPECT_GT(ColoursIn(rig, 0, 299), 1);
    along.setValue(0);
    rig.Receive(noise);
    rig.Receive(std::string(50'000, '\x1B') + "[999999999;999999999H\x1B[");
    SavePicture(rig.view, QStringLiteral("view-noise"));
    rig.Receive("\x18\x1B[2J\x1B[Hsane again");
    EXPECT_EQ(rig.grid.Row(1).text.substr(0, 10), "sane again");
    EXPECT_EQ(rig.LineInView(0).substr(0, 10), "sane again");
    EXPECT_GT(ColoursIn(rig, 0, 0), 1);
}

TEST(View, AWindowOnePixelHighIsShownToo) {
    ViewRig rig;
    for (const QSize size : {QSize(640, 1), QSize(1, 1), QSize(1, 400), QSize(640, 320)}) {
        rig.view.resize(size);
        rig.ReceiveLines(1, 50);
        const std::uint64_t line = TerminalText(rig.grid).CursorLine();
        EXPECT_LE(rig.view.TopLine(), line) << "beyond the text";
        EXPECT_TRUE(size.height() > 1 || rig.view.TopLine() == line) << "the last line is shown";
    }
    EXPECT_TRUE(rig.view.rect().contains(rig.view.CursorRect()));
}

TEST(View, ABellLightsUpTheTextAndGoesOut) {
    ViewRig rig;
    rig.Receive("x\r\n");
    const QColor ground = rig.ColourAt(5, 5);
    rig.Receive("\a");
    EXPECT_NE(rig.ColourAt(5, 5), ground);
    EXPECT_TRUE(QTest::qWaitFor([&] { return rig.ColourAt(5, 5) == ground; }));
}

TEST(View, TheDesignPlaceholderNamesTheTerminal) {
    ViewRig rig;
    rig.grid.Appearance().displayState = 5;
    rig.Receive("not shown");
    SavePicture(rig.view, QStringLiteral("view-design"));
    EXPECT_GT(ColoursIn(rig, 0, 0), 1);
}

} // namespace
} // namespace qncomm::testing
