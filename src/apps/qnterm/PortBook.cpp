#include "PortBook.h"

#include "assembly/NamedPortSettings.h"
#include "common/Numbers.h"
#include "common/Text.h"
#include "serial/SerialDevices.h"

#include <utility>

namespace qnterm {
namespace {

using qncomm::PortBinding;
using qncomm::PortBindings;

constexpr std::string_view VirtualScheme = "sim:";
constexpr std::string_view LabelsOption = "labels";

std::string KeyOf(std::int16_t number) {
    return "COM" + qncomm::ToText(std::int32_t{number});
}

ChosenPort Refused(std::string problem) {
    ChosenPort none;
    none.problem = std::move(problem);
    return none;
}

} // namespace

bool IsVirtual(const std::string& sAddress) {
    return sAddress.starts_with(VirtualScheme);
}

std::string LabelsOf(const std::string& sAddress) {
    const std::size_t options = sAddress.find('?');
    if (!IsVirtual(sAddress) || options == std::string::npos) return {};
    for (const std::string& option : qncomm::SplitKeepEmpty(sAddress.substr(options + 1), "&")) {
        const std::size_t equals = option.find('=');
        if (equals != std::string::npos && option.substr(0, equals) == LabelsOption)
            return option.substr(equals + 1);
    }
    return {};
}

PortBook::PortBook(std::shared_ptr<qncomm::RegSettings> store) : mStore(std::move(store)) {
    mBindings.AddSettings(*mStore);
    mBindings.AddDevices(qncomm::FindSerialDevices());
}

ChosenPort PortBook::Bound(std::int16_t number) const {
    const PortBinding* binding = mBindings.Find(number);
    if (binding == nullptr)
        return Refused(KeyOf(number) + " stands for no address: its device is not there.");
    ChosenPort port;
    port.number = number;
    port.address = binding->address.text;
    port.configured =
        mStore->ReadValue("Settings", "Commport", "") == qncomm::ToText(std::int32_t{number});
    return port;
}

ChosenPort PortBook::Configured() const {
    const auto stored = qncomm::ParsePortNumber(mStore->ReadValue("Settings", "Commport", ""));
    if (stored && *stored > 0) return Bound(*stored);
    for (const PortBinding& port : mBindings.List())
        if (port.number > 0 && port.source == qncomm::BindingSource::Settings)
            return Bound(port.number);
    return {};
}

/// The number that an address has, else the highest free one; the ports of the machine are
/// numbered from below.
std::int16_t PortBook::NumberFor(const std::string& address) const {
    if (const auto known = mBindings.NumberOf(address); known && *known > 0) return *known;
    for (std::int16_t number = PortBindings::Highest; number > 0; --number)
        if (mBindings.Find(number) == nullptr) return number;
    return PortBindings::Highest;
}

ChosenPort PortBook::ForThisRun(const std::string& sPort) {
    const auto number = qncomm::ParsePortNumber(sPort);
    if (number && *number > 0) return Bound(*number);
    const std::int16_t free = NumberFor(sPort);
    if (const std::string wrong = mBindings.Give(free, sPort); !wrong.empty())
        return Refused(sPort + ": " + wrong);
    return Bound(free);
}

ChosenPort PortBook::Configure(const std::string& sAddress) {
    const std::int16_t number = NumberFor(sAddress);
    if (const std::string wrong = mBindings.Give(number, sAddress); !wrong.empty())
        return Refused(sAddress + ": " + wrong);
    mStore->WriteValues({{"Ports", KeyOf(number), sAddress},
                         {"Settings", "Commport", qncomm::ToText(std::int32_t{number})}});
    return Bound(number);
}

std::shared_ptr<qncomm::RegSettings> PortBook::SettingsFor(const ChosenPort& port) const {
    if (port.configured) return mStore;
    return std::make_shared<qncomm::NamedPortSettings>(mStore, port.number, port.address);
}

std::string PortBook::GiveLabels(const ChosenPort& port, const std::string& sFolder) {
    if (!IsVirtual(port.address)) return {};
    if (std::string own = LabelsOf(port.address); !own.empty() || sFolder.empty()) return own;
    const char* joint = port.address.find('?') == std::string::npos ? "?" : "&";
    const std::string address = port.address + joint + std::string(LabelsOption) + "=" + sFolder;
    return mBindings.Give(port.number, address).empty() ? sFolder : std::string();
}

} // namespace qnterm
