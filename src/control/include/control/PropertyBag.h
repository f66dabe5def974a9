#pragma once

#include "common/Variant.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace qncomm {

/// Keeps a control's design-time properties. A value that equals its default is not stored.
class PropertyBag {
  public:
    virtual ~PropertyBag() = default;

    Variant ReadProperty(std::string_view sName, const Variant& fallback) const;
    void WriteProperty(std::string_view sName, const Variant& value, const Variant& fallback);

  protected:
    /// The stored value, nothing when there is none.
    virtual const Variant* Find(std::string_view sName) const = 0;
    virtual void Store(std::string_view sName, const Variant& value) = 0;
};

/// A bag in memory.
class MemoryPropertyBag : public PropertyBag {
  public:
    using Values = std::map<std::string, Variant, std::less<>>;
    Values mValues;

  protected:
    const Variant* Find(std::string_view sName) const override;
    void Store(std::string_view sName, const Variant& value) override;
};

} // namespace qncomm
