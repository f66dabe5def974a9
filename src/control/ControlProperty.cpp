// The table of the properties that a host sets and a property bag keeps.

#include "control/ControlProperty.h"

#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "control/QNComm.h"

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

constexpr std::int32_t AlmostBlackRed = 15;
constexpr std::int32_t Black = 0;
constexpr std::int16_t GridSize = 300; // rows and columns

} // namespace

Variant ControlProperty::Converted(const Variant& value) const {
    switch (type) {
    case PropertyType::Boolean:
        return AsBoolean(value);
    case PropertyType::Integer:
        return AsInteger(value);
    case PropertyType::Long:
        return AsLong(value);
    case PropertyType::Text:
        return Variant(AsString(value));
    case PropertyType::Font:
        break;
    }
    return FontRecord(AsFont(value));
}

/// Reads and writes a value that the terminal holds.
struct QNComm::TerminalProperty {
    template <auto Value>
    static Variant Get(const QNComm& control) {
        return (control.mParts.terminal.*Value)();
    }
    template <auto SetValue, auto Convert>
    static void Set(QNComm& control, const Variant& value) {
        (control.mParts.terminal.*SetValue)(Convert(value));
    }
};

std::span<const ControlProperty> QNComm::Properties() {
    using enum PropertyUse;
    using Type = PropertyType;
    using Terminal = ViewportTerminal;
    using Of = TerminalProperty;
    static const std::array<ControlProperty, 11> table{{
        {"BackColor", Type::Long, AlmostBlackRed, Always, Of::Get<&Terminal::BackColor>,
         Of::Set<&Terminal::SetBackColor, &AsLong>},
        {"ForeColor", Type::Long, Black, Always, Of::Get<&Terminal::ForeColor>,
         Of::Set<&Terminal::SetForeColor, &AsLong>},
        {"Enabled", Type::Boolean, true},
        {"BackStyle", Type::Integer, std::int16_t{1}},
        {"BorderStyle", Type::Integer, std::int16_t{0}},
        {"Columns", Type::Integer, GridSize, AtDesignTime, Of::Get<&Terminal::Columns>,
         Of::Set<&Terminal::SetColumns, &AsInteger>},
        {"Rows", Type::Integer, GridSize, AtDesignTime, Of::Get<&Terminal::Rows>,
         Of::Set<&Terminal::SetRows, &AsInteger>},
        {"Caption", Type::Text, Variant("Terminal"), Always,
         [](const QNComm& control) { return Variant(control.Caption()); },
         [](QNComm& control, const Variant& value) {
             control.lblCaption.SetCaption(AsString(value));
         }},
        // A value from a bag counts with the next paint, one that a host sets at once.
        {"ToolbarVisible", Type::Boolean, true, Always, nullptr, nullptr,
         [](QNComm& control) {
             control.Toolbar1.SetVisible(control.ToolbarVisible());
             control.Refresh();
         }},
        {"ToolbarAlign", Type::Integer, std::int16_t{ToolbarTop}, Always,
         [](const QNComm& control) { return Variant(control.Toolbar1.Align()); },
         [](QNComm& control, const Variant& value) { control.Toolbar1.SetAlign(AsInteger(value)); },
         [](QNComm& control) { control.Refresh(); }},
        {"Font", Type::Font, FontRecord({"Courier New", 10.0F}), NotRead,
         [](const QNComm& control) { return FontRecord(control.Font()); },
         Of::Set<&Terminal::SetFont, &AsFont>},
    }};
    return table;
}

const ControlProperty& QNComm::PropertyNamed(std::string_view sName) {
    const auto found = std::ranges::find_if(Properties(), [&](const ControlProperty& property) {
        return EqualNoCase(property.name, sName);
    });
    if (found == Properties().end()) RaiseRuntimeError(RtNoSuchMember, "QNComm");
    return *found;
}

} // namespace qncomm
