#pragma once

#include "assembly/TerminalViewport.h"
#include "common/Desktop.h"
#include "common/RegSettings.h"
#include "qncomm/qncomm.h"
#include "trace/TraceSink.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qncomm::bindings {

// What the control asks of its surroundings, as functions of a host.

/// Boxes that a function of the host shows, or that answer themselves.
class HostBoxes final : public Desktop {
  public:
    /// The function from now on; it may be null.
    void Set(qn_box_handler handler, void* user) { mHandler = handler, mUser = user; }

    MsgBoxResult ShowMsgBox(const MsgBox& box) override;
    void Log(std::string_view /*sLine*/) override {}

  private:
    qn_box_handler mHandler = nullptr;
    void* mUser = nullptr;
};

/// A trace that a function of the host receives.
class HostTrace final : public TraceSink {
  public:
    /// sealed is set while the function runs; it must outlive the object.
    explicit HostTrace(bool& sealed) : mSealed(sealed) {}
    /// The function from now on; it may be null.
    void Set(qn_trace_handler handler, void* user) { mHandler = handler, mUser = user; }

    void Record(std::int64_t lMs, TraceKind kind, std::string_view sBytes) override;

  private:
    bool& mSealed;
    qn_trace_handler mHandler = nullptr;
    void* mUser = nullptr;
};

/// The place where a host shows the terminal.
class HostScreen final : public TerminalScreen {
  public:
    /// The function from now on; it may be null.
    void Set(qn_screen_handler handler, void* user) { mHandler = handler, mUser = user; }

    void SetFocus() override {}
    void Move(const Rectangle& /*place*/) override {}
    void Changed() override {
        if (mHandler != nullptr) mHandler(mUser);
    }
    void CaptureFailed(const std::string& /*sPath*/, const std::string& /*sReason*/) override {}

  private:
    qn_screen_handler mHandler = nullptr;
    void* mUser = nullptr;
};

/// What is called for a signal.
struct SignalCall {
    qn_signal_handler handler = nullptr; ///< may be null
    void* user = nullptr;
};

/// A store by functions of the host.
class HostSettings final : public RegSettings {
  public:
    /// Neither function is null.
    HostSettings(const qn_store_functions& functions, void* user)
        : mFunctions(functions), mUser(user) {}

    std::string ReadValue(std::string_view sSection, std::string_view sKey,
                          std::string_view sDefault) const override;
    void WriteValue(std::string_view sSection, std::string_view sKey,
                    std::string_view sValue) override;

  private:
    qn_store_functions mFunctions;
    void* mUser;
};

} // namespace qncomm::bindings
