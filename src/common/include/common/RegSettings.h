#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// One value with its place in the settings store.
struct SettingValue {
    std::string section; ///< without brackets
    std::string key;     ///< its name in the section
    std::string value;   ///< any bytes
};

/// The per-user settings store as the system sees it. Sections and keys are compared without regard
/// to case. Values are texts of any bytes.
class RegSettings {
  public:
    virtual ~RegSettings() = default;

    /// The stored value, sDefault when there is none.
    virtual std::string ReadValue(std::string_view sSection, std::string_view sKey,
                                  std::string_view sDefault) const = 0;

    /// Stores a value. Raises 70, 61 or 75 when it cannot be kept.
    virtual void WriteValue(std::string_view sSection, std::string_view sKey,
                            std::string_view sValue) = 0;

    /// Stores several values at once: a store that lives in a file writes it once. Raises as
    /// WriteValue.
    virtual void WriteValues(const std::vector<SettingValue>& values) {
        for (const SettingValue& entry : values)
            WriteValue(entry.section, entry.key, entry.value);
    }
};

} // namespace qncomm
