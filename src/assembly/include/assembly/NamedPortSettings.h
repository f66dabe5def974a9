#pragma once

#include "common/RegSettings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// The settings store as one run sees it when its port was named for that run alone: the port's
/// number is the run's own and is not kept, and the line's settings are those of its address, in a
/// section of their own, so that neither another port's settings nor the choice of the configured
/// port change. Everything else is the store's.
class NamedPortSettings final : public RegSettings {
  public:
    /// Shares the store, which is not null, for port iPort at that address.
    NamedPortSettings(std::shared_ptr<RegSettings> store, std::int16_t iPort,
                      const std::string& sAddress);

    /// The line's settings from the address's own section, the port's number from this object.
    std::string ReadValue(std::string_view sSection, std::string_view sKey,
                          std::string_view sDefault) const override;
    /// Writes to the store; the port's number is dropped. Raises what the store raises.
    void WriteValue(std::string_view sSection, std::string_view sKey,
                    std::string_view sValue) override;
    /// The same in one write of the store.
    void WriteValues(const std::vector<SettingValue>& values) override;

  private:
    bool Keeps(SettingValue& value) const;

    std::shared_ptr<RegSettings> mStore;
    std::string mPort;
    std::string mSection;
};

} // namespace qncomm
