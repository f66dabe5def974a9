#pragma once

#include "common/Variant.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace qncomm {

/// Keeps a control's design-time properties for its host, such as in a form's file. A value that
/// equals its default is not stored.
class PropertyBag {
  public:
    virtual ~PropertyBag() = default;

    /// The stored value as it is, of whatever type; the fallback when there is none.
    Variant ReadProperty(std::string_view sName, const Variant& fallback) const;
    /// Stores the value unless it equals the fallback, type included. A value that is stored
    /// already stays when the new one equals the fallback.
    void WriteProperty(std::string_view sName, const Variant& value, const Variant& fallback);

  protected:
    /// The stored value, a null pointer when there is none. Valid until the next Store.
    virtual const Variant* Find(std::string_view sName) const = 0;
    /// Keeps a copy of the value, in place of a former one.
    virtual void Store(std::string_view sName, const Variant& value) = 0;
};

/// A bag in memory.
class MemoryPropertyBag : public PropertyBag {
  public:
    /// Values by the names of their properties; the names are told apart by case.
    using Values = std::map<std::string, Variant, std::less<>>;
    Values mValues; ///< what is stored; a host may fill it

  protected:
    /// The value in mValues, told apart by case.
    const Variant* Find(std::string_view sName) const override;
    /// Puts a copy into mValues.
    void Store(std::string_view sName, const Variant& value) override;
};

} // namespace qncomm
