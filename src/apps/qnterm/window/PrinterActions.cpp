#include "PrinterActions.h"

#include "Ask.h"
#include "Icons.h"
#include "Operations.h"

#include "control/QNComm.h"
#include "link/SearchReport.h"
#include "link/clsDataLink.h"
#include "qt/Charset.h"
#include "serial/LineSettings.h"

#include <QAction>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>

namespace qnterm {
/// What an entry needs to be enabled.
enum class Needs { Nothing, Idle, Port, Printer };

/// One entry of the menus. A row without a text is a line between others.
struct MenuEntry {
    const char* menu;
    const char* icon;
    const char* text;
    const char* tip;
    /// With Ctrl and Shift, as the terminal leaves these keys to the window.
    const char* keys;
    Needs needs;
    void (*act)(PrinterActions&);
};

namespace {

using Actions = PrinterActions;

constexpr MenuEntry Entries[] = {
    {"&File", "port", "&Choose Printer…", "Choose where the printer is", "Ctrl+Shift+O",
     Needs::Idle, [](Actions& a) { emit a.ChoosePortWanted(); }},
    {"&File", "capture", "Ca&pture to File…", "Write what the terminal shows to a file, too",
     "Ctrl+Shift+T", Needs::Printer, [](Actions& a) { a.Press("DownloadA"); }},
    {"&File", "", "", "", "", Needs::Nothing, nullptr},
    {"&File", "quit", "&Quit", "Close the port and end", "Ctrl+Shift+Q", Needs::Nothing,
     [](Actions& a) { emit a.QuitWanted(); }},

    {"&Edit", "copy", "&Copy Screen", "Put the terminal's text on the clipboard", "", Needs::Idle,
     [](Actions& a) { a.Press("Copy"); }},
    {"&Edit", "paste", "&Paste", "Send the clipboard's text to the printer", "", Needs::Printer,
     [](Actions& a) { a.Press("Paste"); }},
    {"&Edit", "clear", "C&lear Screen", "Empty the terminal", "Ctrl+Shift+K", Needs::Idle,
     [](Actions& a) { a.Press("Clear"); }},
    {"&Edit", "", "", "", "", Needs::Nothing, nullptr},
    {"&Edit", "keys", "&Function Keys…", "Say what F1 to F8 of the toolbar do", "", Needs::Idle,
     [](Actions& a) { a.Press("FunctionkeysSetup"); }},

    {"&Printer", "find", "&Find Printer", "Search the printer's settings on this port",
     "Ctrl+Shift+P", Needs::Printer, [](Actions& a) { a.Find(); }},
    {"&Printer", "settings", "Port &Settings…", "Baud rate, format and flow control", "",
     Needs::Printer, [](Actions& a) { a.Press("CommSettings"); }},
    {"&Printer", "", "&Watch the Line…", "Listen at settings of your choice and send nothing", "",
     Needs::Printer, [](Actions& a) { a.Watch(); }},
    {"&Printer", "info", "&Identify", "Ask for model and firmware", "Ctrl+Shift+I", Needs::Printer,
     [](Actions& a) { a.Identify(); }},
    {"&Printer", "", "Wh&y No Printer…", "Look why no printer answers; nothing is changed",
     "Ctrl+Shift+Y", Needs::Printer, [](Actions& a) { emit a.WhyWanted(); }},
    {"&Printer", "", "", "", "", Needs::Nothing, nullptr},
    {"&Printer", "", "Change &Device…", "Make a device the current one", "", Needs::Printer,
     [](Actions& a) { a.ChangeDevice(); }},
    {"&Printer", "delete", "F&ormat a Device…", "Erase a device of the printer", "", Needs::Printer,
     [](Actions& a) { a.Format(); }},
    {"&Printer", "", "", "", "", Needs::Nothing, nullptr},
    {"&Printer", "reboot", "&Reboot…", "Restart the printer and wait until it answers", "",
     Needs::Printer, [](Actions& a) { a.Reboot(); }},

    {"P&rogram", "run", "&Run", "Start the program in working memory", "Ctrl+Shift+R",
     Needs::Printer, [](Actions& a) { a.RunProgram(); }},
    {"P&rogram", "cancel", "&Stop", "End the program that runs, by Ctrl-C or by a break",
     "Ctrl+Shift+X", Needs::Printer, [](Actions& a) { a.StopProgram(); }},
    {"P&rogram", "", "Send C&trl-C", "Send the character that ends a program", "", Needs::Port,
     [](Actions& a) { emit a.CtrlCWanted(); }},
    {"P&rogram", "", "Send &Break", "Hold the line in the break condition (Ctrl+Break)", "",
     Needs::Port, [](Actions& a) { emit a.BreakWanted(); }},
    {"P&rogram", "", "", "", "", Needs::Nothing, nullptr},
    {"P&rogram", "", "&Check", "Find out whether the printer accepts the program", "",
     Needs::Printer, [](Actions& a) { a.CheckProgram(); }},
    {"P&rogram", "save", "Save &Listing…", "Write the program's listing to a file", "",
     Needs::Printer, [](Actions& a) { a.SaveListing(); }},
    {"P&rogram", "info", "&Free Memory", "Ask how much working memory is free", "", Needs::Printer,
     [](Actions& a) { a.FreeMemory(); }},
    {"P&rogram", "", "", "", "", Needs::Nothing, nullptr},
    {"P&rogram", "clear", "&New…", "Delete the program in working memory", "", Needs::Printer,
     [](Actions& a) { a.NewProgram(); }},

    {"&Transfer", "send", "Send &Text…", "Type a text file into the printer", "", Needs::Printer,
     [](Actions& a) { a.Press("UploadA"); }},
    {"&Transfer", "", "", "", "", Needs::Nothing, nullptr},
    {"&Transfer", "send", "&Send to a Waiting Printer…",
     "Send a file by Kermit or ZModem to a printer that waits for it", "", Needs::Printer,
     [](Actions& a) { a.Press("UploadB"); }},
    {"&Transfer", "save", "&Receive from a Sending Printer…",
     "Receive a file by Kermit or ZModem from a printer that sends it", "", Needs::Printer,
     [](Actions& a) { a.Press("DownloadB"); }},

    {"&Help", "info", "&About qnterm", "Version and what this is", "", Needs::Nothing,
     [](Actions& a) { emit a.AboutWanted(); }},
};

} // namespace

void PrinterActions::AddMenus(QMenuBar& bar) {
    QMenu* menu = nullptr;
    for (const MenuEntry& entry : Entries) {
        const QString title = tr(entry.menu);
        if (menu == nullptr || menu->title() != title) menu = bar.addMenu(title);
        if (*entry.text == '\0')
            menu->addSeparator();
        else
            menu->addAction(AddEntry(entry));
    }
    mHelp = menu->menuAction();
    Enable();
}

PrinterActions::PrinterActions(Operations& operations, QWidget* window)
    : QObject(window), mOperations(operations), mWindow(window) {
    connect(&mOperations, &Operations::RunningChanged, this, &PrinterActions::Enable);
}

QAction* PrinterActions::AddEntry(const MenuEntry& entry) {
    auto* action = new QAction(tr(entry.text), this);
    if (*entry.icon != '\0') action->setIcon(ThemedIcon(entry.icon));
    action->setShortcut(QKeySequence(QString::fromLatin1(entry.keys)));
    action->setStatusTip(tr(entry.tip));
    if (entry.needs == Needs::Printer) mNeedPrinter.append(action);
    if (entry.needs == Needs::Idle) mNeedIdle.append(action);
    if (entry.needs == Needs::Port) mNeedPort.append(action);
    connect(action, &QAction::triggered, this, [this, act = entry.act] { act(*this); });
    mWindow->addAction(action);
    return action;
}

void PrinterActions::SetHasPort(bool bHasPort) {
    mHasPort = bHasPort;
    Enable();
}

void PrinterActions::Enable() {
    const bool idle = !mOperations.Running();
    for (QAction* action : mNeedIdle)
        action->setEnabled(idle);
    for (QAction* action : mNeedPrinter)
        action->setEnabled(idle && mHasPort);
    for (QAction* action : mNeedPort)
        action->setEnabled(mHasPort);
}

namespace {

/// Searches and claims do not listen first while it lives.
class Unheard {
  public:
    explicit Unheard(qncomm::clsDataLink& link) : mLink(link), mFormer(link.Listens()) {
        mLink.SetListens(false);
    }
    ~Unheard() { mLink.SetListens(mFormer); }
    Unheard(const Unheard&) = delete;
    Unheard& operator=(const Unheard&) = delete;

