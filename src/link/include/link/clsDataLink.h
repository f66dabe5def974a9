#pragma once

#include "common/Collection.h"
#include "common/Desktop.h"
#include "common/Event.h"
#include "common/HostFiles.h"
#include "common/MessageLoop.h"
#include "common/RegSettings.h"
#include "link/LinkDialogs.h"
#include "link/LinkOptions.h"
#include "link/LiveState.h"
#include "link/PortClaim.h"
#include "link/SearchReport.h"
#include "link/SerialControl.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

struct LinkState;

/// How sender and receiver tell each other to wait; the two kinds are bits and may be combined.
enum enumFlowControl : std::int16_t {
    No_Flowcontrol = 0,        ///< nobody waits
    Software_Flowcontrol = 1,  ///< by the characters Xon and Xoff, which then cannot be data
    Hardware_Flowcontrol = 2,  ///< by the lines RTS and CTS
    SW_And_HW_Flowcontrol = 3, ///< by both
};

/// What StopProgram has found and done.
enum enumProgramStop : std::int16_t {
    StopRefused = 0,    ///< the port is in use: nothing was sent
    StopNothingRan = 1, ///< the printer was at its prompt
    StopByCtrlC = 2,    ///< a program ran and Ctrl-C has ended it
    StopByBreak = 3,    ///< a program ran that took no Ctrl-C, and a break has ended it
};

/// How a load has ended that was given up.
enum class LoadEnd : std::int16_t {
    Whole,   ///< nothing of it was missing, and its reply has come or was given up
    Stored,  ///< the printer has taken it as it is, filled up where something was missing
    Dropped, ///< the printer has given it up too, and is back at its prompt
    Deaf,    ///< the printer still waits for the rest of it
};

/// What a link needs of where it runs. None is owned; all must outlive the link.
struct LinkHost {
    MessageLoop& loop;    ///< every wait yields to it, and its clock measures the time-outs
    Desktop& desktop;     ///< asks about a busy port, and logs what was refused or given up
    LinkDialogs& dialogs; ///< shows the settings dialog and the reboot window
    HostFiles& files;     ///< says whether a file that is to be sent exists
    /// The number of the first generation of LiveState: for a host that puts one link in the place
    /// of another, so that no list of the former counts as the latter's.
    std::int32_t firstGeneration = 1;
    LinkOptions options = {}; ///< all off
};

/// Owns the one serial port through which the system talks to one printer: its settings, counted
/// use, the exchange of command lines for replies, the search for the printer, its identity and its
/// reboot.
///
/// Single-threaded. All waits yield to the host's message loop, except WaitForOk and
/// WaitForEchoLine. While the link is inside such a wait or inside one of its events, a new claim
/// or search from there is refused quietly.
///
/// Any member that needs the serial control raises 91 before SerialPort is set and after TearDown.
class clsDataLink {
  public:
    /// A link without a serial control and without settings.
    explicit clsDataLink(const LinkHost& host);
    /// Does what TearDown does; its errors are dropped.
    ~clsDataLink();
    clsDataLink(const clsDataLink&) = delete;
    clsDataLink& operator=(const clsDataLink&) = delete;

    // -- Events

    /// sStatusMsg, iProgressPerc, bCancel: progress of a long operation; a handler that sets
    /// bCancel asks it to stop.
    Event<std::string&, std::int16_t&, bool&> StatusEvent;
    /// bPortOpen: the first claim opened the port, or the last one closed it.
    Event<bool&> PortStateEvent;
    /// iLine (an enumLineState), iPrinter (an enumPrinterActivity), lGeneration: something in Live
    /// has changed. Raised where it is learnt, mostly in the middle of an operation: a claim from a
    /// handler is refused then.
    Event<std::int16_t, std::int16_t, std::int32_t> LiveStateEvent;

    // -- Life

    /// Takes the serial control (not owned; it outlives the link or TearDown is called first),
    /// configures it, connects to its events and fills FrameFormats.
    void SetSerialPort(SerialControl* serial);

