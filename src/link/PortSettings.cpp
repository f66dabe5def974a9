// The serial settings: what each accepts, how they reach the port, and where they are kept.

#include "PortSettings.h"

#include "ExclusiveMark.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"
#include "link/HostCall.h"
#include "link/clsDataLink.h"

#include <algorithm>
#include <array>
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

/// The decimal text of a text's number, sDefault for 0.
std::string NumberText(std::string_view value, std::string_view whenZero) {
    const std::string text = ToText(Val(value));
    return text == "0" ? std::string(whenZero) : text;
}

template <std::size_t N>
std::optional<std::string> OneOf(const std::array<std::string_view, N>& accepted,
                                 std::string text) {
    if (std::find(accepted.begin(), accepted.end(), text) == accepted.end()) return std::nullopt;
    return text;
}

void IgnoringErrors(const std::function<void()>& step) {
    try {
        step();
    } catch (const QNError&) { // NOLINT(bugprone-empty-catch): a step that fails is skipped
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

void clsDataLink::SetBaudrate(std::string_view sValue) {
    mBaudrate = StoreOrRaise(NormalBaudrate(sValue), ErrBaudrate, "DataLink:Let Baudrate");
    ApplyCommSettings();
}

void clsDataLink::SetParity(std::string_view sValue) {
    mParity = StoreOrRaise(NormalParity(sValue), ErrParity, "DataLink:Let Parity");
    ApplyCommSettings();
}

void clsDataLink::SetDatabits(std::string_view sValue) {
    mDatabits = StoreOrRaise(NormalDatabits(sValue), ErrDatabits, "DataLink:Let Databits");
    ApplyCommSettings();
}

void clsDataLink::SetStopbits(std::string_view sValue) {
    mStopbits = StoreOrRaise(NormalStopbits(sValue), ErrStopbits, "DataLink:Let Stopbits");
    ApplyCommSettings();
}

void clsDataLink::SetFlowcontrol(std::string_view sValue) {
    mFlowcontrol = ToText(ToInt32(Val(sValue)) & SW_And_HW_Flowcontrol);
    ApplyCommSettings();
}

void clsDataLink::SetCommport(std::string_view sValue) {
    double port = Val(sValue);
    for (std::int16_t candidate = 0; port < 1 && candidate <= LastPort; ++candidate) {
        if (!IsValidPort(candidate)) continue;
        port = candidate;
        break;
    }
    mCommport = ToText(std::int32_t{ToInt16(port)});
}

std::string clsDataLink::SettingsText() const {
    return mBaudrate + "," + mParity.substr(0, 1) + "," + mDatabits + "," + mStopbits;
}

bool clsDataLink::IsDSRActive() {
    return Serial().PortOpen() && Serial().DSRState();
}

bool clsDataLink::IsValidPort(std::int16_t iPortNumber) {
    if (Serial().PortNumber() == iPortNumber && Serial().PortOpen()) return true;
    return Serial().ProbePort(iPortNumber);
}

void clsDataLink::ApplyCommSettings() {
    using Step = std::function<void()>;
    const Step setPort = [this] { Serial().SetPortNumber(ToInt16(Val(mCommport))); };
    const Step setSettings = [this] { Serial().SetPortSettings(SettingsText()); };
    const Step setHandshaking = [this] { Serial().SetHandshaking(ToInt16(Val(mFlowcontrol))); };
    const Step close = [this] { Serial().SetPortOpen(false); };
    const Step open = [this] {
        if (!Serial().PortOpen())
            Serial().SetPortOpen(true); // an accepted dialog may have opened it
    };
    const bool wasOpen = mSerial != nullptr && mSerial->PortOpen();
    const std::vector<Step> steps =
        wasOpen ? std::vector{close, setPort, setSettings, setHandshaking, open}
                : std::vector{setPort, setSettings, setHandshaking};
    for (const Step& step : steps)
        if (!RunSettingsStep(step)) return;
    if (mImmediateMode) SetImmediateMode(false);
}

bool clsDataLink::RunSettingsStep(const std::function<void()>& step) {
    for (;;) {
        try {
            step();
            return true;
        } catch (const QNError& error) {
            if (error.Number() != SerialErrPortBusy) return true;
        }
        if (!AskBusyPort() || ShowSettingsDlg() != 1) return false;
    }
}

bool clsDataLink::AskBusyPort() {
    MsgBox box;
    box.text = "Port 'com" + mCommport + ":' is missing or busy by another application.\r\n"
               + "Please end the application using the port.\r\n"
               + "Or do you want to change your current port settings?";
    box.buttons = MsgBoxButtons::YesNo;
    const HostCall guard(*this);
    return mHost.desktop.ShowMsgBox(box) == MsgBoxResult::Yes;
}

std::int16_t clsDataLink::ShowSettingsDlg() {
    if (IsExclusive()) return 0;
    Serial().SetTag(ExclusiveMark);
    std::int16_t result = 0;
    try {
        result = mHost.dialogs.ShowCommSettings(*this);
    } catch (...) {
        EndExclusive({});
        throw;
    }
    EndExclusive({});
    return result;
}

void clsDataLink::LoadCommSettings() {
    using Let = std::function<void(const std::string&)>;
    const std::pair<std::string_view, Let> lets[] = {
        {"Commport", [this](const std::string& text) { SetCommport(text); }},
        {"Baudrate", [this](const std::string& text) { SetBaudrate(text); }},
        {"Parity", [this](const std::string& text) { SetParity(text); }},
        {"Databits", [this](const std::string& text) { SetDatabits(text); }},
        {"Stopbits", [this](const std::string& text) { SetStopbits(text); }},
        {"Flowcontrol", [this](const std::string& text) { SetFlowcontrol(text); }},
        {"DSRDetectActive",
         [this](const std::string& text) { SetDSRDetectActive(ToBoolean(text)); }},
    };
    for (const auto& [key, let] : lets)
        IgnoringErrors([&, &name = key, &set = let] {
            set(mRegSettings->ReadValue(SettingsSection, name, NotStored));
        });
    for (std::size_t i = 0; i < DefaultBaudrates.size(); ++i) {
        IgnoringErrors([&] {
            const std::string key = "Baud" + std::to_string(i + 1);
            const std::string rate =
                mRegSettings->ReadValue(AutoConnectSection, key, DefaultBaudrates[i]);
            mAutoConnectBaudrates.Add(rate, rate);
        });
    }
}

void clsDataLink::SaveCommSettings() {
    if (!mRegSettings) RaiseRuntimeError(RtObjectNotSet, "clsDataLink:SaveCommSettings");
    const auto setting = [](std::string_view key, std::string value) {
        return SettingValue{std::string(SettingsSection), std::string(key), std::move(value)};
    };
    std::vector<SettingValue> values = {
        setting("Commport", mCommport),
        setting("Baudrate", mBaudrate),
        setting("Parity", mParity),
        setting("Databits", mDatabits),
        setting("Stopbits", mStopbits),
        setting("FlowControl", mFlowcontrol),
        setting("DSRDetectActive", ToText(mDSRDetectActive)),
    };
    std::size_t count = 0;
    for (const std::string& rate : mAutoConnectBaudrates)
        values.push_back({std::string(AutoConnectSection), "Baud" + std::to_string(++count), rate});
    mRegSettings->WriteValues(values);
}

} // namespace qncomm
