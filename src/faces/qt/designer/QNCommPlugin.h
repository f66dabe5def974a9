#pragma once

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace qncomm {

/// The control in Designer's widget box.
class QNCommPlugin final : public QObject, public QDesignerCustomWidgetInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QDesignerCustomWidgetInterface_iid)
    Q_INTERFACES(QDesignerCustomWidgetInterface)

  public:
    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    /// What a form's generated code includes.
    QString includeFile() const override;
    QIcon icon() const override;
    QString domXml() const override;
    bool isContainer() const override { return false; }

    /// A control for its parent to own: one that is being designed inside a form editor, one that
    /// runs in a program that loads a finished form.
    QWidget* createWidget(QWidget* parent) override;

    bool isInitialized() const override { return mDesigning; }
    /// Called by form editors alone; a loader of finished forms does not.
    void initialize(QDesignerFormEditorInterface* core) override;

  private:
    bool mDesigning = false;
};

} // namespace qncomm
