#pragma once

#include "FormDialog.h"
#include "dialogs/frmCommSettings.h"

namespace qncomm {

/// The serial port setup.
class CommSettingsDialog : public FormDialog {
  public:
    CommSettingsDialog(frmCommSettings& form, Desktop& desktop, QWidget* parent);

  private:
    QWidget* SettingsFrame(frmCommSettings& form);
    QWidget* SearchFrame(frmCommSettings& form);
    QWidget* Buttons(frmCommSettings& form);
};

} // namespace qncomm
