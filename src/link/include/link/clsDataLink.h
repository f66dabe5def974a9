#pragma once

#include "common/Collection.h"
#include "common/Desktop.h"
#include "common/Event.h"
#include "common/HostFiles.h"
#include "common/MessageLoop.h"
#include "common/RegSettings.h"
#include "link/LinkDialogs.h"
#include "link/PortClaim.h"
#include "link/SerialControl.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

struct LinkState;

enum enumFlowControl : std::int16_t {
    No_Flowcontrol = 0,
    Software_Flowcontrol = 1,
    Hardware_Flowcontrol = 2,
    SW_And_HW_Flowcontrol = 3,
};

/// What a link needs of where it runs; all outlive it.
struct LinkHost {
    MessageLoop& loop;
    Desktop& desktop;
    LinkDialogs& dialogs;
    HostFiles& files;
};

/// Owns the one serial port through which the system talks to one printer: its settings, counted
/// use, the exchange of command lines for replies, the search for the printer, its identity and its
/// reboot.
///
/// Single-threaded. All waits yield to the host's message loop, WaitForOk and WaitForEchoLine
/// excepted. While the link is inside such a wait or inside one of its events, a new claim or
/// search from there is refused quietly.
///
/// Any member that needs the serial control raises 91 before SerialPort is set and after TearDown.
class clsDataLink {
  public:
    explicit clsDataLink(const LinkHost& host);
    ~clsDataLink();
    clsDataLink(const clsDataLink&) = delete;
    clsDataLink& operator=(const clsDataLink&) = delete;

    // -- Events

    /// sStatusMsg, iProgressPerc, bCancel: progress of a long operation; a handler that sets
    /// bCancel asks it to stop.
    Event<std::string&, std::int16_t&, bool&> StatusEvent;
    /// bPortOpen: the first claim opened the port, or the last one closed it.
    Event<bool&> PortStateEvent;

    // -- Life

    /// Takes the serial control (not owned; it outlives the link or TearDown is called first),
    /// configures it, connects to its events and fills FrameFormats.
    void SetSerialPort(SerialControl* serial);

    const std::shared_ptr<qncomm::RegSettings>& RegSettings() const;
    /// Setting an object loads the settings from it at once; setting none keeps them.
    void SetRegSettings(std::shared_ptr<qncomm::RegSettings> settings);

    /// Closes the port without an event and lets go of the serial control, the settings object's
    /// lists and the events. Harmless when repeated.
    void TearDown();

    // -- Settings, as texts, exactly as they are stored and given to the port. A let normalises its
    // text, validates it
    //    (raising 1001 to 1005 with source "DataLink:Let …"), stores it and applies all settings to
    //    the port.

    const std::string& Baudrate() const;
    void SetBaudrate(std::string_view sValue);
    const std::string& Parity() const;
    void SetParity(std::string_view sValue);
    const std::string& Databits() const;
    void SetDatabits(std::string_view sValue);
    const std::string& Stopbits() const;
    void SetStopbits(std::string_view sValue);
    /// "0" to "3", an enumFlowControl; of any number the two low bits are taken.
    const std::string& Flowcontrol() const;
    void SetFlowcontrol(std::string_view sValue);
    /// The port number as text. A number below 1 becomes the first valid port of 0 to 16. Not
    /// applied to the port before ApplyCommSettings. Raises 6 for a number that is no 16-bit one.
    const std::string& Commport() const;
    void SetCommport(std::string_view sValue);
    bool DSRDetectActive() const;
    void SetDSRDetectActive(bool bValue);

    /// Such as "9600,N,8,1".
    std::string SettingsText() const;
    /// Whether the open port's DSR line is held.
    bool IsDSRActive();
    /// Whether port iPortNumber could be used: it is this link's own open port, or it opens.
    bool IsValidPort(std::int16_t iPortNumber);

    /// Gives the settings to the port, reopening it when it is open, and drops ImmediateMode. A
    /// busy port asks the person; other errors skip their step.
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
    /// is then as it was. Raises what the handshake raises (1007, 1008, 1024, printer errors), with
    /// the claim given back.
    [[nodiscard]] PortClaim AcquirePort(bool bExclusive = false);
    /// Gives one claim back. For claims that were detached; all others give themselves back.
    void ReleasePort(bool bClearTag = false, bool bForce = false);
    std::int32_t UseCount() const;

