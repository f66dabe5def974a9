#include "ElidedLabel.h"

#include "qt/ShownText.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>

namespace qncomm {
namespace {

constexpr int LeastCharacters = 12;
constexpr int PreferredCharacters = 48;

} // namespace

ElidedLabel::ElidedLabel(QWidget* parent, Qt::TextElideMode cut) : QLabel(parent), mCut(cut) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * LeastCharacters, QLabel::sizeHint().height()};
}

QSize ElidedLabel::sizeHint() const {
    const QSize full = QLabel::sizeHint();
    return {std::min(full.width(), fontMetrics().averageCharWidth() * PreferredCharacters),
            full.height()};
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QLabel::event(event);
    const bool cut = fontMetrics().horizontalAdvance(text()) > contentsRect().width();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                       cut ? TextOfATip(text()) : QString(), this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), mCut, contentsRect().width());
    style()->drawItemText(&painter, contentsRect(), Qt::AlignLeading | Qt::AlignVCenter, palette(),
                          isEnabled(), shown, foregroundRole());
}

} // namespace qncomm
