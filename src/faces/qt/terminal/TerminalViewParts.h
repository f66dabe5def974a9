#pragma once

#include "CellFont.h"
#include "CellPainter.h"
#include "SearchBar.h"
#include "TerminalAccessible.h"
#include "TerminalView.h"
#include "terminal/Terminal.h"
#include "terminal/TerminalChanges.h"
#include "terminal/view/TerminalScroll.h"
#include "terminal/view/TerminalSelection.h"

namespace qncomm {

struct TerminalView::Parts {
    Parts(const Terminal& ownGrid, TerminalChanges ownChanges, TerminalInput& ownInput)
        : grid(ownGrid), changes(ownChanges), input(ownInput), text(ownGrid), scroll(text) {}

    const Terminal& grid;
    TerminalChanges changes;
    TerminalInput& input;
    TerminalText text;
    TerminalScroll scroll;
    TerminalReaders readers;

    /// How it looks.
    CellFont font;
    CellColours colours;
    terminal::TerminalAppearance shown; ///< what font and colours were made from
    qreal devicePixels = 0;
    int zoom = 0;

    /// What is painted.
    std::uint64_t paintedTop = 0;
    std::size_t paintedLeft = 0;
    TextPosition paintedCursor;
    bool settingBars = false;

    /// What the user does.
    TerminalSelection selection;
    bool dragging = false;
    QPoint dragAt;
    QElapsedTimer sinceDoubleClick;
    QPoint doubleClickAt;
    QPoint wheelRest; ///< what has been turned and moved nothing yet
    QString preedit;
    SearchBar* search = nullptr;

    /// Time.
    QBasicTimer frameTimer;
    QBasicTimer blinkTimer;
    QBasicTimer bellTimer;
    QBasicTimer dragTimer;
    QElapsedTimer sinceFrame;
    qint64 frameCostNs = 0; ///< of the last frame, with its painting
    bool cursorOn = true;
    bool sawBlink = false;
    std::uint64_t frames = 0;

    /// The free space left of and above the first cell.
    static constexpr int PadLeft = 4;
    static constexpr int PadTop = 2;

    /// The row and column at a point of the viewport, in fractions of a cell.
    QPointF CellsAt(const QPoint& at) const;
    /// The place at a point: the nearest edge between two cells, or the left edge of the cell
    /// itself.
    TextPosition PositionAt(const QPoint& at, bool betweenCells) const;
    /// The left button has gone down so many times in a row there.
    void StartSelection(const QPoint& at, int presses, bool block);
};

} // namespace qncomm
