#include "control/PropertyBag.h"

namespace qncomm {
Variant PropertyBag::ReadProperty(std::string_view sName, const Variant& fallback) const {
    const Variant* stored = Find(sName);
    return stored != nullptr ? *stored : fallback;
}

void PropertyBag::WriteProperty(std::string_view sName, const Variant& value,
                                const Variant& fallback) {
    if (value != fallback) Store(sName, value);
}

const Variant* MemoryPropertyBag::Find(std::string_view sName) const {
    const auto found = mValues.find(sName);
    return found != mValues.end() ? &found->second : nullptr;
}

void MemoryPropertyBag::Store(std::string_view sName, const Variant& value) {
    mValues.insert_or_assign(std::string(sName), value);
}

} // namespace qncomm
