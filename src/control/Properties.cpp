// What the control keeps in its host's property bag, and its appearance.

#include "Members.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"

#include <cmath>
#include <limits>

namespace qncomm {
namespace {

constexpr std::int16_t RunTimeSize = 300; // rows and columns of a control that runs

/// A size is a positive number.
float SizeOf(std::string_view text) {
    const double points = ToDouble(text);
    if (!std::isfinite(points)) RaiseRuntimeError(RtInvalidCall);
    if (std::abs(points) > std::numeric_limits<float>::max()) RaiseRuntimeError(RtOverflow);
    const auto size = static_cast<float>(points);
    if (size <= 0) RaiseRuntimeError(RtInvalidCall);
    return size;
}

/// Resizes the terminal, or leaves it as it is when it cannot have that size.
void Resize(ViewportTerminal& terminal, std::int16_t columns, std::int16_t rows) {
    const std::int16_t former = terminal.Columns();
    terminal.SetColumns(columns);
    try {
        terminal.SetRows(rows);
    } catch (const QNError&) {
        terminal.SetColumns(former);
        throw;
    }
}

} // namespace

QNComm::PropertyValues QNComm::ReadAll(const PropertyBag& bag) {
    PropertyValues values;
    for (const ControlProperty& property : Properties())
        if (property.use != PropertyUse::NotRead)
            values[property.name] =
                property.Converted(bag.ReadProperty(property.name, property.byDefault));
    return values;
}

void QNComm::UserControl_InitProperties() {
    mParts.host.SetAlign(DockBottom);
    Apply(ReadAll(MemoryPropertyBag()));
    SetTerminalFontName("Courier");
}

void QNComm::Apply(const PropertyValues& values) {
    // The size of the grid may be refused; so it comes first, while nothing has changed.
    Resize(mParts.terminal, AsInteger(values.at("Columns")), AsInteger(values.at("Rows")));
    for (const auto& [name, value] : values)
        if (const auto& property = PropertyNamed(name); property.use == PropertyUse::Always)
            Keep(property, value);
}

void QNComm::Keep(const ControlProperty& property, const Variant& value) {
    if (property.get == nullptr) mKept[property.name] = value;
    if (property.set != nullptr) property.set(*this, value);
}

void QNComm::UserControl_ReadProperties(const PropertyBag& bag) {
    Apply(ReadAll(bag));
    if (!mParts.host.UserMode()) return;
    Release();
    Wire();
    LoadFunctionKeyTips();
    mParts.terminal.SetRows(RunTimeSize);
    mParts.terminal.SetColumns(RunTimeSize);
    LayOut();
}

void QNComm::UserControl_WriteProperties(PropertyBag& bag) const {
    for (const ControlProperty& property : Properties()) {
        const bool always = property.use == PropertyUse::NotRead; // it equals no default
        bag.WriteProperty(property.name, Value(property), always ? Variant() : property.byDefault);
    }
}

Variant QNComm::Value(const ControlProperty& property) const {
    if (property.get != nullptr) return property.get(*this);
    const auto kept = mKept.find(property.name);
    return kept != mKept.end() ? kept->second : property.byDefault;
}

Variant QNComm::Property(std::string_view sName) const {
    return Value(PropertyNamed(sName));
}

void QNComm::SetProperty(std::string_view sName, const Variant& value) {
    const ControlProperty& property = PropertyNamed(sName);
    const Variant converted = property.Converted(value);
    if (property.use == PropertyUse::AtDesignTime && mParts.host.UserMode()) return;
    Keep(property, converted);
    mParts.host.PropertyChanged(property.name);
    if (property.changed != nullptr) property.changed(*this);
}

std::int32_t QNComm::BackColor() const {
    return mParts.terminal.BackColor();
}
void QNComm::SetBackColor(std::int32_t lColor) {
    SetProperty("BackColor", lColor);
}

std::int32_t QNComm::ForeColor() const {
    return mParts.terminal.ForeColor();
}
void QNComm::SetForeColor(std::int32_t lColor) {
    SetProperty("ForeColor", lColor);
}

std::int16_t QNComm::BackStyle() const {
    return AsInteger(Property("BackStyle"));
}
void QNComm::SetBackStyle(std::int16_t iStyle) {
    SetProperty("BackStyle", iStyle);
}

std::int16_t QNComm::BorderStyle() const {
    return AsInteger(Property("BorderStyle"));
}
void QNComm::SetBorderStyle(std::int16_t iStyle) {
    SetProperty("BorderStyle", iStyle);
}

bool QNComm::Enabled() const {
    return AsBoolean(Property("Enabled"));
}
void QNComm::SetEnabled(bool bEnabled) {
    SetProperty("Enabled", bEnabled);
}

bool QNComm::ToolbarVisible() const {
    return AsBoolean(Property("ToolbarVisible"));
}
void QNComm::SetToolbarVisible(bool bVisible) {
    SetProperty("ToolbarVisible", bVisible);
}

std::int16_t QNComm::ToolbarAlign() const {
    return Toolbar1.Align();
}
void QNComm::SetToolbarAlign(std::int16_t iAlign) {
    SetProperty("ToolbarAlign", iAlign);
}

TerminalFont QNComm::Font() const {
    return mParts.terminal.Font();
}
void QNComm::SetFont(const TerminalFont& font) {
    SetProperty("Font", FontRecord(font));
}

std::string QNComm::TerminalFontName() const {
    return Font().name;
}
void QNComm::SetTerminalFontName(std::string_view sName) {
    TerminalFont font = Font();
    font.name = sName;
    mParts.terminal.SetFont(font);
}

std::string QNComm::TerminalFontSize() const {
    return FontSizeText(Font().size);
}
void QNComm::SetTerminalFontSize(std::string_view sSize) {
    TerminalFont font = Font();
    font.size = SizeOf(sSize);
    mParts.terminal.SetFont(font);
}

void QNComm::SetHelpFile(std::string_view sPath) {
    mParts.window.SetHelpFile(sPath);
}

} // namespace qncomm
