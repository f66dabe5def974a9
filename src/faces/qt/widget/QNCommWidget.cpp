// How the widget comes into being, is shown, hidden and taken down.

#include "qt/QNCommWidget.h"

#include "FormOfWidget.h"
#include "QNCommWidgetParts.h"
#include "assembly/AllChannelKinds.h"
#include "common/QNError.h"
#include "platform/FileSettings.h"
#include "platform/SystemFiles.h"
#include "qt/Charset.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QResizeEvent>

#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t CancelGraceMs = 150; // in which an operation that hears of it ends by itself
constexpr int CancelCheckMs = 100;
constexpr int BorderWidth = 1;

} // namespace

QNCommWidget::Parts::Parts(QNCommWidget& widget, Mode ownMode)
    : mode(ownMode),
      surroundings(widget),
      services(std::make_shared<QtServices>(&widget)),
      guard(services->desktop) {}

QNCommWidget::QNCommWidget(QWidget* parent) : QNCommWidget(RunMode, parent) {}

QNCommWidget::QNCommWidget(Mode mode, QWidget* parent, ControlAssembly::Options options)
    : QWidget(parent), mParts(std::make_unique<Parts>(*this, mode)) {
    Parts& p = *mParts;
    QtServices& services = *p.services;
    QtReactor& reactor = QtReactor::OfApplication();
    if (options.bindings.List().empty()) options.bindings = PortBindings(AllChannelKinds());
    options.link.opensBeside = true; // a window stands still for no device server
    options.keep = std::make_shared<std::pair<std::shared_ptr<void>, std::shared_ptr<void>>>(
        p.services, options.keep);
    p.assembly = std::make_unique<ControlAssembly>(
        reactor,
        ControlServices{reactor, services.desktop, services.inputs, services.clipboard,
                        services.files, services.launcher, services.forms, SystemFiles()},
        ControlView{p.surroundings, p.surroundings, p.surroundings}, std::move(options));
    QNComm& control = p.assembly->Control();
    p.title = new TitleBar(control.lblCaption, control.cmdClose, p.guard, this);
    p.toolbar = new ToolbarView(control.Toolbar1, p.guard, this);
    p.view = new TerminalView(p.assembly->Grid(), p.assembly->Changes(), p.surroundings, this);
    p.grip = new SizerGrip(this);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFocusProxy(p.view);
    setAutoFillBackground(true);
    connect(p.grip, &SizerGrip::released, this,
            [this](int y) { run([y](QNComm& known) { known.imgSizer_MouseUp(y); }); });
    connect(p.view, &TerminalView::selectionChanged, this, &QNCommWidget::selectionChanged);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { OnFocus(now); });
    ConnectEvents();
    if (mode == DesignMode) Load();
}

QNCommWidget::~QNCommWidget() {
    Parts& p = *mParts;
    p.handlers.clear();
    // These show models of the control, which goes next.
    for (QWidget* part : {static_cast<QWidget*>(p.title), static_cast<QWidget*>(p.toolbar),
                          static_cast<QWidget*>(p.grip)})
        delete part;
    p.title = nullptr;
    p.toolbar = nullptr;
    delete std::exchange(p.view, nullptr);
    p.assembly->Control().CancelOperations(CancelGraceMs);
    p.assembly.reset();
}

void QNCommWidget::ConnectEvents() {
    QNComm& control = mParts->assembly->Control();
    mParts->handlers.push_back(
        control.PortStateEvent.Connect([this](bool& busy) { emit portStateEvent(busy); }));
    mParts->handlers.push_back(control.LiveStateEvent.Connect(
        [this](std::int16_t line, std::int16_t printer, std::int32_t generation) {
            emit liveStateEvent(line, printer, generation);
        }));
    mParts->handlers.push_back(
        control.StatusEvent.Connect([this](std::string& text, std::int16_t progress, bool& cancel) {
            const QPointer<QNCommWidget> self(this);
            const QString told = FromEither(text);
            QString shown = told;
            // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): the widget is there until now
            emit statusEvent(shown, progress, cancel);
            if (shown != told) text = ToHost(shown);
            if (self.isNull() || mParts->cancelAsked) cancel = true;
        }));
}

/// The control reads its properties, which at run time also makes its link.
void QNCommWidget::Load() {
    Parts& p = *mParts;
    if (std::exchange(p.loaded, true)) return;
    QNComm& known = p.assembly->Control();
    if (p.mode == DesignMode) {
        known.UserControl_InitProperties();
        known.UserControl_Show();
        return;
    }
    p.bag.mValues["Enabled"] = !testAttribute(Qt::WA_ForceDisabled);
    run([&p](QNComm& control) {
        control.UserControl_ReadProperties(p.bag);
        if (!p.settings) p.settings = std::make_shared<FileSettings>(FileSettings::DefaultPath());
        auto& bindings = p.assembly->Bindings();
        if (bindings.List().empty()) {
            bindings.AddSettings(*p.settings);
            bindings.AddDevices(FindSerialDevices());
        }
        control.SetRegSettings(p.settings);
    });
    if (!p.address.isEmpty()) setPortAddress(p.address);
}

QNComm& QNCommWidget::control() {
    Load();
    return mParts->assembly->Control();
}

ControlAssembly& QNCommWidget::assembly() {
    return *mParts->assembly;
}

