#pragma once

#include "console/ConsoleAsker.h"
#include "console/StatusLine.h"
#include "dialogs/FormTable.h"
#include "dialogs/FormWindows.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace qncomm {

class frmBinaryTransfer;

/// The forms at a console. There is no room for a dialog of many fields: such a form only says what
/// to do instead. The binary transfer asks for its file alone; the reboot wait is a status
/// line that creeps forward.
class ConsoleForms final : public FormWindows {
  public:
    /// Both must outlive the object and the windows that it shows.
    ConsoleForms(ConsoleAsker& asker, StatusLine& status);
    ConsoleForms(const ConsoleForms&) = delete;
    ConsoleForms& operator=(const ConsoleForms&) = delete;

    /// The protocol (a BinaryProtocol) of the transfers from now on; without it they have
    /// the one that the form proposes.
    void SetProtocol(std::int16_t iProtocol) { mProtocol = iProtocol; }

    void ShowModal(FormModel& form) override;
    std::unique_ptr<ShownWindow> Show(FormModel& form) override;

  private:
    void Decline(FormModel& form, const std::string& instead);
    void AskForFile(frmBinaryTransfer& form);

    ConsoleAsker& mAsker;
    StatusLine& mStatus;
    std::optional<std::int16_t> mProtocol;
    FormTable<void> mModal;
    FormTable<std::unique_ptr<ShownWindow>> mModeless;
};

} // namespace qncomm
