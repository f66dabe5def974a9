// The serial settings: what each accepts, how they reach the port, and where they are kept.

#include "PortSettings.h"

#include "ExclusiveMark.h"
#include "LinkState.h"
#include "common/CountedScope.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"
#include "link/HostCall.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view SettingsSection = "Settings";
constexpr std::string_view AutoConnectSection = "AutoConnctSettings";
constexpr std::string_view NotStored = "Nada";

constexpr std::array<std::string_view, 10> Baudrates = {
    "300", "600", "1200", "2400", "4800", "9600", "19200", "38400", "57600", "115200"};
constexpr std::array<std::string_view, 5> Parities = {"None", "Even", "Odd", "Space", "Mark"};
constexpr std::array<std::string_view, 2> DatabitValues = {"7", "8"};
constexpr std::array<std::string_view, 2> StopbitValues = {"1", "2"};
constexpr std::array DefaultBaudrates = {"9600",  "19200", "57600", "115200",
                                         "38400", "4800",  "2400"};

constexpr std::int16_t LastPort = 16;

/// The decimal text of a text's number, whenZero for 0; empty, which no setting accepts, for one
/// that is too large for a number: a printer may answer so, too.
std::string NumberText(std::string_view value, std::string_view whenZero) {
    try {
        const std::string text = ToText(Val(value));
        return text == "0" ? std::string(whenZero) : text;
    } catch (const QNError&) {
        return {};
    }
}

template <std::size_t N>
std::optional<std::string> OneOf(const std::array<std::string_view, N>& accepted,
                                 std::string text) {
    if (std::find(accepted.begin(), accepted.end(), text) == accepted.end()) return std::nullopt;
    return text;
}

/// False when the step has failed, which is then skipped.
bool Succeeds(const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (const QNError&) {
        return false;
    }
}

std::string StoreOrRaise(std::optional<std::string> value, std::int32_t number,
                         std::string_view source) {
    if (!value) RaiseError(number, source);
    return *std::move(value);
}

} // namespace

std::optional<std::string> NormalBaudrate(std::string_view value) {
    return OneOf(Baudrates, NumberText(value, "19200"));
}

std::optional<std::string> NormalParity(std::string_view value) {
    if (value.empty() || value == "0") return "None";
    const auto* found =
        std::find_if(Parities.begin(), Parities.end(), [&](std::string_view parity) {
            return EqualNoCase(parity.substr(0, 1), value.substr(0, 1));
        });
    if (found == Parities.end()) return std::nullopt;
    return std::string(*found);
}

std::optional<std::string> NormalDatabits(std::string_view value) {
    return OneOf(DatabitValues, NumberText(value, "8"));
}

std::optional<std::string> NormalStopbits(std::string_view value) {
    return OneOf(StopbitValues, NumberText(value, "2"));
}

const std::string& clsDataLink::Baudrate() const {
    return mState->baudrate;
}

const std::string& clsDataLink::Parity() const {
    return mState->parity;
}

const std::string& clsDataLink::Databits() const {
    return mState->databits;
}

const std::string& clsDataLink::Stopbits() const {
    return mState->stopbits;
}

const std::string& clsDataLink::Flowcontrol() const {
    return mState->flowcontrol;
}

const std::string& clsDataLink::Commport() const {
    return mState->commport;
}

bool clsDataLink::DSRDetectActive() const {
    return mState->dsrDetectActive;
}

const Collection<std::string>& clsDataLink::AutoConnectBaudrates() const {
    return mState->autoConnectBaudrates;
}

const Collection<std::string>& clsDataLink::FrameFormats() const {
    return mState->frameFormats;
}

void clsDataLink::SetBaudrate(std::string_view sValue) {
    mState->baudrate = StoreOrRaise(NormalBaudrate(sValue), ErrBaudrate, "DataLink:Let Baudrate");
    ApplyCommSettings();
}

void clsDataLink::SetParity(std::string_view sValue) {
    mState->parity = StoreOrRaise(NormalParity(sValue), ErrParity, "DataLink:Let Parity");
    ApplyCommSettings();
}

void clsDataLink::SetDatabits(std::string_view sValue) {
    mState->databits = StoreOrRaise(NormalDatabits(sValue), ErrDatabits, "DataLink:Let Databits");
    ApplyCommSettings();
}

void clsDataLink::SetStopbits(std::string_view sValue) {
    mState->stopbits = StoreOrRaise(NormalStopbits(sValue), ErrStopbits, "DataLink:Let Stopbits");
    ApplyCommSettings();
}

void clsDataLink::SetFlowcontrol(std::string_view sValue) {
    // The remainder of a number of any size, below 0 too, is what its two low bits are.
    constexpr double values = SW_And_HW_Flowcontrol + 1;
    const double rest = std::fmod(std::nearbyint(Val(sValue)), values);
    mState->flowcontrol = ToText(ToInt32(rest < 0 ? rest + values : rest));
    ApplyCommSettings();
}

void clsDataLink::SetCommport(std::string_view sValue) {
    double port = Val(sValue);
    for (std::int16_t candidate = 0; port < 1 && candidate <= LastPort; ++candidate) {
        if (!IsValidPort(candidate)) continue;
        port = candidate;
        break;
    }
    mState->commport = ToText(std::int32_t{ToInt16(port)});
}

void clsDataLink::SetDSRDetectActive(bool bValue) {
    mState->dsrDetectActive = bValue;
}

