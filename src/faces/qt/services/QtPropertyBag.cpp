#include "qt/QtPropertyBag.h"

#include "qt/Charset.h"

#include <QFontInfo>

#include <algorithm>

namespace qncomm {
namespace {

struct ToQVariant {
    QVariant operator()(bool value) const { return value; }
    QVariant operator()(double value) const { return value; }
    QVariant operator()(std::int32_t value) const { return value; }
    QVariant operator()(const VariantText& value) const { return FromHost(value.text); }
    QVariant operator()(const Variant::Record& value) const {
        return FontOf(AsFont(Variant(value)));
    }
    QVariant operator()(const auto& /*no property*/) const { return {}; }
};

} // namespace

QVariant QVariantOf(const Variant& value) {
    return std::visit(ToQVariant{}, value.value);
}

Variant VariantOf(const QVariant& value, PropertyType type) {
    switch (type) {
    case PropertyType::Boolean:
        return value.toBool();
    case PropertyType::Integer:
        return static_cast<std::int16_t>(std::clamp(value.toInt(), -32768, 32767));
    case PropertyType::Long:
        return std::int32_t{value.toInt()};
    case PropertyType::Text:
        return Variant(ToHost(value.toString()));
    case PropertyType::Font:
        break;
    }
    return FontRecord(TerminalFontOf(qvariant_cast<QFont>(value)));
}

QFont FontOf(const TerminalFont& font) {
    QFont result(FromHost(font.name));
    result.setPointSizeF(std::max(1.0F, font.size));
    return result;
}

TerminalFont TerminalFontOf(const QFont& font) {
    // A font may count in pixels; the system counts in points.
    const qreal points = font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
    return {ToHost(font.family()), static_cast<float>(points)};
}

} // namespace qncomm
