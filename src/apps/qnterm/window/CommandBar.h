#pragma once

#include "qt/RovingFocus.h"

#include <QKeySequence>
#include <QString>
#include <QToolBar>

class QAction;

namespace qnterm {

/// The commands of a part of the window as a row of buttons. Their keys work wherever the part has
/// the keys.
class CommandBar final : public QToolBar {
    Q_OBJECT

  public:
    /// The part outlives the bar.
    explicit CommandBar(QWidget& part);

    /// Adds a button with the picture of that name; the keys are told with the tip.
    QAction* Add(const char* sIcon, const QString& sText, const QString& sTip,
                 const QKeySequence& keys = {});

  private:
    QWidget& mPart;
    qncomm::RovingFocus mRow;
};

} // namespace qnterm
