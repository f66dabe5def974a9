#pragma once

#include "FormDialog.h"
#include "dialogs/frmFunctionKeysSetup.h"

#include <cstddef>

namespace qncomm {

/// The function keys setup. Keys that the form takes for itself never reach the fields.
class FunctionKeysDialog : public FormDialog {
  public:
    FunctionKeysDialog(frmFunctionKeysSetup& form, Desktop& desktop, QWidget* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget* PageOf(std::size_t index);
    QWidget* Buttons();

    frmFunctionKeysSetup& mKeys;
};

} // namespace qncomm
