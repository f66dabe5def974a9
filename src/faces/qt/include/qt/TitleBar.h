#pragma once

#include "control/TitleModel.h"
#include "qt/ActionGuard.h"

#include <QWidget>

class QLabel;
class QToolButton;

namespace qncomm {

/// The bar with the control's caption and its close button, in the colours that the model names.
class TitleBar : public QWidget {
    Q_OBJECT

  public:
    /// Models and guard must outlive the bar.
    TitleBar(TitleModel& title, ButtonModel& close, const ActionGuard& guard,
             QWidget* parent = nullptr);

  protected:
    /// Follows a change of the desktop's colours, font or enabled state.
    void changeEvent(QEvent* event) override;
    /// A press on the bar counts as a click on the control.
    void mousePressEvent(QMouseEvent* event) override;

  private:
    void Show();

    TitleModel& mTitle;
    const ActionGuard& mGuard;
    QLabel* mCaption;
    QToolButton* mClose;
    bool mShowing = false;
    Subscription mChanges;
};

} // namespace qncomm
