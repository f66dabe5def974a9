#include "qt/QtPropertyBag.h"

#include "qt/Charset.h"

#include <QFont>
#include <QFontInfo>

#include <algorithm>

namespace qncomm {
namespace {

struct ToVariant {
    QVariant operator()(bool value) const { return value; }
    QVariant operator()(std::int16_t value) const { return int{value}; }
    QVariant operator()(std::int32_t value) const { return value; }
    QVariant operator()(const std::string& value) const { return FromHost(value); }
    QVariant operator()(const TerminalFont& value) const { return FontOf(value); }
};

} // namespace

QVariant QtPropertyBag::Value(std::string_view sName, const PropertyValue& fallback) const {
    return VariantOf(ReadProperty(sName, fallback));
}

void QtPropertyBag::SetValue(std::string_view sName, const PropertyValue& value) {
    mValues.insert_or_assign(std::string(sName), value);
}

QVariant VariantOf(const PropertyValue& value) {
    return std::visit(ToVariant{}, value);
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