    /// The store of the settings; null when there is none. Shared with its other users.
    const std::shared_ptr<qncomm::RegSettings>& RegSettings() const;
    /// Loads the settings from the store at once; of a stored value that is not accepted the
    /// default is taken. A null store keeps the settings, which then cannot be saved.
    void SetRegSettings(std::shared_ptr<qncomm::RegSettings> settings);

    /// Closes the port without an event, takes the link off the serial control and its events and
    /// empties the two lists of the search. Harmless when repeated.
    void TearDown();

    // -- Settings, as texts, exactly as they are stored and given to the port; empty before a store
    //    was loaded. Each setter normalises and validates its text, stores it and applies all
    //    settings to the port (see ApplyCommSettings).

    /// Bits per second: "300" to "115200".
    const std::string& Baudrate() const;
    /// Takes the number at the text's beginning; 0 or none means "19200". Raises 1001, source
    /// "DataLink:Let Baudrate", for another rate than the ten from 300 to 115200.
    void SetBaudrate(std::string_view sValue);
    /// "None", "Even", "Odd", "Space" or "Mark".
    const std::string& Parity() const;
    /// Looks at the first letter, in either case; an empty text or "0" means "None". Raises 1002,
    /// source "DataLink:Let Parity", for any other letter.
    void SetParity(std::string_view sValue);
    /// "7" or "8".
    const std::string& Databits() const;
    /// 0 or no number means "8". Raises 1003, source "DataLink:Let Databits".
    void SetDatabits(std::string_view sValue);
    /// "1" or "2".
    const std::string& Stopbits() const;
    /// 0 or no number means "2". Raises 1004, source "DataLink:Let Stopbits".
    void SetStopbits(std::string_view sValue);
    /// "0" to "3": an enumFlowControl.
    const std::string& Flowcontrol() const;
    /// Takes the two low bits of any number. Raises 6 for one that leaves a double.
    void SetFlowcontrol(std::string_view sValue);
    /// The port number, such as "1".
    const std::string& Commport() const;
    /// A number below 1 becomes the first valid port of 0 to 16, itself when there is none. Not
    /// applied to the port before ApplyCommSettings. Raises 6 for a number beyond 16 bits.
    void SetCommport(std::string_view sValue);
    /// Whether a port without DSR counts as a port without a printer: claims and searches of it are
    /// then refused, with nothing sent.
    bool DSRDetectActive() const;
    /// Takes effect with the next claim or search.
    void SetDSRDetectActive(bool bValue);

    /// Such as "9600,N,8,1".
    std::string SettingsText() const;
    /// Whether the open port's DSR line is held.
    bool IsDSRActive();
    /// Whether port iPortNumber could be used: it is this link's own open port, or it opens.
    bool IsValidPort(std::int16_t iPortNumber);

    /// Gives the settings to the port, reopening it when it is open, and sets ImmediateMode False.
    /// When the port is busy the user is asked whether to change the settings; after any other
    /// error of the serial control the next setting is applied.
    void ApplyCommSettings();
    /// Writes the settings and the order of baud rates to the store; raises 91 without one.
    void SaveCommSettings();
    /// The setup dialog's result, 1 when accepted; 0 when an exclusive operation is already
    /// running.
    std::int16_t ShowSettingsDlg();

    /// The baud rates of the search, best first; keyed by themselves.
    const Collection<std::string>& AutoConnectBaudrates() const;
    /// The formats of the search ("n,8,2"), best first; keyed by themselves.
    const Collection<std::string>& FrameFormats() const;

    // -- Counted use of the port

    /// Claims the port: opens it on the first claim, finds the printer while ImmediateMode is False
    /// and puts it into the mode that the exchange relies on. A refused claim tests False; the port
    /// is then as it was. Raises what the handshake raises (1000, 1007, 1008, 1024, printer
    /// errors), with the claim given back. After an exchange that failed it first waits, up to 3 s,
    /// for 100 ms of silence behind the handshake's reply. With bExclusive all others are refused
    /// meanwhile.
    [[nodiscard]] PortClaim AcquirePort(bool bExclusive = false);
    /// Gives one claim back. For claims that were detached; all others give themselves back. With
    /// bClearTag the mark of exclusive use goes first; with bForce every claim is given back but
    /// the terminal's. While an exclusive operation runs, the release takes effect at its end.
    void ReleasePort(bool bClearTag = false, bool bForce = false);
    /// How many claims hold the port open, the terminal's included; 0 when it is closed.
    std::int32_t UseCount() const;

