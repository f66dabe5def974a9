#pragma once

#include "console/ConsoleAsker.h"
#include "console/StatusLine.h"
#include "dialogs/FormWindows.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace qncomm {

/// The forms at a console. There is no place for a dialog of many fields: the settings and the
/// function keys tell what to do instead. The binary transfer asks for its file alone; the reboot
/// wait is a status line that creeps forward.
class ConsoleForms final : public FormWindows {
  public:
    /// Both outlive the object and the windows that it shows.
    ConsoleForms(ConsoleAsker& asker, StatusLine& status) : mAsker(asker), mStatus(status) {}

    /// The protocol (a BinaryProtocol) of the transfers from now on; without it they have
    /// the one that the form proposes.
    void SetProtocol(std::int16_t iProtocol) { mProtocol = iProtocol; }

    void ShowModal(frmCommSettings& form) override;
    void ShowModal(frmFunctionKeysSetup& form) override;
    void ShowModal(frmBinaryTransfer& form) override;
    std::unique_ptr<ShownWindow> Show(frmWaitForReboot& form) override;

  private:
    ConsoleAsker& mAsker;
    StatusLine& mStatus;
    std::optional<std::int16_t> mProtocol;
};

} // namespace qncomm
