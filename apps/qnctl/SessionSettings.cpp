#include "SessionSettings.h"

#include "common/Numbers.h"
#include "common/Text.h"

#include <utility>

namespace qnctl {
namespace {

bool IsLineSetting(std::string_view section) {
    return qncomm::EqualNoCase(section, "Settings");
}

bool IsPortNumber(std::string_view section, std::string_view key) {
    return IsLineSetting(section) && qncomm::EqualNoCase(key, "Commport");
}

} // namespace

SessionSettings::SessionSettings(std::shared_ptr<qncomm::RegSettings> store, std::int16_t iPort,
                                 const std::string& sAddress)
    : mStore(std::move(store)),
      mPort(qncomm::ToText(std::int32_t{iPort})),
      mSection("Connection " + sAddress) {}

std::string SessionSettings::ReadValue(std::string_view sSection, std::string_view sKey,
                                       std::string_view sDefault) const {
    if (IsPortNumber(sSection, sKey)) return mPort;
    return mStore->ReadValue(IsLineSetting(sSection) ? mSection : sSection, sKey, sDefault);
}

void SessionSettings::WriteValue(std::string_view sSection, std::string_view sKey,
                                 std::string_view sValue) {
    if (IsPortNumber(sSection, sKey)) return;
    mStore->WriteValue(IsLineSetting(sSection) ? mSection : sSection, sKey, sValue);
}

void SessionSettings::WriteValues(const std::vector<qncomm::SettingValue>& values) {
    std::vector<qncomm::SettingValue> kept;
    for (const qncomm::SettingValue& entry : values) {
        if (IsPortNumber(entry.section, entry.key)) continue;
        kept.push_back(entry);
        if (IsLineSetting(entry.section)) kept.back().section = mSection;
    }
    mStore->WriteValues(kept);
}

} // namespace qnctl