    /// Whether the terminal is shown: True keeps the port open for it and routes received text
    /// there, sending nothing.
    bool TerminalActive() const;
    /// A change during an exclusive operation or an exchange takes effect when that ends.
    void SetTerminalActive(bool bValue);

    // -- The exchange

    /// Sends sText and waits until it has left. sText is emptied as far as it was sent. With
    /// bWaitForEcho also waits up to 500 ms for the echoed line. Raises 1007 (no progress for 5000
    /// ms, not drained in 10000 ms) and 1024 (port closed), source "Datalink:OutputText", with the
    /// innermost claim given back.
    void OutputText(std::string& sText, bool bWaitForEcho = false);
    /// The same for a text that nobody needs back.
    void OutputText(std::string&& sText, bool bWaitForEcho = false) {
        OutputText(sText, bWaitForEcho);
    }

    /// Waits for the reply to what was sent and fills sInputLines with its non-empty lines: the
    /// echo of the first line sent since the last reply, and so on to "Ok", CR LF. What was
    /// received before that echo belongs to no command of this link and is dropped. Without a line
    /// sent the reply is what comes. Returns the count of lines.
    ///
    /// Raises, source "Datalink:InputText": 1008 when nothing came for lTimeout ms, 1000 when a
    /// reply came but never the echo, or more than 16 MiB, 1024 (port closed); and, unless
    /// bNoQNErrorCheck, the printer's error in the line before the last as 60000 + n, source
    /// "clsDatalink:GetPrinterError"; each with the innermost claim given back. After any of the
    /// first three the next claim waits for a silent line, so that a reply which comes late is
    /// nobody's.
    std::int32_t InputText(std::vector<std::string>& sInputLines, bool bNoQNErrorCheck = false,
                           std::int32_t lTimeout = 1000);

    /// Like InputText, but only a line that is "Ok" alone ends the reply: for the listing of a
    /// program, whose lines may end in anything.
    std::int32_t InputListing(std::vector<std::string>& sInputLines, std::int32_t lTimeout = 1000);

    /// Like InputText without the error check, but goes on after the first "Ok" until nothing has
    /// come for lQuiet ms: for commands that may be answered by more than one "Ok", or that turn
    /// the echo off.
    std::int32_t InputTextUntilQuiet(std::vector<std::string>& sInputLines, std::int32_t lTimeout,
                                     std::int32_t lQuiet);

