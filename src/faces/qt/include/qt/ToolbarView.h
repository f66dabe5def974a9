#pragma once

#include "control/ToolbarModel.h"
#include "qt/ActionGuard.h"
#include "qt/RovingFocus.h"

#include <QToolBar>

#include <map>
#include <string>

namespace qncomm {

/// The toolbar: a button with a picture for each of the model's, with its name for a screen reader
/// and its tip. It is one stop for the Tab key; the arrow keys, Home and End go from button to
/// button. What has no room is in a menu at its end.
class ToolbarView : public QToolBar {
    Q_OBJECT

  public:
    /// Model and guard must outlive the view.
    ToolbarView(ToolbarModel& model, const ActionGuard& guard, QWidget* parent = nullptr);

    /// The button of that key, nullptr for none.
    QToolButton* ButtonOf(const std::string& sKey) const;

  protected:
    /// Follows a change of the desktop's colours, font or enabled state.
    void changeEvent(QEvent* event) override;

  private:
    void AddButton(const ToolbarButton& button);
    void Click(const std::string& key);
    void Show();
    void ShowPictures();

    ToolbarModel& mModel;
    const ActionGuard& mGuard;
    std::map<std::string, QAction*> mActions;
    RovingFocus mRow;
    Subscription mChanges;
};

} // namespace qncomm
