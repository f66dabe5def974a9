#pragma once

#include <QList>
#include <QObject>
#include <QString>

class QAction;
class QMenuBar;
class QWidget;

namespace qncomm {
struct SearchReport;
} // namespace qncomm

namespace qnterm {

class Operations;
struct MenuEntry;

/// What a user does with the printer as a whole: the menus over the control's surface. Entries
/// that need the printer are enabled while a port is chosen and nothing runs.
class PrinterActions final : public QObject {
    Q_OBJECT

  public:
    /// Both outlive this object; dialogs are shown over the window.
    PrinterActions(Operations& operations, QWidget* window);

    /// Adds the menus to the bar, and to the window the actions, so that their shortcuts count.
    void AddMenus(QMenuBar& bar);

    /// The entry of the bar before which menus of the window itself belong.
    QAction* HelpMenu() const { return mHelp; }

    /// Whether there is a port to work on.
    void SetHasPort(bool bHasPort);

    /// Finds out which printer answers on the port and reports it by Identified.
    void Connect();

    // What the menus' entries do.

    void Find();
    void Identify();
    /// Asks for settings of the line and listens at them; nothing is sent.
    void Watch();
    /// Listens at these settings, such as "9600,n,8,2"; nothing is sent.
    void WatchAt(const QString& sSettings);
    void FreeMemory();
    void Reboot();
    void Format();
    void ChangeDevice();
    void NewProgram();
    void RunProgram();
    void StopProgram();
    void CheckProgram();
    void SaveListing();
    /// Presses a button of the control's toolbar.
    void Press(const char* sKey);

  signals:
    /// The model and firmware that answered.
    void Identified(const QString& sModel, const QString& sFirmware);
    void ChoosePortWanted();
    void QuitWanted();
    void AboutWanted();
    /// The line is listened to: what comes is to be shown.
    void Watching();
    /// The user wants to know why no printer answers.
    void WhyWanted();
    /// A break, or the character that ends a program, whatever runs.
    void BreakWanted();
    void CtrlCWanted();
    /// A message for the user.
    void Said(const QString& sText);

  private:
    QAction* AddEntry(const MenuEntry& entry);
    void FindAllTheSame();
    void TellOf(const qncomm::SearchReport& search);
    void Enable();

    Operations& mOperations;
    QWidget* mWindow;
    QList<QAction*> mNeedPrinter; ///< actions that need a port and nothing running
    QList<QAction*> mNeedIdle;    ///< actions that need nothing running
    QList<QAction*> mNeedPort;    ///< actions that need a port alone
    QAction* mHelp = nullptr;
    bool mHasPort = false;
};

} // namespace qnterm
