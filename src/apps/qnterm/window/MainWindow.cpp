#include "MainWindow.h"

#include "AddressDialog.h"
#include "DeviceBrowser.h"
#include "Examination.h"
#include "Icons.h"
#include "LabelView.h"
#include "LineRecorder.h"
#include "LineView.h"
#include "ModuleBrowser.h"
#include "Operations.h"
#include "PrinterActions.h"
#include "SetupBrowser.h"
#include "StatusView.h"
#include "Version.h"
#include "WelcomePage.h"
#include "WhyDialog.h"
#include "WindowMemory.h"

#include "assembly/AllChannelKinds.h"
#include "common/QNError.h"
#include "control/QNComm.h"
#include "link/LiveState.h"
#include "link/clsDataLink.h"
#include "qt/Charset.h"
#include "qt/Icons.h"
#include "qt/QNCommWidget.h"
#include "qt/ShownText.h"
#include "serial/PDQComm.h"
#include "serial/PortListing.h"

#include <QAction>
#include <QCloseEvent>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>

#include <utility>

namespace qnterm {
namespace {

constexpr QSize UsualSize{1180, 760};
constexpr int UsualDockWidth = 400;
constexpr const char* VirtualPrinter = "sim:R7G";

/// What stands beside the terminal, in the order of the window's docks.
struct DockPlace {
    const char* name;
    const char* title;
    const char* keys;
};
constexpr DockPlace DockPlaces[] = {
    {"devices", "&Devices", "Ctrl+Shift+D"}, {"setup", "&Setup", "Ctrl+Shift+S"},
    {"modules", "&Modules", "Ctrl+Shift+M"}, {"labels", "&Labels", "Ctrl+Shift+L"},
    {"line", "Li&ne", "Ctrl+Shift+N"},
};
/// What the printer does, where a person should know.
QString DoingText(int printer) {
    switch (printer) {
    case qncomm::PrinterSilent:
        return MainWindow::tr("silent");
    case qncomm::PrinterRunning:
        return MainWindow::tr("running");
    case qncomm::PrinterAsking:
        return MainWindow::tr("asking");
    case qncomm::PrinterReceiving:
        return MainWindow::tr("receiving");
    case qncomm::PrinterRebooting:
        return MainWindow::tr("restarting");
    default:
        return {};
    }
}
constexpr int LeastDockCharacters = 54; // the width at which all the docks' tabs are readable
constexpr int EndingPollMs = 20;

} // namespace

MainWindow::MainWindow(const StartOptions& options, std::shared_ptr<qncomm::FileSettings> store,
                       qncomm::TraceSink* trace)
    : mOptions(options),
      mStore(std::move(store)),
      mBook(mStore, qncomm::AllChannelKinds()),
      mSent(mStore) {
    mPort = mBook.Choose(options.port.toStdString());
    setWindowTitle(tr("QNComm Terminal"));
    BuildCentre(trace);
    BuildDocks();
    BuildMenus();
    ConnectParts();
    resize(UsualSize);
    if (!RestoreWindow(*this, *mStore)) {
        resizeDocks({mDocks.front()}, {UsualDockWidth}, Qt::Horizontal);
        mDocks.front()->raise();
    }
}

MainWindow::~MainWindow() = default;

void MainWindow::BuildCentre(qncomm::TraceSink* trace) {
    // While none is chosen the control is set to the virtual printer: nothing of this machine is
    // touched.
    const qncomm::ChosenPort port = mPort ? mPort : mBook.Choose(VirtualPrinter);
    GiveLabels(port);
    qncomm::ControlAssembly::Options options;
    options.bindings = mBook.Bindings();
    options.link = {.remembered = true,
                    .spoil = true,
                    .listen = true,
                    .addressOf = [this](std::int16_t number) { return mBook.AddressOf(number); }};
    mRecorder = std::make_shared<LineRecorder>(trace);
    options.trace = mRecorder.get();
    options.keep = mRecorder;
    options.factory = mChannels.Factory();
    mControl = new qncomm::QNCommWidget(qncomm::QNCommWidget::RunMode, nullptr, std::move(options));
    mControl->setRegSettings(mBook.SettingsFor(port));
    mOperations = new Operations(mControl->control(),
                                 {.any = [this] { return mControl->isBusy(); },
                                  .cancel = [this] { mControl->cancelOperation(); }},
                                 this);
    mWelcome = new WelcomePage;
    connect(mWelcome, &WelcomePage::ChooseWanted, this, &MainWindow::ChoosePort);
    mCentre = new QStackedWidget;
    mCentre->addWidget(new QWidget); // until it is known what belongs here
    mCentre->addWidget(mWelcome);
    mCentre->addWidget(mControl);
    setCentralWidget(mCentre);
    mStatus = new StatusView(*statusBar(), *mOperations);
}

/// The docks are there from the start, so that the window comes up as it was left; what they hold
/// is made once the window is shown.
void MainWindow::BuildDocks() {
    setDockNestingEnabled(true);
    for (const DockPlace& place : DockPlaces) {
        auto* dock = new QDockWidget(tr(place.title).remove(QLatin1Char('&')), this);
        dock->setObjectName(QString::fromLatin1(place.name));
        dock->setMinimumWidth(LeastDockCharacters * fontMetrics().averageCharWidth());
        addDockWidget(Qt::RightDockWidgetArea, dock);
        if (!mDocks.isEmpty()) tabifyDockWidget(mDocks.front(), dock);
        mDocks.append(dock);
    }
}

void MainWindow::FillDocks() {
    mDevices = new DeviceBrowser(*mOperations, mSent);
    mSetup = new SetupBrowser(*mOperations);
    mModules = new ModuleBrowser(*mOperations);
    mLabels = new LabelView;
    auto* line = new LineView(mRecorder);
    QWidget* const contents[] = {mDevices, mSetup, mModules, mLabels, line};
    for (qsizetype i = 0; i < mDocks.size(); ++i)
        mDocks[i]->setWidget(contents[i]);
    connect(mModules, &ModuleBrowser::Uploaded, mDevices, &DeviceBrowser::Update);
    connect(line, &LineView::WatchWanted, mActions, &PrinterActions::Watch);
    connect(mLabels, &LabelView::Printed, this,
            [this] { mStatus->Say(tr("A label has been printed.")); });
    mDevices->setEnabled(false);
    mDevices->Empty();
    mSetup->setEnabled(false);
    mSetup->Empty();
    mModules->SetHasPort(false);
}

void MainWindow::BuildMenus() {
    mActions = new PrinterActions(*mOperations, this);
    mActions->AddMenus(*menuBar());
    auto* view = new QMenu(tr("&View"), this);
    menuBar()->insertMenu(mActions->HelpMenu(), view);
    const auto add = [this, view](const char* title, const char* keys, auto go) {
        auto* action = new QAction(tr(title), this);
        action->setShortcut(QKeySequence(QString::fromLatin1(keys)));
        connect(action, &QAction::triggered, this, go);
        addAction(action);
        view->addAction(action);
    };
    add("&Terminal", "Ctrl+Shift+E", [this] { mCentre->currentWidget()->setFocus(); });
    for (qsizetype i = 0; i < mDocks.size(); ++i) {
        add(DockPlaces[i].title, DockPlaces[i].keys, [dock = mDocks[i]] {
            dock->show();
            dock->raise();
            dock->widget()->setFocus();
        });
    }
}

void MainWindow::ConnectParts() {
    mStarting.setSingleShot(true);
    connect(&mStarting, &QTimer::timeout, this, &MainWindow::Start);
    mEnding.setSingleShot(true);
    mEnding.setInterval(EndingPollMs);
    connect(&mEnding, &QTimer::timeout, this, &QWidget::close);
    connect(mOperations, &Operations::Failed, this, &MainWindow::ShowFailure);
    connect(mActions, &PrinterActions::Identified, this, &MainWindow::OnIdentified);
    connect(mActions, &PrinterActions::ChoosePortWanted, this, &MainWindow::ChoosePort);
    connect(mActions, &PrinterActions::QuitWanted, this, &QWidget::close);
    connect(mActions, &PrinterActions::AboutWanted, this, &MainWindow::ShowAbout);
    connect(mActions, &PrinterActions::Said, mStatus, &StatusView::Say);
    connect(mActions, &PrinterActions::WhyWanted, this, &MainWindow::AskWhy);
    connect(mStatus, &StatusView::WhyWanted, this, &MainWindow::AskWhy);
    connect(mActions, &PrinterActions::Watching, this, [this] {
        mDocks.back()->show();
        mDocks.back()->raise();
    });
    connect(mActions, &PrinterActions::BreakWanted, mControl, &qncomm::QNCommWidget::sendBreak);
    connect(mActions, &PrinterActions::CtrlCWanted, mControl, &qncomm::QNCommWidget::sendCtrlC);
    connect(mControl, &qncomm::QNCommWidget::portStateEvent, this, &MainWindow::ShowPortState);
    connect(mControl, &qncomm::QNCommWidget::liveStateEvent, this, &MainWindow::OnLiveState);
    connect(mControl, &qncomm::QNCommWidget::error, this,
            [this](int number, const QString& source, const QString& description) {
                ShowFailure(
                    {}, qncomm::QNError(number, source.toStdString(), description.toStdString()));
            });
    ShowPortState();
}

/// The window comes up first; then it is filled and connects.
void MainWindow::paintEvent(QPaintEvent* event) {
    QMainWindow::paintEvent(event);
    if (std::exchange(mStarted, true)) return;
    mStarting.start();
}

/// Opens the port that was named or configured, or asks for one.
void MainWindow::Start() {
    setWindowIcon(qncomm::ProductIcon());
    FillDocks();
    if (mPort) {
        EnterPort();
        return;
    }
    mCentre->setCurrentWidget(mWelcome);
    if (!mPort.message.empty()) mStatus->Say(QString::fromStdString(mPort.message));
    ChoosePort();
}

void MainWindow::ChoosePort() {
    auto* dialog = new AddressDialog(qncomm::ListPorts(mBook.Bindings()), mPort.address, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &AddressDialog::Chosen, this, &MainWindow::TakeAddress, Qt::QueuedConnection);
    dialog->open();
}

void MainWindow::TakeAddress(const std::string& address) {
    qncomm::ChosenPort port = mBook.Choose(address);
    try {
        if (port) port = mBook.Remember(port);
    } catch (const qncomm::QNError& error) { // it is used all the same, but not remembered
        ShowFailure(tr("Remember the port"), error);
    }
    if (port)
        UsePort(port);
    else
        mStatus->Say(QString::fromStdString(port.message));
}

/// Where the virtual printer's labels go; made when it is asked for.
std::string MainWindow::LabelFolder() {
    if (!mOptions.labels.isEmpty()) return mOptions.labels.toStdString();
    if (!mScratchLabels) mScratchLabels.emplace();
    return mScratchLabels->path().toStdString();
}

void MainWindow::GiveLabels(const qncomm::ChosenPort& port) {
    mLabelFolder =
        qncomm::IsVirtual(port.address) ? mBook.GiveLabels(port, LabelFolder()) : std::string();
}

/// Sets the control to another port.
void MainWindow::UsePort(const qncomm::ChosenPort& port) {
    mPort = port;
    GiveLabels(port);
    mCentre->setCurrentWidget(mWelcome); // the control gives the former port back
    qncomm::QNComm& control = mControl->control();
    mControl->assembly().Bindings() = mBook.Bindings();
    qncomm::MemoryPropertyBag looks;
    control.UserControl_WriteProperties(looks);
    control.UserControl_ReadProperties(looks); // forgets what was known of the former printer
    control.SetRegSettings(mBook.SettingsFor(port));
    EnterPort();
}

/// Shows the control, which opens its port, and finds out what is there.
void MainWindow::EnterPort() {
    mPrinter.clear();
    mDevices->setEnabled(true);
    mDevices->Empty();
    mSetup->setEnabled(true);
    mSetup->Empty();
    mModules->SetHasPort(true);
    mLabels->SetFolder(QString::fromStdString(mLabelFolder));
    mCentre->setCurrentWidget(mControl);
    mActions->SetHasPort(true);
    ShowPortState();
    mControl->setTerminalFocus(); // first: while the printer is asked a user may go elsewhere
    if (const QString watched = std::exchange(mOptions.watch, {}); !watched.isEmpty())
        mActions->WatchAt(watched); // the port that the program was started for, and no other
    else
        mActions->Connect();
}

void MainWindow::ShowPortState() {
    PortFacts facts;
    if (mPort) {
        const qncomm::PDQComm& serial = mControl->assembly().Serial();
        facts.open = serial.PortOpen();
        facts.name = QString::fromStdString(mPort.address);
        facts.printer = mPrinter;
        facts.settings = QString::fromStdString(mControl->control().Link().SettingsText());
        facts.doing = DoingText(mDoing);
        facts.answered = Answered();
        if (!facts.open && serial.LastFailure())
            facts.failure = QString::fromStdString(serial.LastFailure()->description);
    }
    mStatus->ShowPort(facts);
}

/// Whether the printer on the chosen port has told its name and has not fallen silent since.
bool MainWindow::Answered() const {
    return mControl->assembly().Serial().PortOpen() && !mPrinter.isEmpty()
           && mDoing != qncomm::PrinterSilent;
}

void MainWindow::AskWhy() {
    const auto examined = Examine({*mOperations, *mControl, mChannels}, mPort, mBook);
    if (!examined || mClosing) return;
    auto* dialog = new WhyDialog(*examined, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &WhyDialog::AgainWanted, this, &MainWindow::AskWhy, Qt::QueuedConnection);
    dialog->open();
}

/// A printer that may be another is called by no name until it has told its own.
void MainWindow::OnLiveState(int /*line*/, int printer, int generation) {
    mDoing = printer;
    if (std::exchange(mGeneration, generation) != generation && !mPrinter.isEmpty()) {
        mPrinter.clear();
        setWindowTitle(tr("QNComm Terminal"));
    }
    ShowPortState();
}

void MainWindow::OnIdentified(const QString& model, const QString& firmware) {
    mPrinter = model;
    setWindowTitle(tr("%1, %2 – QNComm Terminal").arg(model, firmware));
    ShowPortState();
    mDevices->Refresh();
    mStatus->Say(tr("Connected to %1, %2.").arg(model, firmware));
}

/// Tells the user why an operation failed, in a box that blocks nothing.
void MainWindow::ShowFailure(const QString& title, const qncomm::QNError& error) {
    if (mClosing) return;
    QMessageBox* box =
        qncomm::NewBox(QMessageBox::Warning, windowTitle(), qncomm::FromEither(error.Description()),
                       QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QString detail = title;
    if (error.Number() != 0)
        detail = tr("%1: error %2 from %3")
                     .arg(title.isEmpty() ? tr("QNComm") : title)
                     .arg(error.Number())
                     .arg(QString::fromStdString(error.Source()));
    box->setInformativeText(qncomm::TextOfATip(detail));
    if (mPort && !Answered())
        connect(box->addButton(tr("Wh&y?"), QMessageBox::ActionRole), &QPushButton::clicked, this,
                &MainWindow::AskWhy, Qt::QueuedConnection);
    box->open();
}

void MainWindow::ShowAbout() {
    QMessageBox* box =
        qncomm::NewBox(QMessageBox::NoIcon, tr("About qnterm"),
                       tr("QNComm Terminal %1").arg(QLatin1String(Version)), QMessageBox::Ok, this);
    box->setIconPixmap(windowIcon().pixmap(64, 64));
    box->setInformativeText(tr("Korvane Quorin Communications Control: a terminal for label "
                               "printers that are programmed in Quorin, with their files, setup, "
                               "program modules and labels beside it."));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!mClosing) KeepWindow(*this, *mStore);
    mClosing = true;
    mOperations->Shut();
    if (!mOperations->Busy()) {
        mControl->tearDown(); // closes the port
        event->accept();
        emit Closed();
        return;
    }
    // What waits is on the stack below this event: hidden, the control cancels it, and the window
    // closes when it is over.
    event->ignore();
    hide();
    mEnding.start();
}

} // namespace qnterm