    /// Whether the next received line, with CR LF, equals sEcho. Takes it off the port; does not
    /// yield.
    bool WaitForEchoLine(std::string_view sEcho, std::int32_t lTimeout = 500);
    /// Whether "Ok" CR LF arrives before lTimeout ms pass without received text; a line that talks
    /// on for 15 s or 64 KiB has none to give. Takes what comes off the port; does not yield.
    bool WaitForOk(std::int32_t lTimeout = 500);
    /// Holds the line in the break condition for lMilliseconds, yielding meanwhile; that condition
    /// ends with the call also when an error ends it. Claims nothing. Raises 1024 (port closed),
    /// source "Datalink:SendBreak", and 8012, source "PDQComm", for a port without a line that
    /// could break, such as a socket.
    void SendBreak(std::int32_t lMilliseconds = 300);
    /// Sends the character 0x03, which ends a printer's running program. It belongs to no exchange
    /// and is not waited for. Claims nothing. Raises 1024 (port closed), source
    /// "Datalink:SendCtrlC".
    void SendCtrlC();
    /// Ends the printer's running program: by Ctrl-C, and by a break of 300 ms where that does not
    /// help. Opens the port for it at the present settings if need be, and searches nothing; a
    /// command line goes out only once the printer has been silent for 200 ms. That line proves
    /// that the printer is at its prompt, and leaves it in immediate mode with the modes of a
    /// claim. Returns an enumProgramStop. Raises, source "Datalink:StopProgram", 1008 when the
    /// printer does not come back, and 1024 (port closed).
    std::int16_t StopProgram();
    /// Gives up what is being typed: drops what the device has not sent yet, as far as it can, and
    /// ends a line that was sent in part, in a way in which the printer does not carry it out; its
    /// reply is nobody's. Does nothing where every line has ended and has left. Claims of a later
    /// time end such a line by themselves before they say anything. Says sThen behind it: the last
    /// that an operation which is given up has to say. A line that takes nothing for 100 ms is
    /// left. Returns for how many ms the line may go on with what could not be dropped.
    std::int32_t EndUnfinishedLine(std::string_view sThen = {});
    /// Empties the port's two buffers and the link's receive buffer.
    void PurgePort();
    /// Yields until lMilliseconds have passed.
    void Delay(std::int32_t lMilliseconds);
    /// Dispatches what is due and returns at once, for long work on what a printer has sent: a
    /// cancel is heard and a window stays alive. Claims from there are refused. Throws what a
    /// handler throws and OperationCancelled; raises 91 when the link was torn down meanwhile.
    void DispatchDue();

    /// True once the printer was found and switched to immediate mode. While it is False the next
    /// claim searches.
    bool ImmediateMode() const;
    /// False forgets the printer's model and version; True claims that the printer is found.
    void SetImmediateMode(bool bValue);
    /// The printer's serial channel that the host is wired to, 1 until found.
    std::int16_t Stdio() const;

    // -- Finding, identifying, rebooting

    /// Searches for the printer on port iPort over all baud rates and formats, learns its settings
    /// and saves them. True when found. Refused (False, no event) while another exclusive operation
    /// runs, unless bExclusive. Raises nothing.
    bool AutoConnect(std::int16_t iPort, bool bExclusive = false);

    /// How the last search has ended, a claim's included, and why it has found no printer.
    const SearchReport& LastSearch() const;

    /// Whether searches listen first (LinkOptions::listen) from now on: a person who was told what
    /// talks on the line may want it searched all the same.
    bool Listens() const;
    /// Sets what Listens tells.
    void SetListens(bool bListens);

    /// The text that holds the model code, such as "R7G", asked of the printer when it is not
    /// known; empty when the port is refused. Raises 1000, source "Datalink:GetVersion", for a
    /// reply of another form, with ImmediateMode set False, and what claim and exchange raise.
    const std::string& ModelText();
    /// The firmware version, as ModelText is asked for. "Tavrel Protocol " stands before it for a
    /// printer that runs its alternative command mode.
    const std::string& VersionText();
    /// SYSVAR(18) as the last handshake read it before it set it. Always 0 with today's printers,
    /// whose reply holds the value one line further up; hosts rely on that.
    std::int16_t PreviousSysvar18() const;
    /// SYSVAR(19) in the same way.
    std::int16_t PreviousSysvar19() const;

    /// Restarts the printer and waits, without limit, until it answers again. Does nothing when the
    /// port is refused.
    void Reboot();

    // -- File transfers. Progress comes as StatusEvent ("Uploading NAME" or "Downloading NAME",
    //    percent); a handler that cancels aborts the transfer. Raise 1023 (uploads) or 1022
    //    (downloads) when the transfer failed, after the port was given back. The source texts of
    //    the binary ones are those of the Kermit ones. TearDown from a handler ends them with 91.
    //
    //    A printer that refuses to begin, with an error or by being back at its prompt, ends the
    //    transfer at once. The Kermit ones hold their first packet back for that, until the printer
    //    has said nothing for 400 ms behind the echo, and raise its error as 60000 + n, source
    //    "clsDatalink:GetPrinterError".

