#pragma once

#include "common/ControlModels.h"
#include "dialogs/FormModel.h"
#include "dialogs/FormWindows.h"
#include "link/clsDataLink.h"

#include <array>
#include <cstdint>

namespace qncomm {

/// The modal dialog in which the user picks the serial port and its line settings and may search
/// for the printer. OK writes the choice into the link and saves it; the DSR box and the search act
/// on the link at once, whatever closes the dialog.
class frmCommSettings : public FormModel {
  public:
    /// Loads the form from the link, which must outlive it.
    explicit frmCommSettings(clsDataLink& link);

    /// Shows the form modally. 1 when the user accepted the settings, 2 otherwise.
    std::int16_t ShowMe(FormWindows& windows);

    /// Puts the link's current values into the controls. A list without an entry for its value
    /// keeps its selection; OK is enabled only when the configured port is listed.
    void ShowCurrentSettings();

    /// The caption around the line's settings.
    const LabelModel Frame2{"Settings"};
    /// The captions of the six lists below, in their order of number.
    const std::array<LabelModel, 6> Label1{LabelModel("Port:"),     LabelModel("Baudrate:"),
                                           LabelModel("Databits:"), LabelModel("Parity:"),
                                           LabelModel("Stopbits:"), LabelModel("Flowcontrol:")};
    ListModel cmbPort;        ///< the usable ports
    ListModel cmbBaudrate;    ///< baud
    ListModel cmbDatabits;    ///< data bits of a character
    ListModel cmbParity;      ///< the values are the codes of the letters
    ListModel cmbStopbits;    ///< stop bits of a character
    ListModel cmbFlowcontrol; ///< the values of enumFlowControl
    /// The caption around the search's settings.
    const LabelModel Frame1{"AutoConnect Settings"};
    /// The link takes a port for one without a printer while its DSR line is not held. Acts on the
    /// link at once.
    CheckBoxModel chkDSRDetect{"Use DSR-line for fast printer detection."};
    /// Kept in the settings; the search does not read it and stays on its port.
    CheckBoxModel chkSearchAllPorts{"Search all serial ports."};
    /// Kept in the settings. Once it or chkAutoConnect has been clicked, the search is offered only
    /// while one of the two is checked.
    CheckBoxModel chkUseHighestBaudrate{"Select highest availible baudrate."};
    /// Kept in the settings; see chkUseHighestBaudrate.
    CheckBoxModel chkAutoConnect{"Automatic run AutoConnect"};
    ButtonModel cmdAutoConnect{"Run &AutoConnect"}; ///< searches for the printer now
    ButtonModel cmdOK{"&OK"};                       ///< takes the choice over and saves it
    ButtonModel cmdCancel{"&Cancel"};               ///< leaves the line's settings as they were

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
