#include "control/TerminalFont.h"

#include "common/Numbers.h"
#include "common/RuntimeErrors.h"
#include "common/Text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace qncomm {
namespace {

TerminalFont FontOf(std::string_view name, double points) {
    if (!(std::abs(points) <= std::numeric_limits<float>::max())) RaiseRuntimeError(RtInvalidCall);
    return {std::string(name), static_cast<float>(points)};
}

} // namespace

std::string FontSizeText(float size) {
    std::array<char, 32> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), size);
    return {text.data(), result.ptr};
}

Variant FontRecord(const TerminalFont& font) {
    return Variant(
        Variant::Record{{"Name", Variant(font.name)}, {"Size", ToDouble(FontSizeText(font.size))}});
}

TerminalFont AsFont(const Variant& value) {
    if (const auto* text = value.As<VariantText>()) {
        const std::size_t comma = text->text.rfind(',');
        if (comma == std::string::npos) RaiseRuntimeError(RtTypeMismatch);
        return FontOf(Trim(text->text.substr(0, comma)), ToDouble(text->text.substr(comma + 1)));
    }
    const auto* record = value.As<Variant::Record>();
    if (record == nullptr || record->size() != 2) RaiseRuntimeError(RtTypeMismatch);
    const auto* name = record->front().second.As<VariantText>();
    if (name == nullptr) RaiseRuntimeError(RtTypeMismatch);
    return FontOf(name->text, AsDouble(record->back().second));
}

} // namespace qncomm
