#pragma once

#include "common/Event.h"
#include "qt/ActionGuard.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <utility>

namespace qncomm {

/// What binds a model to a widget: lives as long as the widget, whose child it is.
template <class Model, class Widget>
class Binder : public QObject {
  public:
    Binder(Model& model, Widget& widget, const ActionGuard* guard = nullptr)
        : QObject(&widget), mModel(model), mWidget(widget), mGuard(guard) {}

    /// Shows the model now and whenever it changes.
    void Start() {
        mChanges = mModel.Changed.Connect([this] { ShowAll(); });
        ShowAll();
    }

  protected:
    virtual void Show() = 0;

    void ShowAll() {
        mWidget.setEnabled(mModel.Enabled());
        if (mHidden == mModel.Visible()) {
            mHidden = !mModel.Visible();
            mWidget.setVisible(!mHidden);
        }
        Show();
    }

    /// Hands in what the user did, then shows what the model made of it.
    void Act(const std::function<void()>& action) {
        const QPointer<QObject> self(this);
        mGuard->Run(action);
        if (self) ShowAll();
    }

    Model& mModel;
    Widget& mWidget;

  private:
    const ActionGuard* mGuard;
    bool mHidden = false;
    Subscription mChanges;
};

/// The binder belongs to the widget.
template <class Made, class... Args>
void StartBinder(Args&&... args) {
    (new Made(std::forward<Args>(args)...))->Start();
}

} // namespace qncomm
