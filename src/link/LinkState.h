#pragma once

#include "AwaitedEcho.h"
#include "RememberedPrinter.h"
#include "StateKeeper.h"
#include "common/StopWatch.h"
#include "common/Wait.h"
#include "link/clsDataLink.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qncomm {

class DetachedSink;
class FileTransfer;
class QNError;

/// What the parts of one link share: what is known of the port and of the printer, and what each
/// part asks of the others. It lives and dies with its link.
struct LinkState {
    /// The most bytes that a reply may have.
    static constexpr std::size_t MostReplyBytes = std::size_t{16} * 1024 * 1024;
    /// The most lines that a reply may have, empty ones included: records take more than bytes do.
    static constexpr std::size_t MostReplyLines = std::size_t{1024} * 1024;

    LinkState(clsDataLink& owner, const LinkHost& where)
        : link(owner),
          host(where),
          live(where.loop, where.firstGeneration, [this] { RaiseLiveState(); }),
          inputLine(UnknownInputLine()) {}
    LinkState(const LinkState&) = delete;
    LinkState& operator=(const LinkState&) = delete;

    // -- clsDataLink.cpp

    /// Raises 91 without a serial control.
    SerialControl& Serial() const;
    void AttachSink();
    /// Sleeps for at most limit ms and dispatches what is due; claims from there are refused.
    /// Raises 91 when the link was torn down meanwhile: what had waited for its printer ends there.
    void Yield(std::int32_t limit);
    /// Waits on the host's loop until done, which is asked before each sleep. What the link
    /// receives counts as heard. Raises what Yield raises, and what done raises.
    template <class Done>
    WaitEnd Await(Wait& wait, Done done) {
        std::uint64_t heard = arrivals;
        return wait.Until(
            [&] {
                if (std::exchange(heard, arrivals) != arrivals) wait.Heard();
                return done();
            },
            [this](std::int32_t ms) { Yield(ms); });
    }
    template <class Done>
    WaitEnd Await(const WaitBounds& bounds, Done done) {
        Wait wait(host.loop, bounds);
        return Await(wait, done);
    }
    /// What the line needs for that many bytes, in ms.
    std::int32_t TravelMs(std::uintmax_t bytes) const;
    /// Raises StatusEvent; True when a handler cancels. What it makes of the message stays.
    bool ReportStatus(std::string& message, std::int16_t progress);
    bool ReportStatus(std::string&& message, std::int16_t progress) {
        return ReportStatus(message, progress);
    }
    [[noreturn]] void Fail(std::int32_t number, std::string_view source);
    void RaiseLiveState();
    /// Tells the keeper of the live state whether the port is open; failure is why it is not, if
    /// that was tried.
    void NoteLine(const QNError* failure = nullptr);
    /// Tells it the port and the settings, but not in the middle of setting several.
    void NotePlace();
    /// Tells it that a search has found nobody, which says nothing of a printer that restarts.
    void NobodyAnswered();
    /// Tells it what the last search has heard of a printer that it left alone.
    void NoteTalk();

    // -- ReceivePath.cpp

    void OnSerialEvent(SerialEvent event);
    void OnReceive();
    void Deliver(const std::string& text);

    // -- PortSettings.cpp

    void LoadCommSettings();
    /// Runs one step of applying settings, asking the user while the port is busy; False to leave
    /// the rest.
    bool RunSettingsStep(const std::function<void()>& step);
    bool AskBusyPort();

    // -- PortOwnership.cpp

    bool IsExclusive() const;
    /// A claim that opens the port and sends nothing.
    PortClaim ClaimLine(bool exclusive);
    /// Finds the printer unless it is known and puts it into the modes that the exchange relies
    /// on; False when there is none.
    bool PreparePrinter(bool exclusive);
    /// Waits on the host's loop, as long as there is a far side to wait for, until opening the port
    /// does not wait any more.
    void AwaitPort();
    void OpenPort();
    /// Whether the host is not kept waiting by an opening, or has not asked for that.
    bool MayOpenNow() const;
    /// Opens the port now or, where the host is not to wait for it, as soon as nothing waits.
    void OpenForTerminal();
    /// Opens the port again in the same way, as part of an operation that had closed it.
    void OpenSoon();
    void OpenWhenReached();
    bool TerminalMayOpen() const;
    void ClosePort();
    void RaisePortState(bool open);
    void OnPortLost();
    void ReopenForTerminal();
    /// Does what had to wait for the end of an exchange or of an exclusive operation: owed
    /// releases, and taking or giving back the terminal's claim.
    void Settle();
    void ReleaseTerminal();
    /// Puts back the tag that stood before an exclusive operation and settles what waited for its
    /// end.
    void EndExclusive(std::string_view formerTag);
    /// Gives the innermost claim back before an error is raised, clears the mark and what was
    /// received.
    void ReleaseBeforeRaise();

    // -- CommandChannel.cpp

