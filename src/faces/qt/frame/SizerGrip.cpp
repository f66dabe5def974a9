#include "SizerGrip.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyleOption>

#include <utility>

namespace qncomm {
namespace {

constexpr int DotCount = 5;
constexpr int DotSize = 2;
constexpr int DotPitch = 6;

} // namespace

SizerGrip::SizerGrip(QWidget* parent) : QWidget(parent) {
    setCursor(Qt::SplitVCursor);
    setAccessibleName(tr("Height of the terminal"));
    setToolTip(tr("Drag to change the height"));
}

void SizerGrip::mousePressEvent(QMouseEvent* event) {
    mHeld = event->button() == Qt::LeftButton;
    event->setAccepted(mHeld);
}

void SizerGrip::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !std::exchange(mHeld, false)) return;
    emit released(event->position().toPoint().y());
}

void SizerGrip::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QColor colour = palette().color(QPalette::HighlightedText);
    colour.setAlphaF(0.7F);
    const int left = (width() - DotCount * DotPitch) / 2;
    for (int dot = 0; dot < DotCount; ++dot)
        painter.fillRect(left + dot * DotPitch, 1, DotSize, DotSize, colour);
}

} // namespace qncomm