    /// Sends host file sSource by Kermit, with the command that makes the printer receive it;
    /// sDestination names it on the printer ("ram:NAME" makes that device current). With bManual
    /// the user has started the printer's side: nothing is sent and the file is not looked for
    /// first. Raises 1011, source "clsDataLink,Upload", for a file that is not there. Does nothing
    /// when the port is refused.
    void KermitUpload(const std::string& sSource, const std::string& sDestination,
                      bool bManual = false);
    /// Receives printer file sSource by Kermit into host file sDestination. Percentages count
    /// against lFileSize bytes when it is not 0, else against the size that the printer tells.
    void KermitDownload(const std::string& sSource, const std::string& sDestination,
                        std::int32_t lFileSize = 0);
    /// Sends a host file over the open port to a printer that is waiting for it. Claims nothing.
    /// Raises 1011 and 1024 (port closed), source "clsDataLink, BinaryUpload".
    void BinaryUpload(const std::string& sSource, std::int16_t iProtocol = BinaryZModem);
    /// Receives into a host file from a printer that is sending. Claims nothing; a closed port ends
    /// in 1022.
    void BinaryDownload(const std::string& sDestination, std::int16_t iProtocol = BinaryZModem);

    // -- Loads: content that follows a command line which has announced its length, by no protocol.

    /// Sends sCommand, a line with its end which announces lBytes bytes: the next lBytes that are
    /// sent are these. The printer takes them as they are, and whatever comes in the place of what
    /// is missing too. sUndo is the line without an end that deletes what comes of the load. A link
    /// that remembers printers keeps both in the store until the printer has replied, so that a
    /// later one can end the load after this program's death. Raises what OutputText raises.
    void BeginLoad(std::string_view sCommand, std::uintmax_t lBytes, std::string_view sUndo = {});
    /// Bytes of the last load.
    std::uintmax_t LoadSize() const;
    /// How many of them were sent and can have reached the printer at the line's rate.
    std::uintmax_t LoadBytes() const;
    /// Brings a printer back to its prompt that waits for the rest of a load: by as many zero bytes
    /// as are missing where the line carries the rest in 2 s, else by silence, which ends when the
    /// printer has lost patience, 10 s behind the last byte at most. StatusEvent tells of that; a
    /// silence that may last longer than 30 s is left to the next claim. What was stored is deleted
    /// by the undo that BeginLoad was given. Raises what OutputText and InputText raise.
    LoadEnd GiveUpLoad();
    /// For how many ms the printer may still take what it is sent for the rest of a load that was
    /// given up; 0 when it does not. The next claim waits for that long, or for the prompt.
    std::int32_t DeafMs() const;

    /// Waits, after a transfer was cancelled, until the printer is back at its prompt, so that the
    /// next command finds it there; what arrives meanwhile is dropped. With bMoving bytes were on
    /// their way: what a pseudo-terminal, a socket or a device server has taken cannot be taken
    /// back, and the printer gets it at the line's rate before the cancel. StatusEvent tells of it.
    /// Returns whether the prompt came: false when the line falls silent, when it talks on for 1 s
    /// longer than what was on its way and an echo of it travel, or the port is closed.
    bool AwaitPrompt(bool bMoving);
    /// The same when the line needs lOnTheWay ms for what is on its way, which the printer may take
    /// without a word.
    bool AwaitPromptBehind(std::int32_t lOnTheWay);

    // -- What is known

    /// What is known of line and printer now. Valid until the link's end; its values change with
    /// what passes on the line, and nothing is ever sent for it.
    const LiveState& Live() const;
    /// Makes sure that what was read in generation lGeneration of Live is still this printer's:
    /// asks the printer who it is if that is not known, and raises 1100, source
    /// "Datalink:RequireGeneration", when the generation is another one. With another one already
    /// nothing is sent. Raises what ModelText raises.
    void RequireGeneration(std::int32_t lGeneration);

    /// What the link's own parts share. Of use to them alone: hosts see no more than its name.
    LinkState& State() { return *mState; }

  private:
    std::unique_ptr<LinkState> mState;
};

} // namespace qncomm
