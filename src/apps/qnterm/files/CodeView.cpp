#include "CodeView.h"

#include <QEvent>
#include <QFontDatabase>
#include <QPainter>
#include <QTextBlock>

#include <algorithm>

namespace qnterm {
namespace {

constexpr int Gap = 6; // pixels on either side of a number

} // namespace

/// The strip with the numbers.
class CodeView::Margin final : public QWidget {
  public:
    explicit Margin(CodeView& view) : QWidget(&view), mView(view) {}
    QSize sizeHint() const override { return {mView.MarginWidth(), 0}; }

  protected:
    void paintEvent(QPaintEvent* event) override { mView.PaintMargin(event); }

  private:
    CodeView& mView;
};

CodeView::CodeView(QWidget* parent) : QPlainTextEdit(parent), mMargin(new Margin(*this)) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setLineWrapMode(NoWrap);
    setTabChangesFocus(true);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &CodeView::LayOut);
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        if (dy != 0)
            mMargin->scroll(0, dy);
        else
            mMargin->update(0, rect.y(), mMargin->width(), rect.height());
    });
    connect(this, &QPlainTextEdit::textChanged, this, [this] { Mark(0); });
    LayOut();
}

void CodeView::GoToLine(int iLine) {
    const QTextBlock block = document()->findBlockByNumber(iLine - 1);
    if (iLine < 1 || !block.isValid()) {
        Mark(0);
        return;
    }
    setTextCursor(QTextCursor(block));
    centerCursor();
    Mark(iLine);
}

void CodeView::Mark(int line) {
    mMarked = line;
    QList<QTextEdit::ExtraSelection> marks;
    if (line > 0) {
        QTextEdit::ExtraSelection mark;
        QColor color = palette().color(QPalette::Highlight);
        color.setAlphaF(0.25F);
        mark.format.setBackground(color);
        mark.format.setProperty(QTextFormat::FullWidthSelection, true);
        mark.cursor = textCursor();
        mark.cursor.clearSelection();
        marks.append(mark);
    }
    setExtraSelections(marks);
}

int CodeView::MarginWidth() const {
    constexpr int leastDigits = 3;
    const auto digits = std::max<qsizetype>(leastDigits, QString::number(blockCount()).size());
    return 2 * Gap + fontMetrics().horizontalAdvance(QLatin1Char('9')) * static_cast<int>(digits);
}

void CodeView::LayOut() {
    setViewportMargins(MarginWidth(), 0, 0, 0);
    const QRect inside = contentsRect();
    mMargin->setGeometry(inside.left(), inside.top(), MarginWidth(), inside.height());
    mMargin->update();
}

void CodeView::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    LayOut();
}

void CodeView::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange && mMargin != nullptr) LayOut();
}

void CodeView::PaintMargin(QPaintEvent* event) {
    QPainter painter(mMargin);
    painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    QTextBlock block = firstVisibleBlock();
    qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
    while (block.isValid() && top <= event->rect().bottom()) {
        const qreal height = blockBoundingRect(block).height();
        painter.drawText(QRectF(0, top, mMargin->width() - Gap, height),
                         Qt::AlignRight | Qt::AlignTop, QString::number(block.blockNumber() + 1));
        top += height;
        block = block.next();
    }
}

} // namespace qnterm
