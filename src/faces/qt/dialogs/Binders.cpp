#include "qt/Binders.h"

#include "Binder.h"
#include "qt/Charset.h"
#include "qt/Mnemonics.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QScopedValueRollback>
#include <QTabBar>

#include <vector>

namespace qncomm {
namespace {

class LabelBinder : public Binder<LabelModel, QLabel> {
  public:
    using Binder::Binder;

  private:
    void Show() override { mWidget.setText(CaptionWithKey(mWidget, FromHost(mModel.Caption()))); }
};

class ButtonBinder : public Binder<ButtonModel, QAbstractButton> {
  public:
    ButtonBinder(ButtonModel& model, QAbstractButton& button, const ActionGuard& guard)
        : Binder(model, button, &guard) {
        connect(&button, &QAbstractButton::clicked, this, [this] {
            ButtonModel& pressed = mModel;
            Act([&pressed] { pressed.Click(); });
        });
    }

  private:
    void Show() override {
        const QString caption = CaptionWithKey(mWidget, FromHost(mModel.Caption()));
        if (mWidget.text() != caption) mWidget.setText(caption); // takes a shortcut away
    }
};

class CheckBoxBinder : public Binder<CheckBoxModel, QCheckBox> {
  public:
    CheckBoxBinder(CheckBoxModel& model, QCheckBox& box, const ActionGuard& guard)
        : Binder(model, box, &guard) {
        connect(&box, &QCheckBox::clicked, this, [this] {
            CheckBoxModel& flipped = mModel;
            Act([&flipped] { flipped.Click(); });
        });
    }

  private:
    void Show() override {
        mWidget.setText(CaptionWithKey(mWidget, FromHost(mModel.Caption())));
        mWidget.setChecked(mModel.Checked());
    }
};

class ListBinder : public Binder<ListModel, QComboBox> {
  public:
    ListBinder(ListModel& model, QComboBox& list, const ActionGuard& guard)
        : Binder(model, list, &guard) {
        connect(&list, &QComboBox::activated, this, [this](int index) {
            ListModel& picked = mModel;
            Act([&picked, index] { picked.Pick(index); });
        });
    }

  private:
    void Show() override {
        if (mShown != mModel.Entries()) {
            mShown = mModel.Entries();
            mWidget.clear();
            for (const ListModel::Entry& entry : mShown)
                mWidget.addItem(FromHost(entry.text));
        }
        mWidget.setCurrentIndex(mModel.ListIndex());
    }

    std::vector<ListModel::Entry> mShown;
};

class TabStripBinder : public Binder<TabStripModel, QTabBar> {
  public:
    TabStripBinder(TabStripModel& model, QTabBar& strip, const ActionGuard& guard)
        : Binder(model, strip, &guard) {
        connect(&strip, &QTabBar::currentChanged, this, [this](int tab) {
            if (mShowing || tab < 0) return;
            TabStripModel& turned = mModel;
            Act([&turned, tab] { turned.Pick(static_cast<std::size_t>(tab)); });
        });
    }

  private:
    void Show() override {
        const QScopedValueRollback showing(mShowing, true);
        const std::vector<std::string>& captions = mModel.Captions();
        for (int tab = 0; tab < static_cast<int>(captions.size()); ++tab) {
            if (tab == mWidget.count()) mWidget.addTab({});
            const QString caption = FromHost(captions[static_cast<std::size_t>(tab)]);
            mWidget.setTabText(tab, CaptionWithKey(mWidget, caption, tab));
        }
        mWidget.setCurrentIndex(static_cast<int>(mModel.Tab()));
    }

    bool mShowing = false;
};

class ProgressBarBinder : public Binder<ProgressBarModel, QProgressBar> {
  public:
    using Binder::Binder;

  private:
    void Show() override {
        mWidget.setRange(mModel.Min(), mModel.Max());
        mWidget.setValue(mModel.Value());
    }
};

} // namespace

void Bind(const LabelModel& model, QLabel& label) {
    label.setText(FromHost(model.Caption()));
}

void Bind(const LabelModel& model, QGroupBox& frame) {
    frame.setTitle(FromHost(model.Caption()));
}

void Bind(LabelModel& model, QLabel& label) {
    StartBinder<LabelBinder>(model, label);
}

void Bind(ButtonModel& model, QAbstractButton& button, const ActionGuard& guard) {
    StartBinder<ButtonBinder>(model, button, guard);
}

void Bind(CheckBoxModel& model, QCheckBox& box, const ActionGuard& guard) {
    StartBinder<CheckBoxBinder>(model, box, guard);
}

void Bind(ListModel& model, QComboBox& list, const ActionGuard& guard) {
    StartBinder<ListBinder>(model, list, guard);
}

void Bind(TabStripModel& model, QTabBar& strip, const ActionGuard& guard) {
    StartBinder<TabStripBinder>(model, strip, guard);
}

void Bind(ProgressBarModel& model, QProgressBar& bar) {
    StartBinder<ProgressBarBinder>(model, bar);
}

} // namespace qncomm
