#pragma once

#include "control/ViewportTerminal.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <variant>

namespace qncomm {

using PropertyValue = std::variant<bool, std::int16_t, std::int32_t, std::string, TerminalFont>;

/// Conversions of what a bag holds, as a host's language makes them: texts of numbers and Booleans
/// are understood. Raise 13 for what is no such value and 6 for a number that does not fit.
bool AsBoolean(const PropertyValue& value);
std::int16_t AsInteger(const PropertyValue& value);
std::int32_t AsLong(const PropertyValue& value);
std::string AsString(const PropertyValue& value);

/// Keeps a control's design-time properties. A value that equals its default is not stored.
class PropertyBag {
  public:
    virtual ~PropertyBag() = default;

    PropertyValue ReadProperty(std::string_view sName, const PropertyValue& fallback) const;
    void WriteProperty(std::string_view sName, const PropertyValue& value,
                       const PropertyValue& fallback);

  protected:
    /// The stored value, nothing when there is none.
    virtual const PropertyValue* Find(std::string_view sName) const = 0;
    virtual void Store(std::string_view sName, const PropertyValue& value) = 0;
};

/// A bag in memory.
class MemoryPropertyBag : public PropertyBag {
  public:
    using Values = std::map<std::string, PropertyValue, std::less<>>;
    Values mValues;

  protected:
    const PropertyValue* Find(std::string_view sName) const override;
    void Store(std::string_view sName, const PropertyValue& value) override;
};

} // namespace qncomm