  private:
    qncomm::clsDataLink& mLink;
    bool mFormer;
};

} // namespace

void PrinterActions::Connect() {
    QString model;
    QString firmware;
    qncomm::SearchReport search;
    const bool done = mOperations.Run(tr("Connect"), [&](qncomm::QNComm& control) {
        model = qncomm::FromLine(control.PrinterType());
        firmware = qncomm::FromLine(control.FirmwareVersion());
        search = control.Link().LastSearch();
    });
    if (done && !model.isEmpty())
        emit Identified(model, firmware);
    else if (done)
        TellOf(search);
}

void PrinterActions::Find() {
    bool found = false;
    qncomm::SearchReport search;
    const bool done = mOperations.Run(tr("Find the printer"), [&](qncomm::QNComm& control) {
        found = control.DoAutoconnect();
        search = control.Link().LastSearch();
    });
    if (done && found)
        Connect();
    else if (done)
        TellOf(search);
}

void PrinterActions::FindAllTheSame() {
    bool found = false;
    const bool done = mOperations.Run(tr("Find the printer"), [&](qncomm::QNComm& control) {
        const Unheard unheard(control.Link());
        found = control.DoAutoconnect();
    });
    if (done && found)
        Connect();
    else if (done)
        emit Said(tr("No printer answered on this port."));
}

/// Why a search has found no printer; where something talks and was left alone, what can be done.
void PrinterActions::TellOf(const qncomm::SearchReport& search) {
    const std::string why = Explain(search);
    const QString said = why.empty() ? tr("No printer answered on this port.")
                                     : qncomm::FromLine(why) + QLatin1Char('.');
    emit Said(said);
    if (!IsKeptFrom(search)) return;
    AskWhatNow(mWindow, tr("Find the printer"), said,
               {{tr("&Watch"), [this] { emit Watching(); }},
                {tr("&Stop the Program"),
                 [this] {
                     StopProgram();
                     Connect();
                 }},
                {tr("Search &All the Same"), [this] { FindAllTheSame(); }}});
}

void PrinterActions::Identify() {
    Connect();
}

void PrinterActions::Watch() {
    QString now;
    const bool idle = mOperations.Run({}, [&](qncomm::QNComm& control) {
        now = QString::fromStdString(control.Link().SettingsText());
    });
    if (!idle) return;
    AskText(mWindow, tr("Watch the line"), tr("Rate, parity, data bits and stop bits:"), now,
            [this](const QString& answer) { WatchAt(answer); });
}

void PrinterActions::WatchAt(const QString& sSettings) {
    const auto settings = qncomm::ParseLineSettings(sSettings.toStdString());
    if (!settings) {
        emit Said(tr("%1: write settings such as 9600,n,8,2.").arg(sSettings));
        return;
    }
    const bool done = mOperations.Run({}, [&](qncomm::QNComm& control) {
        qncomm::clsDataLink& link = control.Link();
        link.SetBaudrate(std::to_string(settings->baud));
        link.SetParity(std::string(1, settings->parity));
        link.SetDatabits(std::to_string(settings->dataBits));
        link.SetStopbits(std::to_string(settings->stopBits));
    });
    if (!done) return;
    emit Watching();
    emit Said(tr("Listening at %1. Nothing is sent.").arg(sSettings));
}

void PrinterActions::FreeMemory() {
    std::int32_t bytes = 0;
    if (mOperations.Run(tr("Free memory"), [&](qncomm::QNComm& control) { bytes = control.Fre(); }))
        emit Said(tr("%1 bytes of working memory are free.").arg(QLocale().toString(bytes)));
}

// What a person agrees to is meant for the printer that was there when the question was asked.

void PrinterActions::Reboot() {
    AskBefore(mWindow, tr("Restart the printer?"),
              tr("The program in working memory and the files on tmp: are lost."), tr("&Restart"),
              [this, asked = mOperations.Generation()] {
                  mOperations.RunOn(asked, tr("Reboot"),
                                    [](qncomm::QNComm& control) { control.Reboot(); });
              });
}

void PrinterActions::Format() {
    AskText(mWindow, tr("Format a device"), tr("Device to erase, such as ram: or c:"), {},
            [this, asked = mOperations.Generation()](const QString& device) {
                AskBefore(mWindow, tr("Erase everything on %1?").arg(device),
                          tr("All its files are deleted. This cannot be undone."), tr("&Erase"),
                          [this, asked, device] {
                              mOperations.RunOn(asked, tr("Format %1").arg(device),
                                                [device](qncomm::QNComm& control) {
                                                    control.FormatDev(qncomm::ToLine(device));
                                                });
                          });
            });
}

void PrinterActions::ChangeDevice() {
    AskText(mWindow, tr("Change device"), tr("Device to make current, such as ram: or c:"), {},
            [this](const QString& device) {
                mOperations.Run(tr("Change to %1").arg(device), [device](qncomm::QNComm& control) {
                    control.ChDir(qncomm::ToLine(device));
                });
            });
}

void PrinterActions::NewProgram() {
    AskBefore(mWindow, tr("Delete the program in working memory?"),
              tr("Files on the printer stay as they are."), tr("&Delete"),
              [this, asked = mOperations.Generation()] {
                  mOperations.RunOn(asked, tr("New program"),
                                    [](qncomm::QNComm& control) { control.NewProgram(); });
              });
}

void PrinterActions::RunProgram() {
    mOperations.Run(tr("Run the program"), [](qncomm::QNComm& control) { control.RunProgram(); });
}

void PrinterActions::StopProgram() {
    static const QString told[] = {tr("The port is in use: nothing was sent."),
                                   tr("No program ran."), tr("The program was ended by Ctrl-C."),
                                   tr("The program was ended by a break.")};
    std::int16_t how = qncomm::StopRefused;
    if (mOperations.Run(tr("Stop the program"),
                        [&](qncomm::QNComm& control) { how = control.Link().StopProgram(); }))
        emit Said(told[how]);
}

void PrinterActions::CheckProgram() {
    bool runs = false;
    if (mOperations.Run(tr("Check the program"),
                        [&](qncomm::QNComm& control) { runs = control.IsProgramRunable(); }))
        emit Said(runs ? tr("The printer accepts the program.")
                       : tr("The printer does not accept the program."));
}

void PrinterActions::SaveListing() {
    AskSaveFile(mWindow, tr("Save the listing"), tr("program.prg"), [this](const QString& path) {
        mOperations.Run(tr("Save the listing"), [path](qncomm::QNComm& control) {
            control.UploadQNProgram(path.toStdString());
        });
    });
}

void PrinterActions::Press(const char* sKey) {
    mOperations.Run(
        {}, [sKey](qncomm::QNComm& control) { control.PressToolbarKey(std::string_view(sKey)); });
}

} // namespace qnterm
