#pragma once

#include "FormDialog.h"
#include "dialogs/frmBinaryTransfer.h"

namespace qncomm {

/// The choice of protocol and file for a binary transfer.
class BinaryTransferDialog : public FormDialog {
  public:
    BinaryTransferDialog(frmBinaryTransfer& form, Desktop& desktop, QWidget* parent);

  private:
    QWidget* Buttons(frmBinaryTransfer& form);
};

} // namespace qncomm
