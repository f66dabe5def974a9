#include "dialogs/frmCommSettings.h"

#include "common/Numbers.h"
#include "common/Pointer.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"

#include <string>
#include <utility>
#include <vector>

namespace qncomm {
namespace {

constexpr std::int16_t LastPort = 16;
constexpr std::int16_t ResultOk = 1;
constexpr std::int16_t ResultCancel = 2;
constexpr std::string_view SearchSection = "AutoConnctSettings"; // the store's spelling

using Entries = std::vector<ListModel::Entry>;

// The speeds are written with a point in every locale.
const Entries& Speeds() {
    static const Entries entries = {{"2.400 baud", 2400},    {"4.800 baud", 4800},
                                    {"9.600 baud", 9600},    {"19.200 baud", 19200},
                                    {"38.400 baud", 38400},  {"57.600 baud", 57600},
                                    {"115.200 baud", 115200}};
    return entries;
}

const Entries& Parities() {
    static const Entries entries = {
        {"None", 'N'}, {"Even", 'E'}, {"Odd", 'O'}, {"Mark", 'M'}, {"Space", 'S'}};
    return entries;
}

const Entries& FlowControls() {
    static const Entries entries = {{"None", No_Flowcontrol},
                                    {"Software (Xon/Xoff)", Software_Flowcontrol},
                                    {"Hardware (RTS/CTS)", Hardware_Flowcontrol},
                                    {"Both (Xon/Xoff+RTS/CTS)", SW_And_HW_Flowcontrol}};
    return entries;
}

Entries UsablePorts(clsDataLink& link) {
    Entries entries;
    for (std::int16_t port = 0; port <= LastPort; ++port)
        if (link.IsValidPort(port))
            entries.push_back({"com" + ToText(std::int32_t{port}) + ":", port});
    return entries;
}

std::int32_t Number(const std::string& setting) {
    return ToInt32(Val(setting));
}

/// Gives a list's selected value to a setter of the link; a list without a selection leaves its
/// setting alone.
template <class Let>
void Give(const ListModel& list, Let let) {
    if (list.HasSelection()) let(list.SelectedValue());
}

} // namespace

/// A box of the search's own settings and the key it is stored under.
struct frmCommSettings::SearchOption {
    std::string_view key;
    CheckBoxModel& box;
};

std::array<frmCommSettings::SearchOption, 3> frmCommSettings::SearchOptions() {
    return {SearchOption{"SearchAllPorts", chkSearchAllPorts},
            SearchOption{"UseHighestBaudrate", chkUseHighestBaudrate},
            SearchOption{"AutoConnect", chkAutoConnect}};
}

frmCommSettings::frmCommSettings(clsDataLink& link) : FormModel("Serial Port Setup"), mLink(link) {
    On(cmbPort.Clicked, [this] { cmbPort_Click(); });
    On(chkDSRDetect.Clicked, [this] { mLink.SetDSRDetectActive(chkDSRDetect.Checked()); });
    On(chkUseHighestBaudrate.Clicked, [this] { AutoConnectOption_Click(); });
    On(chkAutoConnect.Clicked, [this] { AutoConnectOption_Click(); });
    On(cmdAutoConnect.Clicked, [this] { cmdAutoConnect_Click(); });
    On(cmdOK.Clicked, [this] { cmdOK_Click(); });
    On(cmdCancel.Clicked, [this] { cmdCancel_Click(); });
    Form_Load();
}

std::int16_t frmCommSettings::ShowMe(FormWindows& windows) {
    windows.ShowModal(*this);
    Unload(UnloadMode::ControlMenu);
    return mCancelled ? ResultCancel : ResultOk;
}

void frmCommSettings::Form_Load() {
    const BusyPointer busy;
    cmbPort.SetEntries(UsablePorts(mLink));
    cmbBaudrate.SetEntries(Speeds());
    cmbParity.SetEntries(Parities());
    cmbDatabits.SetEntries({{"7 bits", 7}, {"8 bits", 8}});
    cmbStopbits.SetEntries({{"1 bit", 1}, {"2 bits", 2}});
    cmbFlowcontrol.SetEntries(FlowControls());
    LoadSearchOptions();
    ShowCurrentSettings();
}

void frmCommSettings::ShowCurrentSettings() {
    mPortChosen = cmbPort.SelectValue(Number(mLink.Commport()));
    cmbBaudrate.SelectValue(Number(mLink.Baudrate()));
    cmbDatabits.SelectValue(Number(mLink.Databits()));
    cmbStopbits.SelectValue(Number(mLink.Stopbits()));
    cmbFlowcontrol.SelectValue(Number(mLink.Flowcontrol()));
    cmbParity.SelectValue(mLink.Parity().empty() ? 0 : mLink.Parity().front());
    chkDSRDetect.SetChecked(mLink.DSRDetectActive());
    ShowButtons();
}

void frmCommSettings::ShowButtons() {
    cmdOK.SetEnabled(mPortChosen && !mSearching);
    cmdAutoConnect.SetEnabled(mSearchOffered && !mSearching);
}

void frmCommSettings::cmbPort_Click() {
    if (cmbPort.Entries().empty()) return;
    if (!cmbPort.HasSelection()) cmbPort.SetListIndex(0);
    if (cmbPort.SelectedValue() > 0) mPortChosen = true;
    ShowButtons();
}

void frmCommSettings::AutoConnectOption_Click() {
    mSearchOffered = chkUseHighestBaudrate.Checked() || chkAutoConnect.Checked();
    mOptionsChanged = true;
    ShowButtons();
}

void frmCommSettings::cmdAutoConnect_Click() {
    if (!cmbPort.HasSelection()) return;
    const auto port = static_cast<std::int16_t>(cmbPort.SelectedValue());
    if (!Search(port) || !IsOpen()) return;
    mLink.SetCommport(ToText(std::int32_t{port}));
    mLink.ApplyCommSettings(); // the search itself applied them to the port chosen before
    mLink.SaveCommSettings();
    ShowCurrentSettings();
}

/// Runs the search. The user may leave the dialog meanwhile, which ends the search, but neither
/// accept it nor search again.
bool frmCommSettings::Search(std::int16_t port) {
    const Subscription leaving = mLink.StatusEvent.Connect(
        [this](std::string&, std::int16_t&, bool& cancel) { cancel = cancel || !IsOpen(); });
    struct Searching {
        explicit Searching(frmCommSettings& owner) : form(owner) { Show(true); }
        ~Searching() { Show(false); }
        Searching(const Searching&) = delete;
        Searching& operator=(const Searching&) = delete;
        void Show(bool searching) const {
            form.mSearching = searching;
            form.ShowButtons();
        }
        frmCommSettings& form;
    } const searching(*this);
    return mLink.AutoConnect(port, true);
}

void frmCommSettings::cmdOK_Click() {
    {
        const BusyPointer busy;
        Give(cmbBaudrate, [this](std::int32_t rate) { mLink.SetBaudrate(ToText(rate)); });
        Give(cmbParity, [this](std::int32_t code) {
            mLink.SetParity(std::string(1, static_cast<char>(code)));
        });
        Give(cmbDatabits, [this](std::int32_t bits) { mLink.SetDatabits(ToText(bits)); });
        Give(cmbStopbits, [this](std::int32_t bits) { mLink.SetStopbits(ToText(bits)); });
        Give(cmbPort, [this](std::int32_t port) { mLink.SetCommport(ToText(port)); });
        Give(cmbFlowcontrol, [this](std::int32_t mode) { mLink.SetFlowcontrol(ToText(mode)); });
        mLink.SetDSRDetectActive(chkDSRDetect.Checked());
        mLink.SaveCommSettings();
        SaveSearchOptions();
    }
    mCancelled = false;
    Unload(UnloadMode::FormCode);
}

void frmCommSettings::cmdCancel_Click() {
    mCancelled = true;
    Unload(UnloadMode::FormCode);
}

bool frmCommSettings::QueryUnload(UnloadMode mode) {
    if (mode != UnloadMode::FormCode) mCancelled = true;
    return true;
}

namespace {

/// False for a value that is missing or no Boolean.
bool ReadFlag(const RegSettings& settings, std::string_view key) {
    try {
        return ToBoolean(settings.ReadValue(SearchSection, key, ToText(false)));
    } catch (const QNError&) {
        return false;
    }
}

} // namespace

void frmCommSettings::LoadSearchOptions() {
    if (!mLink.RegSettings()) return;
    for (const SearchOption& option : SearchOptions())
        option.box.SetChecked(ReadFlag(*mLink.RegSettings(), option.key));
    mSearchAllPortsAtLoad = chkSearchAllPorts.Checked();
}

void frmCommSettings::SaveSearchOptions() {
    if (!mOptionsChanged && chkSearchAllPorts.Checked() == mSearchAllPortsAtLoad) return;
    std::vector<SettingValue> values;
    for (const SearchOption& option : SearchOptions())
        values.push_back(
            {std::string(SearchSection), std::string(option.key), ToText(option.box.Checked())});
    mLink.RegSettings()->WriteValues(values);
}

} // namespace qncomm