    /// Whether the terminal is shown: True keeps the port open for it and routes received text
    /// there, sending nothing. A change during an exclusive operation or an exchange takes effect
    /// when that ends.
    bool TerminalActive() const;
    void SetTerminalActive(bool bValue);

    // -- The exchange

    /// Sends sText and waits until it has left. sText is emptied as far as it was sent. With
    /// bWaitForEcho also waits up to 500 ms for the echoed line. Raises 1007 (no progress for 5000
    /// ms, not drained in 10000 ms) and 1024 (port closed), source "Datalink:OutputText", with the
    /// innermost claim given back.
    void OutputText(std::string& sText, bool bWaitForEcho = false);
    void OutputText(std::string&& sText, bool bWaitForEcho = false) {
        OutputText(sText, bWaitForEcho);
    }

    /// Waits for the reply to what was sent and fills sInputLines with its non-empty lines: the
    /// echo of the first line sent since the last reply, and so on to "Ok", CR LF. What was
    /// received before that echo belongs to no command of ours and is dropped. Returns the count of
    /// lines.
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
    /// Whether "Ok" CR LF arrives before lTimeout ms pass without received text. Takes it off the
    /// port; does not yield.
    bool WaitForOk(std::int32_t lTimeout = 500);
    /// Empties the port's two buffers and the link's receive buffer.
    void PurgePort();
    /// Yields until lMilliseconds have passed.
    void Delay(std::int32_t lMilliseconds);

    /// True once the printer was found and switched to immediate mode. Setting it False forgets the
    /// printer's identity.
    bool ImmediateMode() const;
    void SetImmediateMode(bool bValue);
    /// The printer's serial channel that the host is wired to, 1 until found.
    std::int16_t Stdio() const;

    // -- Finding, identifying, rebooting

    /// Searches for the printer on port iPort over all baud rates and formats, learns its settings
    /// and saves them. True when found. Refused (False, no event) while another exclusive operation
    /// runs, unless bExclusive. Raises nothing.
    bool AutoConnect(std::int16_t iPort, bool bExclusive = false);

    /// The model code and the firmware version, asked of the printer when not known: empty when the
    /// port is refused. Raise 1000, source "Datalink:GetVersion", for a reply that is none, and
    /// what the exchange raises.
    const std::string& ModelText();
    const std::string& VersionText();
    /// What the last handshake read before it set the two variables.
    std::int16_t PreviousSysvar18() const;
    std::int16_t PreviousSysvar19() const;

    /// Restarts the printer and waits, without limit, until it answers again. Does nothing when the
    /// port is refused.
    void Reboot();

    // -- File transfers. Progress comes as StatusEvent ("Uploading NAME" or "Downloading NAME",
    // percent); a handler that
    //    cancels aborts the transfer. Raise 1023 (uploads) or 1022 (downloads) when the transfer
    //    failed, after the port was given back. The source texts of the binary ones are those of
    //    the Kermit ones.

    /// Sends host file sSource by Kermit, with the command that makes the printer receive it;
    /// sDestination names it on the printer ("ram:NAME" makes that device current). With bManual
    /// the person has started the printer's side: nothing is sent and the file is not looked for
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

    /// Waits, after a transfer was cancelled, until the printer is back at its prompt, so that the
    /// next command finds it there; what arrives meanwhile is dropped. With bMoving bytes were on
    /// their way: what a pseudo-terminal, a socket or a device server has taken cannot be taken
    /// back, and the printer gets it at the line's rate before the cancel. Returns whether the
    /// prompt came: false when the line falls silent, never does for 15 s, or the port is closed.
    bool AwaitPrompt(bool bMoving);

    /// What the link's own parts share. Of use to them alone: hosts see no more than its name.
    LinkState& State() { return *mState; }

  private:
    std::unique_ptr<LinkState> mState;
};

} // namespace qncomm
