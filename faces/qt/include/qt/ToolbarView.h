#pragma once

#include "control/ToolbarModel.h"
#include "qt/ActionGuard.h"

#include <QToolBar>

#include <map>
#include <string>

class QToolButton;

namespace qncomm {

/// The toolbar: a button with a picture for each of the model's, with its name for a screen reader
/// and its tip. It is one stop for the Tab key; the arrow keys, Home and End go from button to
/// button. What has no room is in a menu at its end.
class ToolbarView : public QToolBar {
    Q_OBJECT

  public:
    /// Model and guard outlive the view.
    ToolbarView(ToolbarModel& model, const ActionGuard& guard, QWidget* parent = nullptr);

    /// The button of that key, nullptr for none.
    QToolButton* ButtonOf(const std::string& sKey) const;

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void AddButton(const ToolbarButton& button);
    void Click(const std::string& key);
    void Show();
    void ShowPictures();
    bool MoveFocus(QToolButton& from, int key);
    void MakeTabStop(QToolButton& button);

    ToolbarModel& mModel;
    const ActionGuard& mGuard;
    std::map<std::string, QAction*> mActions;
    Subscription mChanges;
};

} // namespace qncomm
