#pragma once

#include <QObject>
#include <QPointer>
#include <QToolButton>

#include <vector>

namespace qncomm {

/// Makes a row of buttons one stop for the Tab key; the arrow keys, Home and End go from button to
/// button. What is hidden or disabled is left out.
class RovingFocus : public QObject {
  public:
    using QObject::QObject;

    /// Adds a button at the end of the row. It may be deleted before the row is.
    void Add(QToolButton& button);

    /// Takes the arrow keys, Home and End of the row's buttons.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool Move(QToolButton& from, int key);
    void MakeStop(QToolButton& button);
    void FindStop();

    std::vector<QPointer<QToolButton>> mButtons;
    QPointer<QToolButton> mStop;
};

} // namespace qncomm
