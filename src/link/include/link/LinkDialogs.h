#pragma once

#include <cstdint>
#include <memory>

namespace qncomm {

class clsDataLink;

/// A window that is shown as long as the object lives.
class ShownWindow {
  public:
    virtual ~ShownWindow() = default;
};

/// What the link needs shown. A face or a host implements it.
class LinkDialogs {
  public:
    virtual ~LinkDialogs() = default;

    /// Shows the serial port setup dialog for the link, modally. 1 when the user accepted the
    /// settings, 2 otherwise.
    virtual std::int16_t ShowCommSettings(clsDataLink& link) = 0;

    /// Shows the reboot wait window without blocking. May return nothing when there is no place to
    /// show it.
    virtual std::unique_ptr<ShownWindow> ShowWaitForReboot() = 0;
};

} // namespace qncomm
