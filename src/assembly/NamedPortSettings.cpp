#include "assembly/NamedPortSettings.h"

#include "LineSettings.h"
#include "common/Numbers.h"
#include "common/Text.h"
#include "link/LinkOptions.h"

#include <utility>

namespace qncomm {

NamedPortSettings::NamedPortSettings(std::shared_ptr<RegSettings> store, std::int16_t iPort,
                                     const std::string& sAddress)
    : mStore(std::move(store)),
      mPort(ToText(std::int32_t{iPort})),
      mSection(ConnectionSection(sAddress)) {}

std::string NamedPortSettings::ReadValue(std::string_view sSection, std::string_view sKey,
                                         std::string_view sDefault) const {
    if (!EqualNoCase(sSection, LineSection)) return mStore->ReadValue(sSection, sKey, sDefault);
    return EqualNoCase(sKey, PortKey) ? mPort : mStore->ReadValue(mSection, sKey, sDefault);
}

/// Whether a value is kept at all; one of the line goes into the address's own section.
bool NamedPortSettings::Keeps(SettingValue& value) const {
    if (!EqualNoCase(value.section, LineSection)) return true;
    value.section = mSection;
    return !EqualNoCase(value.key, PortKey);
}

void NamedPortSettings::WriteValue(std::string_view sSection, std::string_view sKey,
                                   std::string_view sValue) {
    SettingValue value{std::string(sSection), std::string(sKey), std::string(sValue)};
    if (Keeps(value)) mStore->WriteValue(value.section, value.key, value.value);
}

void NamedPortSettings::WriteValues(const std::vector<SettingValue>& values) {
    std::vector<SettingValue> kept;
    for (SettingValue value : values)
        if (Keeps(value)) kept.push_back(std::move(value));
    mStore->WriteValues(kept);
}

} // namespace qncomm
