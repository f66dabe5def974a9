#include "assembly/PortBook.h"

#include "LineSettings.h"
#include "assembly/NamedPortSettings.h"
#include "common/Numbers.h"
#include "common/Text.h"
#include "serial/PortAddress.h"

#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view VirtualScheme = "sim:";
constexpr std::string_view LabelsOption = "labels";

ChosenPort None(PortProblem problem, std::string message = {}) {
    ChosenPort none;
    none.problem = problem;
    none.message = std::move(message);
    return none;
}

bool LooksLikeNumber(std::string_view text) {
    return text.find_first_not_of("0123456789-") == std::string_view::npos;
}

} // namespace

// -- Addresses with options

bool IsVirtual(std::string_view sAddress) {
    return sAddress.starts_with(VirtualScheme);
}

std::string OptionOf(std::string_view sAddress, std::string_view sName) {
    const std::size_t options = sAddress.find('?');
    if (options == std::string_view::npos) return {};
    for (const std::string& option :
         SplitKeepEmpty(std::string(sAddress.substr(options + 1)), "&")) {
        const std::size_t equals = option.find('=');
        if (equals != std::string::npos && option.substr(0, equals) == sName)
            return option.substr(equals + 1);
    }
    return {};
}

std::string WithOption(std::string_view sAddress, std::string_view sName, std::string_view sValue) {
    std::string address(sAddress);
    address += sAddress.find('?') == std::string_view::npos ? '?' : '&';
    return address.append(sName).append("=").append(sValue);
}

// -- The book

PortBook::PortBook(std::shared_ptr<RegSettings> store, ChannelKinds kinds,
                   const std::vector<SerialDevice>& devices)
    : mStore(std::move(store)),
      mBindings(std::move(kinds)),
      mWarnings(mBindings.AddSettings(*mStore)) {
    mBindings.AddDevices(devices);
}

/// The port number that the store holds, nothing when it holds none that can be chosen.
std::optional<std::int16_t> PortBook::StoredNumber() const {
    const auto number = ParsePortNumber(mStore->ReadValue(LineSection, PortKey, ""));
    return number && *number > 0 ? number : std::nullopt;
}

std::optional<std::int16_t> PortBook::ConfiguredNumber() const {
    if (const auto stored = StoredNumber()) return stored;
    for (const PortBinding& port : mBindings.List())
        if (port.number > 0 && port.source == BindingSource::Settings) return port.number;
    return std::nullopt;
}

ChosenPort PortBook::Configured() const {
    const auto number = ConfiguredNumber();
    return number ? Bound(*number) : None(PortProblem::NotConfigured);
}

bool PortBook::IsLent(const PortBinding& binding) const {
    return binding.source == BindingSource::Given
           && mStore->ReadValue(PortBindings::Section, NameOfPort(binding.number), "")
                  != binding.address.text;
}

ChosenPort PortBook::Bound(std::int16_t number) const {
    const PortBinding* binding = mBindings.Find(number);
    if (binding == nullptr)
        return None(PortProblem::Unbound,
                    NameOfPort(number) + " stands for no address: its device is not there.");
    ChosenPort port;
    port.number = number;
    port.address = binding->address.text;
    port.configured = StoredNumber() == number;
    port.lent = IsLent(*binding);
    return port;
}

ChosenPort PortBook::Choose(const std::string& sPort) {
    if (sPort.empty()) return Configured();
    const auto number = ParsePortNumber(sPort);
    if (!number && LooksLikeNumber(sPort))
        return None(PortProblem::NoSuchNumber, sPort + ": port numbers go from 0 to 16.");
    if (!number) return Lend(sPort);
    const ChosenPort port = Bound(*number);
    return *number == 0 && port.problem == PortProblem::None ? Lend(port.address) : port;
}

ChosenPort PortBook::Lend(const std::string& address) {
    if (const auto known = mBindings.NumberOf(address); known && *known > 0) return Bound(*known);
    const std::int16_t number = HighestFree();
    if (const std::string wrong = mBindings.Give(number, address); !wrong.empty())
        return None(PortProblem::NoAddress, address + ": " + wrong);
    return Bound(number);
}

/// Lent from above, because this machine's devices are numbered from below.
std::int16_t PortBook::HighestFree() const {
    for (std::int16_t number = PortBindings::Highest; number > 0; --number)
        if (mBindings.Find(number) == nullptr) return number;
    return PortBindings::Highest;
}

std::int16_t PortBook::LowestFree() const {
    std::int16_t number = 1;
    while (number < PortBindings::Highest && mBindings.Find(number) != nullptr)
        ++number;
    return number;
}

ChosenPort PortBook::Remember(const ChosenPort& port, const std::vector<SettingValue>& line) {
    const std::int16_t number = port.lent ? LowestFree() : port.number;
    std::vector<SettingValue> values{
        {std::string(PortBindings::Section), NameOfPort(number), port.address},
        {std::string(LineSection), std::string(PortKey), ToText(std::int32_t{number})}};
    for (const SettingValue& value : line)
        values.push_back({std::string(LineSection), value.key, value.value});
    mStore->WriteValues(values);
    if (number != port.number) {
        mBindings.Forget(port.number);
        mBindings.Give(number, port.address);
    }
    return Bound(number);
}

std::shared_ptr<RegSettings> PortBook::SettingsFor(const ChosenPort& port) const {
    if (port.configured) return mStore;
    return std::make_shared<NamedPortSettings>(mStore, port.number, port.address);
}

std::string PortBook::GiveOption(const ChosenPort& port, std::string_view sName,
                                 std::string_view sValue) {
    std::string wrong = mBindings.Give(port.number, WithOption(port.address, sName, sValue));
    if (wrong.empty()) mPlainAddresses[port.number] = port.address;
    return wrong;
}

std::string PortBook::AddressOf(std::int16_t iPort) const {
    const PortBinding* binding = mBindings.Find(iPort);
    if (binding == nullptr) return {};
    const auto plain = mPlainAddresses.find(iPort);
    const bool given =
        plain != mPlainAddresses.end() && binding->address.text.starts_with(plain->second);
    return given ? plain->second : binding->address.text;
}

std::string PortBook::GiveLabels(const ChosenPort& port, const std::string& sFolder) {
    if (!IsVirtual(port.address)) return {};
    if (std::string own = OptionOf(port.address, LabelsOption); !own.empty() || sFolder.empty())
        return own;
    return GiveOption(port, LabelsOption, sFolder).empty() ? sFolder : std::string();
}

} // namespace qncomm