std::string clsDataLink::SettingsText() const {
    return mState->baudrate + "," + mState->parity.substr(0, 1) + "," + mState->databits + ","
           + mState->stopbits;
}

bool clsDataLink::IsDSRActive() {
    return mState->Serial().PortOpen() && mState->Serial().DSRState();
}

bool clsDataLink::IsValidPort(std::int16_t iPortNumber) {
    if (mState->Serial().PortNumber() == iPortNumber && mState->Serial().PortOpen()) return true;
    return mState->Serial().ProbePort(iPortNumber);
}

void clsDataLink::ApplyCommSettings() {
    using Step = std::function<void()>;
    const Step setPort = [this] { mState->Serial().SetPortNumber(ToInt16(Val(mState->commport))); };
    const Step setSettings = [this] { mState->Serial().SetPortSettings(SettingsText()); };
    const Step setHandshaking = [this] {
        mState->Serial().SetHandshaking(ToInt16(Val(mState->flowcontrol)));
    };
    const Step close = [this] { mState->Serial().SetPortOpen(false); };
    const Step open = [this] {
        if (mState->Serial().PortOpen()) return; // an accepted dialog may have opened it
        if (mState->innermost != nullptr) mState->AwaitPort();
        mState->OpenSoon();
    };
    const bool wasOpen = mState->serial != nullptr && mState->serial->PortOpen();
    const std::vector<Step> steps =
        wasOpen ? std::vector{close, setPort, setSettings, setHandshaking, open}
                : std::vector{setPort, setSettings, setHandshaking};
    const bool applied = std::ranges::all_of(
        steps, [this](const Step& step) { return mState->RunSettingsStep(step); });
    mState->NotePlace();
    if (!applied) return;
    if (wasOpen) mState->NoteLine();
    if (mState->immediateMode) SetImmediateMode(false);
}

bool LinkState::RunSettingsStep(const std::function<void()>& step) {
    for (;;) {
        try {
            step();
            return true;
        } catch (const QNError& error) {
            if (live.Now().line.value == LineOpen) NoteLine(&error);
            if (error.Number() != SerialErrPortBusy) return true;
        }
        if (!AskBusyPort() || link.ShowSettingsDlg() != 1) return false;
    }
}

bool LinkState::AskBusyPort() {
    MsgBox box;
    box.text = "Port 'com" + commport + ":' is missing or busy by another application.\r\n"
               + "Please end the application using the port.\r\n"
               + "Or do you want to change your current port settings?";
    box.buttons = MsgBoxButtons::YesNo;
    const HostCall guard(link);
    return host.desktop.ShowMsgBox(box) == MsgBoxResult::Yes;
}

std::int16_t clsDataLink::ShowSettingsDlg() {
    if (mState->IsExclusive()) return 0;
    mState->Serial().SetTag(ExclusiveMark);
    std::int16_t result = 0;
    try {
        result = mState->host.dialogs.ShowCommSettings(*this);
    } catch (...) {
        mState->EndExclusive({});
        throw;
    }
    mState->EndExclusive({});
    return result;
}

void LinkState::LoadCommSettings() {
    using Set = std::function<void(const std::string&)>;
    const std::pair<std::string_view, Set> setters[] = {
        {"Commport", [this](const std::string& text) { link.SetCommport(text); }},
        {"Baudrate", [this](const std::string& text) { link.SetBaudrate(text); }},
        {"Parity", [this](const std::string& text) { link.SetParity(text); }},
        {"Databits", [this](const std::string& text) { link.SetDatabits(text); }},
        {"Stopbits", [this](const std::string& text) { link.SetStopbits(text); }},
        {"Flowcontrol", [this](const std::string& text) { link.SetFlowcontrol(text); }},
        {"DSRDetectActive",
         [this](const std::string& text) { link.SetDSRDetectActive(ToBoolean(text)); }},
    };
    {
        const CountedScope several(settingSeveral);
        for (const auto& [key, setter] : setters)
            if (!Succeeds([&, &name = key, &set = setter] {
                    set(settings->ReadValue(SettingsSection, name, NotStored));
                }))
                Succeeds([&set = setter] {
                    set(std::string(NotStored));
                }); // a bad value is as good as none
        Recall();
    }
    NotePlace();
    for (std::size_t i = 0; i < DefaultBaudrates.size(); ++i) {
        Succeeds([&] {
            const std::string key = "Baud" + std::to_string(i + 1);
            const std::string rate =
                settings->ReadValue(AutoConnectSection, key, DefaultBaudrates[i]);
            autoConnectBaudrates.Add(rate, rate);
        });
    }
}

void clsDataLink::SaveCommSettings() {
    if (!mState->settings) RaiseRuntimeError(RtObjectNotSet, "clsDataLink:SaveCommSettings");
    const auto setting = [](std::string_view key, std::string value) {
        return SettingValue{std::string(SettingsSection), std::string(key), std::move(value)};
    };
    std::vector<SettingValue> values = {
        setting("Commport", mState->commport),
        setting("Baudrate", mState->baudrate),
        setting("Parity", mState->parity),
        setting("Databits", mState->databits),
        setting("Stopbits", mState->stopbits),
        setting("FlowControl", mState->flowcontrol),
        setting("DSRDetectActive", ToText(mState->dsrDetectActive)),
    };
    std::size_t count = 0;
    for (const std::string& rate : mState->autoConnectBaudrates)
        values.push_back({std::string(AutoConnectSection), "Baud" + std::to_string(++count), rate});
    mState->settings->WriteValues(values);
}

} // namespace qncomm
