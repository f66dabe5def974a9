#pragma once

#include "dialogs/FormWindows.h"

#include <functional>
#include <memory>

namespace qncomm::testing {

/// Windows that do with a form what the test says; without a word the person uses the close box.
class ScriptedForms : public FormWindows {
  public:
    void ShowModal(frmCommSettings& form) override { Show(mOnCommSettings, form); }
    void ShowModal(frmFunctionKeysSetup& form) override { Show(mOnFunctionKeys, form); }
    void ShowModal(frmBinaryTransfer& form) override { Show(mOnBinaryTransfer, form); }

    std::unique_ptr<ShownWindow> Show(frmWaitForReboot& form) override {
        mReboot = &form;
        return std::make_unique<Window>(mReboot);
    }

    std::function<void(frmCommSettings&)> mOnCommSettings;
    std::function<void(frmFunctionKeysSetup&)> mOnFunctionKeys;
    std::function<void(frmBinaryTransfer&)> mOnBinaryTransfer;
    int mShown = 0;
    frmWaitForReboot* mReboot = nullptr; ///< while its window is shown

  private:
    struct Window : ShownWindow {
        explicit Window(frmWaitForReboot*& form) : mForm(form) {}
        ~Window() override { mForm = nullptr; }
        Window(const Window&) = delete;
        Window& operator=(const Window&) = delete;
        frmWaitForReboot*& mForm;
    };

    template <class Form>
    void Show(const std::function<void(Form&)>& act, Form& form) {
        ++mShown;
        if (act) act(form);
    }
};

} // namespace qncomm::testing
