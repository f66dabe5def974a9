#include "WidgetSurroundings.h"

#include "FormOfWidget.h"
#include "QNCommWidgetParts.h"
#include "common/QNError.h"
#include "qt/Charset.h"
#include "qt/ErrorBox.h"
#include "qt/PopUpMenuView.h"

#include <QAction>
#include <QCursor>
#include <QMenu>
#include <QMetaMethod>
#include <QPointer>

namespace qncomm {

// -- ControlHost

bool QNCommWidget::Surroundings::UserMode() const {
    return mWidget.mParts->mode == RunMode;
}

void QNCommWidget::Surroundings::PropertyChanged(std::string_view sName) {
    mWidget.OnPropertyChanged(sName);
}

void QNCommWidget::Surroundings::SetAlign(std::int16_t iAlign) {
    mWidget.setAlign(iAlign);
}

void QNCommWidget::Surroundings::SetVisible(bool bVisible) {
    mWidget.setVisible(bVisible);
}

std::int32_t QNCommWidget::Surroundings::Height() const {
    return mWidget.height();
}

void QNCommWidget::Surroundings::SetHeight(std::int32_t lHeight) {
    if (SetHeightOnForm(mWidget, mWidget.mParts->align, lHeight)) return;
    mWidget.mParts->wantedHeight = lHeight;
    // A terminal takes all the room there is until a user wants it otherwise; a policy that the
    // form's author chose stays.
    QSizePolicy policy = mWidget.sizePolicy();
    if (policy.verticalPolicy() == QSizePolicy::Expanding)
        policy.setVerticalPolicy(QSizePolicy::Preferred);
    mWidget.setSizePolicy(policy);
    mWidget.updateGeometry();
}

std::int32_t QNCommWidget::Surroundings::ParentScaleHeight() const {
    return FormHeight(mWidget);
}

std::vector<std::shared_ptr<ContainerControl>> QNCommWidget::Surroundings::ParentControls() {
    return ControlsOfForm(mWidget);
}

// -- ControlWindow

std::int32_t QNCommWidget::Surroundings::ScaleWidth() const {
    return mWidget.contentsRect().width();
}

std::int32_t QNCommWidget::Surroundings::ScaleHeight() const {
    return mWidget.contentsRect().height();
}

std::int32_t QNCommWidget::Surroundings::TitleHeight() const {
    return mWidget.mParts->title == nullptr ? 0 : mWidget.mParts->title->sizeHint().height();
}

std::int32_t QNCommWidget::Surroundings::ToolbarHeight() const {
    return mWidget.mParts->toolbar == nullptr ? 0 : mWidget.mParts->toolbar->sizeHint().height();
}

std::int32_t QNCommWidget::Surroundings::RowHeight() const {
    return mWidget.mParts->view == nullptr ? 0 : mWidget.mParts->view->RowHeight();
}

void QNCommWidget::Surroundings::Repaint() {
    mWidget.PlaceFrame();
}

void QNCommWidget::Surroundings::ShowPopUpMenu(const PopUpMenu& menu) {
    Parts& p = *mWidget.mParts;
    const bool underMouse = p.view->rect().contains(p.view->mapFromGlobal(QCursor::pos()));
    const QPoint place = underMouse
                             ? QCursor::pos()
                             : p.view->viewport()->mapToGlobal(p.view->CursorRect().bottomLeft());
    QMenu* shown = ShowMenu(menu, mWidget, place, [widget = &mWidget](std::int16_t index) {
        widget->run([index](QNComm& control) { control.mnuPopUp_Click(index); });
    });
    if (!p.view->HasSelection()) return;
    auto* copy = new QAction(tr("Copy &Selection"), shown);
    connect(copy, &QAction::triggered, &mWidget, &QNCommWidget::copySelection);
    shown->insertAction(shown->actions().value(0), copy);
}

void QNCommWidget::Surroundings::SetHelpFile(std::string_view sPath) {
    mWidget.mParts->helpFile = FromHost(sPath);
}

// -- TerminalScreen

void QNCommWidget::Surroundings::SetFocus() {
    if (mWidget.mParts->view != nullptr) mWidget.mParts->view->setFocus(Qt::OtherFocusReason);
}

void QNCommWidget::Surroundings::Move(const Rectangle& place) {
    TerminalView* view = mWidget.mParts->view;
    if (view == nullptr) return;
    const QPoint corner = mWidget.contentsRect().topLeft();
    view->setGeometry(QRect(place.left, place.top, place.width, place.height).translated(corner));
}

void QNCommWidget::Surroundings::Changed() {
    if (mWidget.mParts->view != nullptr) mWidget.mParts->view->GridChanged();
}

void QNCommWidget::Surroundings::CaptureFailed(const std::string& sPath,
                                               const std::string& sReason) {
    const QPointer<QNCommWidget> widget(&mWidget);
    emit mWidget.captureFailed(FromHost(sPath), FromHost(sReason));
    if (widget && !widget->isSignalConnected(QMetaMethod::fromSignal(&QNCommWidget::captureFailed)))
        ShowError(widget,
                  std::make_exception_ptr(QNError(0, "QNComm", sPath + ": " + sReason + ".")));
}

// -- TerminalInput

bool QNCommWidget::Surroundings::KeyDown(const KeyStroke& stroke) {
    std::int16_t code = stroke.code;
    const bool there =
        mWidget.run([&](QNComm& control) { control.PDQComm1_KeyDown(code, stroke.shift); });
    return there && code != 0;
}

void QNCommWidget::Surroundings::FunctionKey(std::int32_t lKey) {
    mWidget.pressToolbarKey(QStringLiteral("F%1").arg(lKey));
}

bool QNCommWidget::Surroundings::Type(std::string_view sBytes) {
    return mWidget.mParts->assembly->Viewport().Type(sBytes) == sBytes.size();
}

void QNCommWidget::Surroundings::MenuAsked() {
    mWidget.run([](QNComm& control) { control.PDQComm1_MouseDown(2); });
}

void QNCommWidget::Surroundings::Copy(std::string_view sText) {
    mWidget.mParts->services->clipboard.SetText(sText);
}

void QNCommWidget::Surroundings::Paste() {
    mWidget.paste();
}

void QNCommWidget::Surroundings::Break() {
    mWidget.sendBreak();
}

} // namespace qncomm
