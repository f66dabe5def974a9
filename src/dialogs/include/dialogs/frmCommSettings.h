#pragma once

#include "common/ControlModels.h"
#include "dialogs/FormModel.h"
#include "dialogs/FormWindows.h"
#include "link/clsDataLink.h"

#include <array>
#include <cstdint>

namespace qncomm {

/// The modal dialog in which the person picks the serial port and its line settings and may search
/// for the printer. OK writes the choice into the link and saves it; the DSR box and the search act
/// on the link at once, whatever closes the dialog.
class frmCommSettings : public FormModel {
  public:
    /// Loads the form from the link, which outlives it.
    explicit frmCommSettings(clsDataLink& link);

    /// Shows the form modally. 1 when the person accepted the settings, 2 otherwise.
    std::int16_t ShowMe(FormWindows& windows);

    /// Puts the link's current values into the controls. A list without an entry for its value
    /// keeps its selection; OK is enabled only when the configured port is listed.
    void ShowCurrentSettings();

    const LabelModel Frame2{"Settings"};
    const std::array<LabelModel, 6> Label1{LabelModel("Port:"),     LabelModel("Baudrate:"),
                                           LabelModel("Databits:"), LabelModel("Parity:"),
                                           LabelModel("Stopbits:"), LabelModel("Flowcontrol:")};
    ListModel cmbPort;     ///< the usable ports
    ListModel cmbBaudrate; ///< baud
    ListModel cmbDatabits;
    ListModel cmbParity; ///< the values are the codes of the letters
    ListModel cmbStopbits;
    ListModel cmbFlowcontrol; ///< the values of enumFlowControl
    const LabelModel Frame1{"AutoConnect Settings"};
    CheckBoxModel chkDSRDetect{"Use DSR-line for fast printer detection."};
    CheckBoxModel chkSearchAllPorts{"Search all serial ports."};
    CheckBoxModel chkUseHighestBaudrate{"Select highest availible baudrate."};
    CheckBoxModel chkAutoConnect{"Automatic run AutoConnect"};
    ButtonModel cmdAutoConnect{"Run &AutoConnect"};
    ButtonModel cmdOK{"&OK"};
    ButtonModel cmdCancel{"&Cancel"};

  private:
    struct SearchOption;

    void Form_Load();
    void cmbPort_Click();
    void AutoConnectOption_Click();
    void cmdAutoConnect_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    bool QueryUnload(UnloadMode mode) override;

    bool Search(std::int16_t port);
    void ShowButtons();
    std::array<SearchOption, 3> SearchOptions();
    void LoadSearchOptions();
    void SaveSearchOptions();

    clsDataLink& mLink;
    bool mCancelled = false;
    bool mOptionsChanged = false;
    bool mSearchAllPortsAtLoad = false;
    bool mPortChosen = false;   ///< OK makes sense
    bool mSearchOffered = true; ///< the search makes sense
    bool mSearching = false;
};

} // namespace qncomm
