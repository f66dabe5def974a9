#include "QNCommPlugin.h"

#include "qt/Icons.h"
#include "qt/QNCommWidget.h"

#include <QIcon>

namespace qncomm {

QString QNCommPlugin::name() const {
    return QStringLiteral("qncomm::QNCommWidget");
}

QString QNCommPlugin::group() const {
    return QStringLiteral("QNComm");
}

QString QNCommPlugin::toolTip() const {
    return tr("Terminal and automation of a label printer");
}

QString QNCommPlugin::whatsThis() const {
    return tr("A terminal with a toolbar for a label printer on a serial port, and everything that "
              "a program can have the printer do.");
}

QString QNCommPlugin::includeFile() const {
    return QStringLiteral("qt/QNCommWidget.h");
}

QIcon QNCommPlugin::icon() const {
    // The widget box shows nothing but icons that say which sizes they have.
    const QIcon picture = ProductIcon();
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48})
        icon.addPixmap(picture.pixmap(size));
    return icon;
}

QString QNCommPlugin::domXml() const {
    return QStringLiteral(R"(<ui language="c++" displayname="Printer Control">
  <widget class="qncomm::QNCommWidget" name="printer">
    <property name="geometry">
      <rect><x>0</x><y>0</y><width>640</width><height>400</height></rect>
    </property>
  </widget>
</ui>)");
}

QWidget* QNCommPlugin::createWidget(QWidget* parent) {
    return new QNCommWidget(mDesigning ? QNCommWidget::DesignMode : QNCommWidget::RunMode, parent);
}

void QNCommPlugin::initialize(QDesignerFormEditorInterface* core) {
    mDesigning = core != nullptr;
}

} // namespace qncomm
