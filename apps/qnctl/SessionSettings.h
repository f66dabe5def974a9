#pragma once

#include "common/RegSettings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qnctl {

/// The settings store as one run sees it when the port was named on the command line: the port
/// number is the run's own and is not kept, and the line's settings are those of that address, kept
/// in a section of its own, so that neither another port's settings nor the choice of the
/// configured port change. Everything else is the store's.
class SessionSettings final : public qncomm::RegSettings {
  public:
    SessionSettings(std::shared_ptr<qncomm::RegSettings> store, std::int16_t iPort,
                    const std::string& sAddress);

    std::string ReadValue(std::string_view sSection, std::string_view sKey,
                          std::string_view sDefault) const override;
    void WriteValue(std::string_view sSection, std::string_view sKey,
                    std::string_view sValue) override;
    void WriteValues(const std::vector<qncomm::SettingValue>& values) override;

  private:
    std::shared_ptr<qncomm::RegSettings> mStore;
    std::string mPort;
    std::string mSection;
};

} // namespace qnctl
