// The properties: kept in a bag until the control has read them, of the control from then on.

#include "FormOfWidget.h"
#include "QNCommWidgetParts.h"
#include "qt/Charset.h"

#include <QEvent>

namespace qncomm {

QVariant QNCommWidget::Value(std::string_view name) const {
    const Parts& p = *mParts;
    return QVariantOf(p.loaded ? p.assembly->Control().Property(name)
                               : p.bag.ReadProperty(name, QNComm::PropertyNamed(name).byDefault));
}

void QNCommWidget::SetValue(std::string_view name, const QVariant& value) {
    Parts& p = *mParts;
    const Variant wanted = VariantOf(value, QNComm::PropertyNamed(name).type);
    p.bag.mValues.insert_or_assign(std::string(name), wanted);
    if (p.loaded) run([&](QNComm& control) { control.SetProperty(name, wanted); });
}

void QNCommWidget::ResetValue(std::string_view name) {
    SetValue(name, QVariantOf(QNComm::PropertyNamed(name).byDefault));
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

void QNCommWidget::resetEnabled() {
    setEnabled(true);
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
