#pragma once

#include "common/ControlModels.h"
#include "common/FileDialog.h"
#include "common/MacroRecord.h"
#include "common/RegSettings.h"
#include "dialogs/FormModel.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace qncomm {

/// The panel of one function key.
struct FunctionKeyPanel : ControlModel {
    LabelModel lblALT;         ///< which key the panel is for
    ListModel cmbAlt;          ///< positions and values are FunctionKeyKind
    TextBoxModel txtAlt;       ///< the text to send, or a path
    ButtonModel cmdAlt{"..."}; ///< browses; hidden for a text
};

/// The modal dialog in which the user defines what the eight function keys do. It reads and writes
/// the MacroRecord of each key in the settings store.
class frmFunctionKeysSetup : public FormModel {
  public:
    /// How many function keys there are.
    static constexpr std::size_t KeyCount = FunctionKeys.size();

    /// Loads the form. Without a store it is empty, and Ok raises 91. The file dialogs must
    /// outlive it.
    frmFunctionKeysSetup(std::shared_ptr<qncomm::RegSettings> settings, FileDialogs& files);

    /// The store that the form was made with; may be null.
    const std::shared_ptr<qncomm::RegSettings>& RegSettings() const { return mRegSettings; }

    /// A tab for each key.
    TabStripModel SSTab1{std::vector<std::string>(KeyCount)};
    std::array<FunctionKeyPanel, KeyCount> pic1; ///< only the current tab's is visible
    /// Writes all keys and closes; closes without writing.
    std::array<ButtonModel, 2> Command1{ButtonModel("&Ok"), ButtonModel("&Cancel")};

    /// A key goes down in the form: its code and the keys held (1 Shift, 2 Ctrl, 4 Alt). With Ctrl
    /// held in a text macro, A to Z and the codes up to 96 insert the name of a control character;
    /// both arguments return 0 then and the key goes no further.
    void Form_KeyDown(std::int16_t& iKeyCode, std::int16_t& iShift);

  private:
    void LoadPanel(std::size_t index);
    void SSTab1_Click(std::size_t formerTab);
    void cmbAlt_Click(FunctionKeyPanel& panel);
    void cmdAlt_Click(FunctionKeyPanel& panel);
    void Ok_Click();

    std::shared_ptr<qncomm::RegSettings> mRegSettings;
    FileDialogs& mFiles;
};

} // namespace qncomm
