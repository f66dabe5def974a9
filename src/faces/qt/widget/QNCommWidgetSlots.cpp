// What a host starts.

#include "QNCommWidgetParts.h"
#include "common/QNError.h"
#include "link/clsDataLink.h"
#include "qt/Charset.h"

#include <QMetaMethod>
#include <QPointer>

namespace qncomm {

bool QNCommWidget::run(const std::function<void(QNComm& control)>& action) {
    const QPointer<QNCommWidget> self(this);
    try {
        action(control());
        return !self.isNull();
    } catch (const OperationCancelled&) {
        return false; // the user knows
    } catch (const QNError& known) {
        if (self) self->Report(known);
        return false;
    }
}

void QNCommWidget::Report(const QNError& known) {
    if (isSignalConnected(QMetaMethod::fromSignal(&QNCommWidget::error))) {
        emit error(known.Number(), FromEither(known.Source()), FromEither(known.Description()));
        return;
    }
    const std::shared_ptr<QtServices> services = mParts->services; // the widget may go meanwhile
    services->desktop.ShowMsgBox(
        {.text = known.Description(), .icon = MsgBoxIcon::Critical, .title = {}});
}

void QNCommWidget::connectPrinter() {
    run([](QNComm& control) { control.DoAutoconnect(); });
}

void QNCommWidget::showCommSettings() {
    run([](QNComm& control) { control.ShowCommSettings(); });
}

void QNCommWidget::clear() {
    run([](QNComm& control) { control.Clear(); });
}

void QNCommWidget::copy() {
    run([](QNComm& control) { control.CopyCB(); });
}

void QNCommWidget::copySelection() {
    if (hasSelection()) mParts->surroundings.Copy(mParts->view->SelectedText());
}

void QNCommWidget::paste() {
    run([](QNComm& control) { control.PasteCB(); });
}

void QNCommWidget::sendBreak() {
    run([](QNComm& control) { control.Link().SendBreak(); });
}

void QNCommWidget::sendCtrlC() {
    run([](QNComm& control) { control.Link().SendCtrlC(); });
}

void QNCommWidget::stopProgram() {
    run([](QNComm& control) {
        const auto held = control.Hold();
        control.Link().StopProgram();
    });
}

void QNCommWidget::selectAll() {
    mParts->view->SelectAll();
}

bool QNCommWidget::hasSelection() const {
    return mParts->view->HasSelection();
}

void QNCommWidget::reboot() {
    run([](QNComm& control) { control.Reboot(); });
}

void QNCommWidget::pressToolbarKey(const QString& sKey) {
    run([&](QNComm& control) { control.PressToolbarKey(ToHost(sKey)); });
}

void QNCommWidget::captureToFile(const QString& sPath) {
    run([&](QNComm& control) { control.SetCaptureToFile(ToHost(sPath)); });
}

void QNCommWidget::showSearch() {
    mParts->view->ShowSearch();
}

void QNCommWidget::zoomIn() {
    mParts->view->ZoomBy(1);
}

void QNCommWidget::zoomOut() {
    mParts->view->ZoomBy(-1);
}

void QNCommWidget::zoomReset() {
    mParts->view->ZoomReset();
}

void QNCommWidget::tearDown() {
    run([](QNComm& control) { control.TearDown(); });
}

void QNCommWidget::setTerminalFocus() {
    mParts->surroundings.SetFocus();
}

const QString& QNCommWidget::helpFile() const {
    return mParts->helpFile;
}

} // namespace qncomm
