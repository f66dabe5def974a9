#include "CellPainter.h"

#include "qt/Colours.h"

#include <QPainter>

#include <algorithm>

namespace qncomm {
namespace {

using terminal::Attribute;
using terminal::Colour;
using terminal::Style;
using terminal::TerminalLine;

QColor Resolved(Colour colour, const QColor& own) {
    if (colour.IsOwn()) return own;
    return ColourOf(static_cast<std::int32_t>(colour.Value(0)), QPalette());
}

QColor Between(const QColor& one, const QColor& other) {
    return QColor((one.red() + other.red()) / 2, (one.green() + other.green()) / 2,
                  (one.blue() + other.blue()) / 2);
}

/// The style of the cell and where it ends.
struct Stretch {
    Style style;
    std::size_t to;
};

/// Goes along the styles of a line; beyond the text the line's fill goes on for ever.
class Stretches {
  public:
    explicit Stretches(const TerminalLine& line) : mLine(line) {}

    Stretch At(std::size_t column, std::size_t limit) {
        if (column >= mLine.text.size()) return {mLine.fill, limit};
        if (mLine.runs.empty()) return {{}, std::min(limit, mLine.text.size())};
        while (mRunEnd <= column && mNext < mLine.runs.size())
            mRunEnd += mLine.runs[mNext++].length;
        return {mLine.runs[mNext - 1].style, std::min(limit, mRunEnd)};
    }

  private:
    const TerminalLine& mLine;
    std::size_t mNext = 0;
    std::size_t mRunEnd = 0;
};

} // namespace

CellPainter::Look CellPainter::LookOf(Style style, bool marked) const {
    Look look{Resolved(style.Background(), mColours.back),
              Resolved(style.Foreground(), mColours.text)};
    if (style.Has(Attribute::Inverse)) std::swap(look.back, look.text);
    if (style.Has(Attribute::Faint)) look.text = Between(look.text, look.back);
    if (marked) look = {mColours.markedBack, mColours.markedText};
    return look;
}

void CellPainter::Paint(const TerminalLine& line, const QPointF& at, const Part& part) {
    Stretches stretches(line);
    for (std::size_t column = part.from; column < part.to;) {
        Stretch stretch = stretches.At(column, part.to);
        const bool marked = column >= part.marked.from && column < part.marked.to;
        if (marked)
            stretch.to = std::min(stretch.to, part.marked.to);
        else if (column < part.marked.from)
            stretch.to = std::min(stretch.to, part.marked.from);
        PaintCells(line, at, column, stretch.to, stretch.style, marked, part.blinkOff);
        column = stretch.to;
    }
}

void CellPainter::PaintCells(const TerminalLine& line, const QPointF& at, std::size_t from,
                             std::size_t to, Style style, bool marked, bool blinkOff) {
    const Look look = LookOf(style, marked);
    const QPointF place(at.x() + static_cast<qreal>(from) * mFont.Width(), at.y());
    const qreal width = static_cast<qreal>(to - from) * mFont.Width();
    if (look.back != mColours.back)
        mPainter.fillRect(QRectF(place, QSizeF(width, mFont.Height())), look.back);
    if (style.Has(Attribute::Conceal)) return;
    if (style.Has(Attribute::Blink)) {
        mSawBlink = true;
        if (blinkOff) return;
    }
    mPainter.setPen(look.text);
    if (from < line.text.size())
        PaintText(std::string_view(line.text).substr(from, to - from), place, style);
    PaintLines(place, width, style);
}

void CellPainter::PaintText(std::string_view cells, const QPointF& place, Style style) {
    mFont.Draw(mPainter, place, cells, style.Has(Attribute::Bold), style.Has(Attribute::Italic));
}

void CellPainter::PaintLines(const QPointF& place, qreal width, Style style) {
    const qreal thick = mFont.LineWidth();
    const QColor colour = mPainter.pen().color();
    const auto line = [&](qreal top) {
        mPainter.fillRect(QRectF(place.x(), place.y() + top, width, thick), colour);
    };
    const qreal below = std::min(mFont.Ascent() + thick, mFont.Height() - thick);
    if (style.Has(Attribute::Underline)) line(below);
    if (style.Has(Attribute::DoubleUnderline)) {
        line(std::min(below, mFont.Height() - 3 * thick));
        line(std::min(below + 2 * thick, mFont.Height() - thick));
    }
    if (style.Has(Attribute::Strike)) line(mFont.Ascent() * 0.65);
    if (style.Has(Attribute::Overline)) line(0);
}

void CellPainter::PaintInverted(const TerminalLine& line, const QPointF& at, std::size_t column) {
    const Style style = Stretches(line).At(column, column + 1).style;
    const Look look = LookOf(style, false);
    const QPointF place(at.x() + static_cast<qreal>(column) * mFont.Width(), at.y());
    mPainter.fillRect(QRectF(place, QSizeF(mFont.Width(), mFont.Height())), look.text);
    if (column >= line.text.size() || style.Has(Attribute::Conceal)) return;
    mPainter.setPen(look.back);
    PaintText(std::string_view(line.text).substr(column, 1), place, style);
}

} // namespace qncomm
