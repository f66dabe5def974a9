// Draws the visible rows, the cursor and the placeholder of design time.

#include "TerminalViewParts.h"
#include "control/ViewportTerminal.h"
#include "qt/Colours.h"

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QStyleHints>

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

constexpr int LeastBlinkMs = 530; // less than two wakes a second
constexpr qreal BellStrength = 0.25;

/// A frame that stays inside: a drawn line would reach half its width beyond.
std::array<QRect, 4> EdgesOf(const QRect& cell) {
    return {QRect(cell.left(), cell.top(), cell.width(), 1),
            QRect(cell.left(), cell.bottom(), cell.width(), 1),
            QRect(cell.left(), cell.top(), 1, cell.height()),
            QRect(cell.right(), cell.top(), 1, cell.height())};
}

} // namespace

void TerminalView::paintEvent(QPaintEvent* event) {
    Parts& p = *mParts;
    QPainter painter(viewport());
    if (p.shown.displayState == DisplayOff) {
        painter.fillRect(event->rect(), palette().window());
        return;
    }
    if (p.shown.displayState == DisplayDesign) {
        PaintPlaceholder(painter);
        return;
    }
    QElapsedTimer cost;
    cost.start();
    if (event->region().contains(viewport()->rect())) p.sawBlink = false;
    for (const QRect& exposed : event->region())
        PaintRows(painter, exposed);
    PaintCursor(painter);
    if (p.bellTimer.isActive()) {
        painter.setOpacity(BellStrength);
        painter.fillRect(viewport()->rect(), p.colours.text);
    }
    p.frameCostNs += cost.nsecsElapsed();
}

void TerminalView::PaintRows(QPainter& painter, const QRect& exposed) {
    Parts& p = *mParts;
    painter.fillRect(exposed, p.colours.back);
    const qreal height = p.font.Height();
    const auto first = static_cast<int>(std::max(0, exposed.top() - Parts::PadTop) / height);
    const auto last = static_cast<int>(std::max(0, exposed.bottom() - Parts::PadTop) / height);
    const auto across = static_cast<std::size_t>(p.scroll.Columns()) + 1;
    const std::size_t width = p.text.Width();
    const std::size_t left = p.scroll.Left();
    CellPainter cells(painter, p.font, p.colours);
    painter.setClipRect(exposed);
    for (int row = first; row <= last; ++row) {
        const std::uint64_t number = p.scroll.Top() + static_cast<std::uint64_t>(row);
        if (number >= p.text.End()) break;
        const QPointF at(Parts::PadLeft - static_cast<qreal>(left) * p.font.Width(),
                         Parts::PadTop + row * height);
        cells.Paint(
            p.text.Line(number), at,
            {left, std::min(left + across, width), p.selection.On(number, width), !p.cursorOn});
    }
    p.sawBlink = p.sawBlink || cells.SawBlink();
    painter.setClipping(false);
}

void TerminalView::PaintCursor(QPainter& painter) {
    Parts& p = *mParts;
    const QRect cell = CursorRect();
    const std::size_t left = p.scroll.Left();
    if (!p.preedit.isEmpty()) {
        painter.setFont(p.font.Font());
        const QRect place(cell.topLeft(), painter.fontMetrics().size(0, p.preedit));
        painter.fillRect(place, p.colours.back);
        painter.setPen(p.colours.text);
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, p.preedit);
        painter.drawLine(place.bottomLeft(), place.bottomRight());
        return;
    }
    if (!p.grid.CursorVisible() || p.text.CursorColumn() < left) return;
    if (!hasFocus()) {
        for (const QRect& edge : EdgesOf(cell))
            painter.fillRect(edge, p.colours.text);
    } else if (p.cursorOn) {
        const auto row = static_cast<std::int64_t>(p.text.CursorLine() - p.scroll.Top());
        const QPointF at(Parts::PadLeft - static_cast<qreal>(left) * p.font.Width(),
                         Parts::PadTop + static_cast<qreal>(row) * p.font.Height());
        CellPainter(painter, p.font, p.colours)
            .PaintInverted(p.text.Line(p.text.CursorLine()), at, p.text.CursorColumn());
    }
}

/// On a form that is being designed there is no terminal yet, only its looks.
void TerminalView::PaintPlaceholder(QPainter& painter) {
    const Parts& p = *mParts;
    painter.fillRect(viewport()->rect(), p.colours.back);
    painter.setPen(p.colours.text);
    painter.setFont(p.font.Font());
    painter.drawText(viewport()->rect().adjusted(Parts::PadLeft, Parts::PadTop, 0, 0),
                     Qt::AlignLeft | Qt::AlignTop, tr("Terminal"));
}

/// The cursor blinks where keys go to, and rests elsewhere.
void TerminalView::RestartBlink() {
    Parts& p = *mParts;
    p.cursorOn = true;
    const int flash = QGuiApplication::styleHints()->cursorFlashTime();
    const bool blinks = p.grid.CursorVisible() || p.sawBlink;
    if (hasFocus() && isVisible() && flash > 0 && blinks)
        p.blinkTimer.start(std::max(LeastBlinkMs, flash / 2), Qt::PreciseTimer, this);
    else
        p.blinkTimer.stop();
    viewport()->update(CursorRect());
}

void TerminalView::Blink() {
    Parts& p = *mParts;
    p.cursorOn = !p.cursorOn;
    // At once: an update would wake the loop a second time.
    if (p.sawBlink)
        viewport()->repaint();
    else if (p.scroll.Shows(p.text.CursorLine()))
        viewport()->repaint(CursorRect());
}

} // namespace qncomm