    /// Gives the port a text as it has space for it; what it took is erased from the text. Raises
    /// what OutputText raises when there is none for 5000 ms.
    void Queue(std::string& text);
    /// Sends what stands before the end of a longer text, and waits until it has left: for at most
    /// 5000 ms without progress, as for a longer text there is to be space.
    void OutputPart(std::string_view text);
    /// Waits until output has left, as done says; raises 1007 when the wait ends before that, and
    /// 1024 when the port closes meanwhile.
    void AwaitOutput(Wait& wait, const std::function<bool()>& done);
    /// What bounds the sending of that many bytes, of which some must leave within silence ms.
    WaitBounds BoundsOfSending(std::size_t bytes, std::int32_t silence) const;
    /// Raises 1024 when the port is closed.
    void RequireWritable();
    void WaitForEcho();
    /// What makes up a reply beside the echo at its beginning.
    struct ReplyRule {
        std::string_view end = "Ok\r\n"; ///< what it ends in
        /// Whether what was received is a reply all the same without the echo; null for never. It
        /// is asked at each arrival, so it looks at the last lines alone.
        bool (*unechoed)(const LinkState& of) = nullptr;
    };
    /// Waits for the reply to what was sent. What stands before the echo is dropped. Raises what
    /// InputText raises for none.
    void AwaitReply(std::int32_t timeout, const ReplyRule& rule);
    bool HoldsReply(const ReplyRule& rule);
    /// Takes the reply and raises the error that the printer reports in it; the count of its lines.
    std::int32_t TakeReply(std::vector<std::string>& lines);
    /// Whether the received text begins with the echo of what was sent, what stood before it being
    /// dropped; true as well when nothing was sent.
    bool BeginsWithEcho();
    /// Waits until nothing has come for quiet ms, for at most longest ms.
    void AwaitQuiet(std::int32_t quiet, std::int32_t longest);
    /// Raises 1000 after an overflow of the received text and 1024 when the port is closed.
    void RequireReadable();
    std::int32_t TakeReceivedLines(std::vector<std::string>& lines);
    void GetPrinterError(std::string_view line);
    void ClearReceived();

    // -- PromptWait.cpp, Load.cpp

    /// Waits for the prompt and returns what came with CR LF line ends, the prompt included;
    /// without one when nothing came for silence ms, when longest ms have passed, when more came
    /// than any printer says, or the port is closed. What came is dropped from the port. With text,
    /// that came before. With behind, a prompt counts behind that alone.
    std::string ReadToPrompt(std::int32_t silence, std::int32_t longest, std::string text = {},
                             std::string_view behind = {});
    /// The printer may take what it is sent for the rest of a load, for so long from now on.
    void DeafFor(std::int32_t ms);
    /// What may be missing of a load, and how it is known that the printer has taken it.
    struct RestOfLoad {
        std::string bytes;
        std::int32_t travelMs;  ///< which the line needs for all that the printer has to take
        std::string lastLine{}; ///< sent behind the bytes; the prompt behind its echo is the end
    };
    /// Sends the rest of a load and waits for the prompt; where that takes long, sends nothing and
    /// is AwaitEndOfLoad.
    LoadEnd EndLoad(const RestOfLoad& rest, std::int32_t longestMs);
    /// Gives a printer that still waits for the rest of a load the silence that it needs, unless
    /// that may be longer than longestMs. StatusEvent tells of it in both cases.
    LoadEnd AwaitEndOfLoad(std::int32_t longestMs = std::numeric_limits<std::int32_t>::max());
    void ForgetDeafness();
    /// Deletes what a load has left: sends the line, and takes any reply.
    void UndoLoad(const std::string& undo);
    /// Brings a printer back that a program has left in the middle of a load when it died.
    LoadEnd EndLoadOfAnother(const LoadNote& note);

    // -- InputLine.cpp

    /// What is known of the line that the printer is being typed.
    enum class InputLine { Empty, MayHoldText };
    /// Closes what was not opened: an error wherever it stands, so that no printer carries out a
    /// line that ends in it.
    static constexpr std::string_view Nonsense = ")(";
    /// What makes the printer's input line one that no printer carries out, where something may
    /// stand in it; else empty. A line end behind it ends that line, and the reply is nobody's.
    std::string_view Spoiler() const;
    /// Ends the input line so, and reads no reply.
    void SpoilInputLine();
    /// Waits for the last bytes of an operation that was ended, for as long as they travel; not on
    /// a line that is deaf.
    void AwaitLastBytes(std::size_t bytes);
    /// Notes what was sent: a line that has not ended may be left in the printer.
    void NoteSent(std::string_view text);
    /// What is taken for true of a line that this link has not seen typed.
    InputLine UnknownInputLine() const {
        return host.options.spoil ? InputLine::MayHoldText : InputLine::Empty;
    }

    // -- Poll.cpp

