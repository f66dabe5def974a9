#pragma once

#include "dialogs/FormTable.h"
#include "dialogs/FormWindows.h"

#include <functional>
#include <memory>
#include <utility>

namespace qncomm::testing {

/// Windows that do with a form what the test says; without a word the user uses the close box.
class ScriptedForms : public FormWindows {
  public:
    /// What the user does with forms of that class from now on.
    template <class Form>
    void On(std::function<void(Form&)> act) {
        mActs.Add<Form>([act = std::move(act)](Form& form) {
            if (act) act(form);
        });
    }

    void ShowModal(FormModel& form) override {
        ++mShown;
        if (const auto* act = mActs.Find(form)) (*act)(form);
    }
    std::unique_ptr<ShownWindow> Show(FormModel& form) override {
        return std::make_unique<Window>(mBeside, form);
    }

    /// The form of that class whose modeless window is shown, null when there is none.
    template <class Form>
    Form* Shown() const {
        return dynamic_cast<Form*>(mBeside);
    }

    int mShown = 0; ///< modal forms so far

  private:
    struct Window : ShownWindow {
        Window(FormModel*& place, FormModel& form) : mPlace(place) { mPlace = &form; }
        ~Window() override { mPlace = nullptr; }
        Window(const Window&) = delete;
        Window& operator=(const Window&) = delete;
        FormModel*& mPlace;
    };

    FormTable<void> mActs;
    FormModel* mBeside = nullptr;
};

} // namespace qncomm::testing
