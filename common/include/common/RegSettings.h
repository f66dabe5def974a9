#pragma once

#include <string>
#include <string_view>

namespace qncomm {

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
};

} // namespace qncomm
