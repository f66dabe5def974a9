#include "common/Variant.h"

#include "common/Numbers.h"
#include "common/RuntimeErrors.h"

namespace qncomm {

bool AsBoolean(const Variant& value) {
    if (const auto* text = value.As<VariantText>()) return ToBoolean(text->text);
    return AsDouble(value) != 0;
}

std::int16_t AsInteger(const Variant& value) {
    return ToInt16(AsDouble(value));
}

std::int32_t AsLong(const Variant& value) {
    return ToInt32(AsDouble(value));
}

double AsDouble(const Variant& value) {
    if (const auto* flag = value.As<bool>()) return *flag ? -1 : 0;
    if (const auto* number = value.As<std::int32_t>()) return *number;
    if (const auto* number = value.As<double>()) return *number;
    if (const auto* text = value.As<VariantText>()) return ToDouble(text->text);
    RaiseRuntimeError(RtTypeMismatch);
}

std::string AsString(const Variant& value) {
    if (const auto* text = value.As<VariantText>()) return text->text;
    if (const auto* flag = value.As<bool>()) return ToText(*flag);
    return ToText(AsDouble(value));
}

} // namespace qncomm
