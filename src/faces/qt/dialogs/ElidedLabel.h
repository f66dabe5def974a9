#pragma once

#include <QLabel>

namespace qncomm {

/// A label that cuts a long text, a path best in its middle, rather than widening its window. The
/// tool tip has it all.
class ElidedLabel : public QLabel {
  public:
    explicit ElidedLabel(QWidget* parent, Qt::TextElideMode cut = Qt::ElideMiddle);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    Qt::TextElideMode mCut;
};

} // namespace qncomm
