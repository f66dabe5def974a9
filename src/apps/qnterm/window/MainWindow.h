#pragma once

#include "CommandLine.h"
#include "SentFiles.h"
#include "SharedChannels.h"

#include "assembly/PortBook.h"
#include "platform/FileSettings.h"

#include <QList>
#include <QMainWindow>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>
#include <optional>
#include <string>

class QDockWidget;
class QStackedWidget;

namespace qncomm {
class QNCommWidget;
class QNError;
class TraceSink;
} // namespace qncomm

namespace qnterm {

class DeviceBrowser;
class LabelView;
class LineRecorder;
class ModuleBrowser;
class Operations;
class PrinterActions;
class SetupBrowser;
class StatusView;
class WelcomePage;

/// The window: the control in the middle, the printer's storage, setup, modules and labels beside
/// it, menus and a status bar. It only puts these together.
class MainWindow final : public QMainWindow {
    Q_OBJECT

  public:
    /// trace may be null; it outlives the application.
    MainWindow(const StartOptions& options, std::shared_ptr<qncomm::FileSettings> store,
               qncomm::TraceSink* trace);
    ~MainWindow() override;

  signals:
    /// The window has closed for good, and the port with it.
    void Closed();

  protected:
    /// Ends what runs first, closes the port, and closes when that is done.
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void BuildCentre(qncomm::TraceSink* trace);
    void BuildDocks();
    void FillDocks();
    void BuildMenus();
    void ConnectParts();

    void Start();
    void ChoosePort();
    void TakeAddress(const std::string& address);
    void UsePort(const qncomm::ChosenPort& port);
    void GiveLabels(const qncomm::ChosenPort& port);
    void EnterPort();
    std::string LabelFolder();
    void ShowPortState();
    void OnLiveState(int line, int printer, int generation);
    void OnIdentified(const QString& model, const QString& firmware);
    void ShowFailure(const QString& title, const qncomm::QNError& error);
    void ShowAbout();
    void AskWhy();
    bool Answered() const;

    StartOptions mOptions;
    std::shared_ptr<qncomm::FileSettings> mStore;
    qncomm::PortBook mBook;
    qncomm::ChosenPort mPort;
    std::shared_ptr<LineRecorder> mRecorder;
    SharedChannels mChannels;
    std::string mLabelFolder; ///< of the virtual printer; empty for other ports
    QString mPrinter;         ///< the model that answered on the port
    int mDoing = 0;           ///< what the printer does: an enumPrinterActivity
    int mGeneration = 0;      ///< of the control, in which mPrinter answered
    SentFiles mSent;
    std::optional<QTemporaryDir> mScratchLabels;
    QTimer mStarting; ///< the window is shown and is about to be filled
    QTimer mEnding;   ///< looks whether what runs has ended, so that the window can close
    bool mStarted = false;
    bool mClosing = false;

    QList<QDockWidget*> mDocks; ///< in the order of their table
    QStackedWidget* mCentre = nullptr;
    WelcomePage* mWelcome = nullptr;
    qncomm::QNCommWidget* mControl = nullptr;
    Operations* mOperations = nullptr;
    PrinterActions* mActions = nullptr;
    DeviceBrowser* mDevices = nullptr;
    SetupBrowser* mSetup = nullptr;
    ModuleBrowser* mModules = nullptr;
    LabelView* mLabels = nullptr;
    StatusView* mStatus = nullptr;
};

} // namespace qnterm
