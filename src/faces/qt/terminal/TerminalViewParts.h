#pragma once

#include "CellFont.h"
#include "CellPainter.h"
#include "ScreenReaderText.h"
#include "SearchBar.h"
#include "TerminalSelection.h"
#include "TerminalText.h"
#include "TerminalView.h"
#include "terminal/Terminal.h"

#include <optional>

namespace qncomm {

struct TerminalView::Parts {
    Parts(Terminal& ownGrid, TerminalInput& ownInput)
        : grid(ownGrid), input(ownInput), text(ownGrid) {}

    Terminal& grid;
    TerminalInput& input;
    TerminalText text;
    ScreenReaderText readers;

    /// How it looks.
    CellFont font;
    CellColours colours;
    terminal::TerminalAppearance shown; ///< what font and colours were made from
    qreal devicePixels = 0;
    int zoom = 0;

    /// What is in view.
    std::uint64_t top = 0;
    std::size_t left = 0;
    int rows = 1; ///< whole ones
    int columns = 1;
    bool follows = true;
    bool settingBars = false;
    std::uint64_t screenBegin = 0;        ///< as of the last frame
    std::uint64_t contentEnd = 1;         ///< behind the last line that holds anything
    std::size_t widest = 0;               ///< of the lines seen so far
    std::optional<std::uint64_t> typedOn; ///< the line that the user types on
    TextPosition cursor;                  ///< where it was painted

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

    bool CursorIsInView() const {
        return text.CursorLine() >= top
               && text.CursorLine() <= top + static_cast<std::uint64_t>(rows);
    }
    TextPosition PositionAt(const QPoint& at, bool betweenCells) const;
};

} // namespace qncomm
