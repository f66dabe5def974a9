#pragma once

#include <QWidget>

namespace qncomm {

/// The strip along the upper edge by which the user makes a docked control higher or lower. It
/// acts when it is released.
class SizerGrip final : public QWidget {
    Q_OBJECT

  public:
    static constexpr int Thickness = 5;

    explicit SizerGrip(QWidget* parent);

  signals:
    /// How many pixels below its place it was released; negative above.
    void released(int lY);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    bool mHeld = false;
};

} // namespace qncomm
