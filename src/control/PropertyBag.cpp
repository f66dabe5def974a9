#include "control/PropertyBag.h"

#include "common/Numbers.h"
#include "common/RuntimeErrors.h"

#include <charconv>
#include <type_traits>

namespace qncomm {
namespace {

/// The number that the whole text is.
double NumberOf(const std::string& text) {
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::result_out_of_range) RaiseRuntimeError(RtOverflow);
    if (error != std::errc() || stop != end) RaiseRuntimeError(RtTypeMismatch);
    return number;
}

double NumberOf(const PropertyValue& value) {
    return std::visit(
        [](const auto& held) -> double {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, bool>)
                return held ? -1 : 0;
            else if constexpr (std::is_integral_v<Held>)
                return held;
            else if constexpr (std::is_same_v<Held, std::string>)
                return NumberOf(held);
            else
                RaiseRuntimeError(RtTypeMismatch);
        },
        value);
}

} // namespace

bool AsBoolean(const PropertyValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return ToBoolean(*text);
    return NumberOf(value) != 0;
}

std::int16_t AsInteger(const PropertyValue& value) {
    return ToInt16(NumberOf(value));
}

std::int32_t AsLong(const PropertyValue& value) {
    return ToInt32(NumberOf(value));
}

std::string AsString(const PropertyValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* flag = std::get_if<bool>(&value)) return ToText(*flag);
    return ToText(NumberOf(value));
}

PropertyValue PropertyBag::ReadProperty(std::string_view sName,
                                        const PropertyValue& fallback) const {
    const PropertyValue* stored = Find(sName);
    return stored != nullptr ? *stored : fallback;
}

void PropertyBag::WriteProperty(std::string_view sName, const PropertyValue& value,
                                const PropertyValue& fallback) {
    if (value != fallback) Store(sName, value);
}

const PropertyValue* MemoryPropertyBag::Find(std::string_view sName) const {
    const auto found = mValues.find(sName);
    return found != mValues.end() ? &found->second : nullptr;
}

void MemoryPropertyBag::Store(std::string_view sName, const PropertyValue& value) {
    mValues.insert_or_assign(std::string(sName), value);
}

} // namespace qncomm