    /// ms from one poll to the next at the present rate.
    std::int32_t PollInterval() const;
    /// Polls from now on if the host and the terminal want it, and not otherwise.
    void SchedulePolls();
    bool MayPoll() const;
    void Poll();
    /// Takes what the terminal would show while an answer is awaited; false when none is.
    bool TakeForPoll(const std::string& text);
    void EndPoll();
    /// Nobody waits for the answer any longer; what comes of it stands before the echo of what is
    /// sent next, and is nobody's.
    void AbandonPoll();

    // -- RememberedPrinter.cpp

    /// Whether anything is kept of the printers; never once the link was torn down.
    bool RemembersPrinters() const;
    /// Takes the settings that are remembered of the chosen port, if any are.
    void Recall();
    /// Keeps the settings, the channel and who it is of the printer that has answered on a port.
    void Remember(std::int16_t port, const PrinterIdentity& identity);
    /// The section of the store for a port's printer.
    std::string SectionOf(std::int16_t port) const;
    /// Notes in the store that a load begins on the chosen port, for who comes after a death in it.
    void NoteLoad(const LoadNote& note);
    /// Takes that note back once nothing of the load is outstanding any more.
    void ForgetLoad();
    /// Speaks to the printer that the chosen port had last, at the settings that the open port has.
    Meeting MeetRemembered();
    /// Whether a program is known to wait for input on the open port; the report tells then.
    bool IsKnownToAsk();
    /// Tells that a printer was found, and where.
    void ReportConnected();

    // -- Identification.cpp, Reboot.cpp, FileTransfer.cpp

    void Handshake();
    void GetVersion();
    void WaitForBoot(DetachedSink& detached);
    void OnTransfer();
    bool RunKermit(PortClaim claim, FileTransfer& transfer, const std::string& command,
                   const std::function<void()>& start);
    bool RunBinary(FileTransfer& transfer, std::int16_t protocol,
                   const std::function<void()>& start);

    clsDataLink& link; ///< whose state this is, for its public members
    LinkHost host;
    SerialControl* serial = nullptr;
    std::shared_ptr<RegSettings> settings;

    StateKeeper live;
    int settingSeveral = 0; ///< the settings are changing one by one to what they are to be

    std::string commport;
    std::string recalledPort; ///< the port whose remembered settings were taken
    std::string baudrate;
    std::string parity;
    std::string databits;
    std::string stopbits;
    std::string flowcontrol;
    Collection<std::string> autoConnectBaudrates;
    Collection<std::string> frameFormats;

    int teardowns = 0; ///< how often the link was torn down
    std::int32_t useCount = 0;
    bool dsrDetectActive = false;
    bool terminalActive = false; ///< what the host asked for
    bool terminalHeld = false;   ///< whether one of the counted uses is the terminal's
    /// The device went away under a claim, or its far side has not been reached yet; the next claim
    /// opens it.
    bool portLost = false;
    PortClaim* innermost = nullptr;
    int hostCalls = 0;                         ///< how deep the link is in code of the host
    std::int32_t owedReleases = 0;             ///< releases that came while another held the mark
    std::unique_ptr<RunningTimer> reopenTimer; ///< runs while the terminal waits for its device
    std::unique_ptr<RunningTimer> pollTimer;
    std::int32_t pollEveryMs = 0;
    std::unique_ptr<RunningTimer> pollLimit; ///< runs while a poll's answer is awaited
    std::string pollHeard;                   ///< what came meanwhile

    std::string received;       ///< received text with CR LF line ends, in receive mode 0
    std::uint64_t arrivals = 0; ///< how often something was received
    AwaitedEcho echo;           ///< of what was sent since the last reply
    std::size_t judged = 0;     ///< how much of received was looked at, for the echo or for the end
    std::size_t sought = 0;     ///< how far received was searched for the end of the line at judged
    bool echoFound = false;     ///< received begins with the echo
    bool okOfAnother = false;   ///< a line before the echo ends in "Ok"
    /// An exchange has failed: what it asked for may still be answered, so that the next claim
    /// waits for the line to fall silent.
    bool outOfStep = false;
    bool receiveOverflow = false;
    bool endedInCr = false; ///< the text delivered last ended in a CR of its own
    InputLine inputLine;

    std::string loadNotedIn; ///< the section that holds the note of a load; empty for none
    std::string loadUndo;    ///< the line that deletes what comes of the load
    std::uintmax_t loadSize = 0;
    std::uintmax_t loadMissing = 0;     ///< bytes that were not sent
    std::optional<StopWatch> loadSince; ///< runs until its reply has come
    std::optional<StopWatch> deafSince; ///< when a load that lacks some bytes was given up
    std::int32_t deafMs = 0;            ///< how long the printer may wait for them

    std::int16_t transferState = TransferIdle;
    std::string transferTarget; ///< what the control is told to call the file that travels

    SearchReport lastSearch;
    bool immediateMode = false;
    std::int16_t stdio = 0; ///< 0 until found
    std::string versionText;
    std::string modelText;
    std::int16_t previousSysvar18 = 0;
    std::int16_t previousSysvar19 = 0;
};

} // namespace qncomm
