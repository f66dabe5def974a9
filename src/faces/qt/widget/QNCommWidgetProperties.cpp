// The properties: kept in a bag until the control has read them, of the control from then on.

#include "FormOfWidget.h"
#include "QNCommWidgetParts.h"
#include "qt/Charset.h"

#include <QEvent>

#include <algorithm>
#include <array>

namespace qncomm {
namespace {

struct Default {
    std::string_view name;
    Variant value;
};

/// What a property is that nobody has set.
const Variant& DefaultOf(std::string_view name) {
    static const std::array<Default, 11> defaults{{
        {"BackColor", std::int32_t{15}},
        {"ForeColor", std::int32_t{0}},
        {"Enabled", true},
        {"BackStyle", std::int16_t{1}},
        {"BorderStyle", std::int16_t{0}},
        {"Columns", std::int16_t{300}},
        {"Rows", std::int16_t{300}},
        {"Caption", Variant("Terminal")},
        {"ToolbarVisible", true},
        {"ToolbarAlign", std::int16_t{ToolbarTop}},
        {"Font", FontRecord({"Courier New", 10.0F})},
    }};
    return std::ranges::find(defaults, name, &Default::name)->value;
}

std::int16_t Small(int value) {
    return static_cast<std::int16_t>(std::clamp(value, -32768, 32767));
}

using Apply = void (*)(QNComm& control, const Variant& value);

struct RunTimeProperty {
    std::string_view name;
    Apply apply;
};

/// What setting a property does to a control that runs; the others count from the next reading on.
constexpr std::array<RunTimeProperty, 8> RunTimeProperties{{
    {"BackColor",
     [](QNComm& control, const Variant& value) { control.SetBackColor(AsLong(value)); }},
    {"ForeColor",
     [](QNComm& control, const Variant& value) { control.SetForeColor(AsLong(value)); }},
    {"BackStyle",
     [](QNComm& control, const Variant& value) { control.SetBackStyle(AsInteger(value)); }},
    {"BorderStyle",
     [](QNComm& control, const Variant& value) { control.SetBorderStyle(AsInteger(value)); }},
    {"Caption",
     [](QNComm& control, const Variant& value) { control.lblCaption.SetCaption(AsString(value)); }},
    {"ToolbarVisible",
     [](QNComm& control, const Variant& value) { control.SetToolbarVisible(AsBoolean(value)); }},
    {"ToolbarAlign",
     [](QNComm& control, const Variant& value) { control.SetToolbarAlign(AsInteger(value)); }},
    {"Font", [](QNComm& control, const Variant& value) { control.SetFont(AsFont(value)); }},
}};

} // namespace

Variant QNCommWidget::Property(std::string_view name) const {
    const Parts& p = *mParts;
    if (!p.loaded) return p.bag.ReadProperty(name, DefaultOf(name));
    if (name == "Caption") return Variant(p.assembly->Control().lblCaption.Caption());
    MemoryPropertyBag now;
    p.assembly->Control().UserControl_WriteProperties(now);
    return now.ReadProperty(name, DefaultOf(name));
}

void QNCommWidget::SetProperty(std::string_view name, const Variant& value) {
    Parts& p = *mParts;
    p.bag.SetValue(name, value);
    if (!p.loaded) return;
    const auto known = std::ranges::find(RunTimeProperties, name, &RunTimeProperty::name);
    if (known != RunTimeProperties.end())
        run([&](QNComm& control) { known->apply(control, value); });
    else if (p.mode == DesignMode)
        run([&](QNComm& control) { control.UserControl_ReadProperties(BagOfNow()); });
}

/// What is set now, as a form under design keeps it.
QtPropertyBag QNCommWidget::BagOfNow() const {
    QtPropertyBag bag;
    mParts->assembly->Control().UserControl_WriteProperties(bag);
    for (const char* name : {"Columns", "Rows", "Caption"})
        if (const auto set = mParts->bag.mValues.find(name); set != mParts->bag.mValues.end())
            bag.SetValue(name, set->second);
    return bag;
}

void QNCommWidget::OnPropertyChanged(std::string_view name) {
    const QNComm& known = mParts->assembly->Control();
    if (name == "Enabled") setEnabled(known.Enabled());
    if (name == "BackStyle") setAutoFillBackground(known.BackStyle() != 0);
    if (name == "BorderStyle") {
        PlaceFrame();
        update();
    }
    emit propertyChanged(FromHost(name));
}

void QNCommWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::EnabledChange || !mParts->loaded) return;
    QNComm& known = mParts->assembly->Control();
    const bool enabled = !testAttribute(Qt::WA_ForceDisabled);
    if (known.Enabled() != enabled) known.SetEnabled(enabled);
}

