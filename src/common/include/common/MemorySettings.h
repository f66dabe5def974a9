#pragma once

#include "common/RegSettings.h"
#include "common/SettingsDocument.h"

namespace qncomm {

/// A settings store that lives as long as the object: for hosts that keep settings their own way,
/// and for tests.
class MemorySettings : public RegSettings {
  public:
    std::string ReadValue(std::string_view sSection, std::string_view sKey,
                          std::string_view sDefault) const override;
    void WriteValue(std::string_view sSection, std::string_view sKey,
                    std::string_view sValue) override;

    /// All that has been written, for instance to be kept as a text.
    const SettingsDocument& Document() const { return mDocument; }

  private:
    SettingsDocument mDocument;
};

} // namespace qncomm