void QNCommWidget::setRegSettings(std::shared_ptr<RegSettings> settings) {
    mParts->settings = std::move(settings);
    if (mParts->loaded && mParts->mode == RunMode)
        run([this](QNComm& known) { known.SetRegSettings(mParts->settings); });
}

QString QNCommWidget::setPortAddress(const QString& sAddress) {
    Parts& p = *mParts;
    const std::string address = ToHost(sAddress);
    if (p.loaded && p.mode == RunMode) {
        const std::int16_t port = p.assembly->Serial().PortNumber();
        return FromHost(p.assembly->Bindings().Give(port, address));
    }
    std::string wrong = PortBindings(p.assembly->Bindings().Kinds()).Give(0, address);
    if (wrong.empty()) p.address = sAddress;
    return FromHost(wrong);
}

// -- Shown and hidden

void QNCommWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (event->spontaneous()) return;
    Load();
    if (QWidget* form = parentWidget()) form->installEventFilter(this);
    DockOnForm(*this, mParts->align);
    PlaceFrame();
    // The window is there first; opening the port may have something to say.
    mParts->showTimer.start(0, this);
}

void QNCommWidget::ShowControl() {
    if (!isVisible() || std::exchange(mParts->active, true)) return;
    run([](QNComm& known) { known.UserControl_Show(); });
}

void QNCommWidget::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (event->spontaneous()) return;
    // Nobody is left to see the end of an operation whose window has closed.
    if (isWindow() || !window()->isVisible()) cancelOperation();
    if (std::exchange(mParts->active, false)) run([](QNComm& known) { known.UserControl_Hide(); });
}

void QNCommWidget::cancelOperation() {
    if (!isBusy()) return;
    mParts->cancelAsked = true;
    mParts->cancelTimer.start(CancelCheckMs, this);
    mParts->assembly->Control().CancelOperations(CancelGraceMs);
}

void QNCommWidget::timerEvent(QTimerEvent* event) {
    if (event->timerId() == mParts->showTimer.timerId()) {
        mParts->showTimer.stop();
        ShowControl();
        return;
    }
    if (event->timerId() != mParts->cancelTimer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    if (isBusy()) { // perhaps with the next of several
        mParts->assembly->Control().CancelOperations(CancelGraceMs);
        return;
    }
    mParts->cancelTimer.stop();
    mParts->cancelAsked = false;
    // The operation may have kept the port when the control was hidden.
    if (!mParts->active) run([](QNComm& known) { known.UserControl_Hide(); });
}

bool QNCommWidget::isBusy() const {
    return mParts->assembly->Control().IsBusy();
}

void QNCommWidget::OnFocus(QWidget* now) {
    Parts& p = *mParts;
    const bool inside = now != nullptr && (now == this || isAncestorOf(now));
    if (std::exchange(p.focused, inside) == inside) return;
    QNComm& known = p.assembly->Control();
    if (inside)
        known.UserControl_EnterFocus();
    else
        known.UserControl_ExitFocus();
}

// -- Where things are

void QNCommWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    mParts->assembly->Control().UserControl_Resize();
}

void QNCommWidget::PlaceFrame() {
    Parts& p = *mParts;
    if (p.view == nullptr || std::exchange(p.placing, true)) return;
    const int border = p.assembly->Control().BorderStyle() == 0 ? 0 : BorderWidth;
    setContentsMargins(border, border, border, border);
    QNComm& known = p.assembly->Control();
    known.UserControl_Paint();
    const QRect inner = contentsRect();
    const int titleHeight = p.surroundings.TitleHeight();
    const int toolbarHeight = p.surroundings.ToolbarHeight();
    p.title->setGeometry(inner.left(), inner.top(), inner.width(), titleHeight);
    const int toolbarTop = known.ToolbarAlign() == ToolbarBottom
                               ? inner.bottom() + 1 - toolbarHeight
                               : inner.top() + titleHeight;
    p.toolbar->setGeometry(inner.left(), toolbarTop, inner.width(), toolbarHeight);
    p.grip->setGeometry(0, 0, width(), SizerGrip::Thickness);
    p.grip->setVisible(p.align == DockBottom);
    p.grip->raise();
    p.placing = false;
}

void QNCommWidget::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (mParts->assembly->Control().BorderStyle() == 0) return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Dark));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

bool QNCommWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parent() && event->type() == QEvent::Resize) DockOnForm(*this, mParts->align);
    return QWidget::eventFilter(watched, event);
}

bool QNCommWidget::event(QEvent* event) {
    // The sizes of title bar and toolbar follow fonts and styles.
    if (event->type() == QEvent::LayoutRequest) PlaceFrame();
    return QWidget::event(event);
}

QSize QNCommWidget::sizeHint() const {
    const Parts& p = *mParts;
    const QSize view = p.view->sizeHint();
    const bool toolbar = p.assembly->Control().Toolbar1.Visible();
    const int frame = p.surroundings.TitleHeight() + (toolbar ? p.surroundings.ToolbarHeight() : 0);
    return {view.width(), p.wantedHeight > 0 ? p.wantedHeight : view.height() + frame};
}

QSize QNCommWidget::minimumSizeHint() const {
    return {0, 0}; // a form may make it as small as it likes
}

} // namespace qncomm