int QNCommWidget::backColor() const {
    return AsLong(Property("BackColor"));
}
void QNCommWidget::setBackColor(int lColor) {
    SetProperty("BackColor", std::int32_t{lColor});
}
void QNCommWidget::resetBackColor() {
    SetProperty("BackColor", DefaultOf("BackColor"));
}

int QNCommWidget::foreColor() const {
    return AsLong(Property("ForeColor"));
}
void QNCommWidget::setForeColor(int lColor) {
    SetProperty("ForeColor", std::int32_t{lColor});
}
void QNCommWidget::resetForeColor() {
    SetProperty("ForeColor", DefaultOf("ForeColor"));
}

void QNCommWidget::resetEnabled() {
    setEnabled(true);
}

int QNCommWidget::backStyle() const {
    return AsInteger(Property("BackStyle"));
}
void QNCommWidget::setBackStyle(int iStyle) {
    SetProperty("BackStyle", Small(iStyle));
}
void QNCommWidget::resetBackStyle() {
    SetProperty("BackStyle", DefaultOf("BackStyle"));
}

int QNCommWidget::borderStyle() const {
    return AsInteger(Property("BorderStyle"));
}
void QNCommWidget::setBorderStyle(int iStyle) {
    SetProperty("BorderStyle", Small(iStyle));
}
void QNCommWidget::resetBorderStyle() {
    SetProperty("BorderStyle", DefaultOf("BorderStyle"));
}

int QNCommWidget::columns() const {
    return AsInteger(Property("Columns"));
}
void QNCommWidget::setColumns(int iColumns) {
    SetProperty("Columns", Small(iColumns));
}
void QNCommWidget::resetColumns() {
    SetProperty("Columns", DefaultOf("Columns"));
}

int QNCommWidget::rows() const {
    return AsInteger(Property("Rows"));
}
void QNCommWidget::setRows(int iRows) {
    SetProperty("Rows", Small(iRows));
}
void QNCommWidget::resetRows() {
    SetProperty("Rows", DefaultOf("Rows"));
}

QString QNCommWidget::caption() const {
    return FromHost(AsString(Property("Caption")));
}
void QNCommWidget::setCaption(const QString& sCaption) {
    SetProperty("Caption", Variant(ToHost(sCaption)));
}
void QNCommWidget::resetCaption() {
    SetProperty("Caption", DefaultOf("Caption"));
}

bool QNCommWidget::toolbarVisible() const {
    return AsBoolean(Property("ToolbarVisible"));
}
void QNCommWidget::setToolbarVisible(bool bVisible) {
    SetProperty("ToolbarVisible", bVisible);
}
void QNCommWidget::resetToolbarVisible() {
    SetProperty("ToolbarVisible", DefaultOf("ToolbarVisible"));
}

int QNCommWidget::toolbarAlign() const {
    return AsInteger(Property("ToolbarAlign"));
}
void QNCommWidget::setToolbarAlign(int iAlign) {
    SetProperty("ToolbarAlign", Small(iAlign));
}
void QNCommWidget::resetToolbarAlign() {
    SetProperty("ToolbarAlign", DefaultOf("ToolbarAlign"));
}

QFont QNCommWidget::terminalFont() const {
    if (mParts->loaded) return FontOf(mParts->assembly->Control().Font());
    return qvariant_cast<QFont>(mParts->bag.Value("Font", DefaultOf("Font")));
}
void QNCommWidget::setFont(const QFont& font) {
    SetProperty("Font", FontRecord(TerminalFontOf(font)));
}
void QNCommWidget::resetFont() {
    SetProperty("Font", DefaultOf("Font"));
}

int QNCommWidget::align() const {
    return mParts->align;
}
void QNCommWidget::setAlign(int iAlign) {
    Parts& p = *mParts;
    const bool known = iAlign == DockTop || iAlign == DockBottom;
    p.align = known ? static_cast<DockAlign>(iAlign) : DockNone;
    DockOnForm(*this, p.align);
    PlaceFrame();
}

} // namespace qncomm
