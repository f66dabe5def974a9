// What the control keeps in its host's property bag, and its appearance.

#include "Members.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"

#include <cmath>
#include <limits>

namespace qncomm {
namespace {

constexpr std::int16_t RunTimeSize = 300; // rows and columns

// The defaults with which properties are read and written; a plain 15 is an almost black red.
constexpr std::int32_t DefaultBackColor = 15;
constexpr std::int32_t DefaultForeColor = 0;
constexpr std::int16_t DefaultBackStyle = 1;
constexpr std::int16_t DefaultBorderStyle = 0;
constexpr std::int16_t DefaultSize = 300;
constexpr std::int16_t DefaultToolbarAlign = ToolbarTop;
constexpr std::string_view DefaultCaption = "Terminal";

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

/// What a bag says, read as a whole before any of it is applied.
struct QNComm::PersistedProperties {
    std::int32_t backColor;
    std::int32_t foreColor;
    bool enabled;
    std::int16_t backStyle;
    std::int16_t borderStyle;
    std::int16_t columns;
    std::int16_t rows;
    std::string caption;
    bool toolbarVisible;
    std::int16_t toolbarAlign;
};

QNComm::PersistedProperties QNComm::ReadAll(const PropertyBag& bag) {
    return {AsLong(bag.ReadProperty("BackColor", DefaultBackColor)),
            AsLong(bag.ReadProperty("ForeColor", DefaultForeColor)),
            AsBoolean(bag.ReadProperty("Enabled", true)),
            AsInteger(bag.ReadProperty("BackStyle", DefaultBackStyle)),
            AsInteger(bag.ReadProperty("BorderStyle", DefaultBorderStyle)),
            AsInteger(bag.ReadProperty("Columns", DefaultSize)),
            AsInteger(bag.ReadProperty("Rows", DefaultSize)),
            AsString(bag.ReadProperty("Caption", Variant(DefaultCaption))),
            AsBoolean(bag.ReadProperty("ToolbarVisible", true)),
            AsInteger(bag.ReadProperty("ToolbarAlign", DefaultToolbarAlign))};
}

void QNComm::UserControl_InitProperties() {
    mParts.host.SetAlign(DockBottom);
    Apply(ReadAll(MemoryPropertyBag()));
    TerminalFont font = mParts.terminal.Font();
    font.name = "Courier";
    mParts.terminal.SetFont(font);
}

void QNComm::Apply(const PersistedProperties& properties) {
    ViewportTerminal& terminal = mParts.terminal;
    Resize(terminal, properties.columns, properties.rows); // the only ones that may be refused
    terminal.SetBackColor(properties.backColor);
    terminal.SetForeColor(properties.foreColor);
    mEnabled = properties.enabled;
    mBackStyle = properties.backStyle;
    mBorderStyle = properties.borderStyle;
    mCaption = properties.caption;
    lblCaption.SetCaption(mCaption);
    mToolbarVisible = properties.toolbarVisible; // the toolbar follows with the next paint
    Toolbar1.SetAlign(properties.toolbarAlign);
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
    const ViewportTerminal& terminal = mParts.terminal;
    bag.WriteProperty("BackColor", terminal.BackColor(), DefaultBackColor);
    bag.WriteProperty("ForeColor", terminal.ForeColor(), DefaultForeColor);
    bag.WriteProperty("Enabled", mEnabled, true);
    bag.WriteProperty("BackStyle", mBackStyle, DefaultBackStyle);
    bag.WriteProperty("BorderStyle", mBorderStyle, DefaultBorderStyle);
    bag.WriteProperty("Columns", terminal.Columns(), DefaultSize);
    bag.WriteProperty("Rows", terminal.Rows(), DefaultSize);
    bag.WriteProperty("Caption", Variant(mCaption), Variant(DefaultCaption));
    bag.WriteProperty("ToolbarVisible", mToolbarVisible, true);
    bag.WriteProperty("ToolbarAlign", Toolbar1.Align(), DefaultToolbarAlign);
    bag.WriteProperty("Font", FontRecord(terminal.Font()), Variant("Courier New"));
}

std::int32_t QNComm::BackColor() const {
    return mParts.terminal.BackColor();
}
void QNComm::SetBackColor(std::int32_t lColor) {
    mParts.terminal.SetBackColor(lColor);
    mParts.host.PropertyChanged("BackColor");
}

std::int32_t QNComm::ForeColor() const {
    return mParts.terminal.ForeColor();
}
void QNComm::SetForeColor(std::int32_t lColor) {
    mParts.terminal.SetForeColor(lColor);
    mParts.host.PropertyChanged("ForeColor");
}

void QNComm::SetBackStyle(std::int16_t iStyle) {
    mBackStyle = iStyle;
    mParts.host.PropertyChanged("BackStyle");
}

void QNComm::SetBorderStyle(std::int16_t iStyle) {
    mBorderStyle = iStyle;
    mParts.host.PropertyChanged("BorderStyle");
}

void QNComm::SetEnabled(bool bEnabled) {
    mEnabled = bEnabled;
    mParts.host.PropertyChanged("Enabled");
}

void QNComm::SetToolbarVisible(bool bVisible) {
    mToolbarVisible = bVisible;
    mParts.host.PropertyChanged("ToolbarVisible");
    Toolbar1.SetVisible(bVisible);
    Refresh();
}

std::int16_t QNComm::ToolbarAlign() const {
    return Toolbar1.Align();
}
void QNComm::SetToolbarAlign(std::int16_t iAlign) {
    Toolbar1.SetAlign(iAlign);
    mParts.host.PropertyChanged("ToolbarAlign");
    Refresh();
}

TerminalFont QNComm::Font() const {
    return mParts.terminal.Font();
}
void QNComm::SetFont(const TerminalFont& font) {
    mParts.terminal.SetFont(font);
    mParts.host.PropertyChanged("Font");
}

std::string QNComm::TerminalFontName() const {
    return mParts.terminal.Font().name;
}
void QNComm::SetTerminalFontName(std::string_view sName) {
    TerminalFont font = mParts.terminal.Font();
    font.name = sName;
    mParts.terminal.SetFont(font);
}

std::string QNComm::TerminalFontSize() const {
    return FontSizeText(mParts.terminal.Font().size);
}
void QNComm::SetTerminalFontSize(std::string_view sSize) {
    TerminalFont font = mParts.terminal.Font();
    font.size = SizeOf(sSize);
    mParts.terminal.SetFont(font);
}

void QNComm::SetHelpFile(std::string_view sPath) {
    mParts.window.SetHelpFile(sPath);
}

} // namespace qncomm
