#pragma once

#include "CellFont.h"
#include "terminal/TerminalLine.h"
#include "terminal/view/TerminalSelection.h"

#include <QColor>
#include <QPointF>

#include <cstddef>

class QPainter;

namespace qncomm {

/// The colours that a terminal is painted with where a sequence has set none.
struct CellColours {
    QColor back;
    QColor text;
    QColor markedBack;
    QColor markedText;
};

/// Paints lines of cells: colours, attributes, what is marked.
class CellPainter {
  public:
    /// What of a line to paint.
    struct Part {
        std::size_t from = 0;
        std::size_t to = 0;
        TerminalSelection::Columns marked;
        bool blinkOff = false; ///< text that blinks is not shown now
    };

    CellPainter(QPainter& painter, const CellFont& font, const CellColours& colours)
        : mPainter(painter), mFont(font), mColours(colours) {}

    /// Paints cells of a line; `at` is the upper left corner of its first cell. The terminal's own
    /// background has been painted before.
    void Paint(const terminal::TerminalLine& line, const QPointF& at, const Part& part);

    /// Paints one cell with a text colour and background of its own, as a cursor shows it.
    void PaintInverted(const terminal::TerminalLine& line, const QPointF& at, std::size_t column);

    /// Whether anything painted so far blinks.
    bool SawBlink() const { return mSawBlink; }

  private:
    struct Look {
        QColor back;
        QColor text;
    };

    Look LookOf(terminal::Style style, bool marked) const;
    void PaintCells(const terminal::TerminalLine& line, const QPointF& at, std::size_t from,
                    std::size_t to, terminal::Style style, bool marked, bool blinkOff);
    void PaintText(std::string_view cells, const QPointF& place, terminal::Style style);
    void PaintLines(const QPointF& place, qreal width, terminal::Style style);

    QPainter& mPainter;
    const CellFont& mFont;
    const CellColours& mColours;
    bool mSawBlink = false;
};

} // namespace qncomm
