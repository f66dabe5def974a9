#pragma once

#include "GlobalOptions.h"
#include "Outcome.h"
#include "Output.h"

#include "assembly/ControlAssembly.h"
#include "assembly/PortBook.h"
#include "common/Event.h"
#include "console/ConsoleDesk.h"
#include "console/TransferProgress.h"
#include "control/QNComm.h"
#include "link/clsDataLink.h"
#include "platform/FileSettings.h"
#include "platform/Interrupt.h"
#include "platform/PollLoop.h"
#include "printer/clsQuorin.h"
#include "serial/PDQComm.h"
#include "trace/JsonLinesTrace.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace qnctl {

/// One run of the program: the loop, the settings, the port and a control on it like any other
/// host's, put together and taken apart again in the right order, whatever ends the run.
class Session {
  public:
    /// Warns about port numbers in the settings that stand for no address.
    Session(const GlobalOptions& options, const Output& output);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    const GlobalOptions& Options() const { return mOptions; }
    /// Where results go; a progress line is taken away first.
    const Output& Out() {
        Status().Clear();
        return mOutput;
    }
    qncomm::PollLoop& Loop() { return mLoop; }
    qncomm::ConsoleDesk& Desk() { return mDesk; }
    qncomm::StatusLine& Status() { return mDesk.Status(); }
    qncomm::FileSettings& Store() { return *mStore; }

    const qncomm::PortBook& Ports() const { return mBook; }

    /// Chooses the port (sNamed, or the configured one when it is empty) and makes the control on
    /// it; the control of a port that was chosen before is destroyed.
    Outcome ChooseThePort(const std::string& sNamed);
    /// Makes a control that has no port to open, for members that need none.
    Outcome ChooseNoPort();
    /// Makes the chosen port the configured one, with the settings that were found.
    void Remember();
    const qncomm::ChosenPort& Port() const { return mPort; }
    qncomm::QNComm& Control() { return mAssembly->Control(); }
    qncomm::ControlAssembly& Assembly() { return *mAssembly; }
    /// The line under the control, to read.
    const qncomm::PDQComm& Serial() const { return mAssembly->Serial(); }
    qncomm::clsDataLink& Link() { return Control().Link(); }
    qncomm::clsQuorin& Printer() { return Control().Layer(); }
    /// Where what travels is recorded; null when nothing is.
    qncomm::TraceSink* Trace() { return mTrace.get(); }
    /// "COM3 (/dev/ttyUSB0)", or the address alone of a port without a number of its own.
    std::string PortName() const;

    /// Opens the port and finds the printer; the port then stays claimed until Disconnect or the
    /// session's end.
    Outcome Connect();
    void Disconnect();
    /// Whether the port is claimed for this run. Raises 91 after the control's TearDown.
    bool Connected() { return mClaim && *mClaim && Link().UseCount() > 0; }
    /// How a search that found nothing is reported: cancelled, no printer, or the port's failure.
    Outcome NotFound();
    /// How an operation that raised an error is reported: by the port's failure where the device
    /// went away under it, even if it is open again.
    Outcome Failed(const qncomm::QNError& error) const;

    /// Asks the user; True for yes.
    bool Ask(const std::string& title, const std::string& question);

    /// Whether an operation was silently refused since the last call because it could not have the
    /// port.
    bool TakePortRefusal();
    /// Refused when the trace or the capture that was asked for is not whole.
    Outcome RecordingOutcome();

    /// Whether Ctrl-C was pressed.
    bool Interrupted() { return mInterrupt.Raised(); }

    /// From here on, until another port is chosen, progress is that of a transfer: the status line
    /// shows rate and time left, and the readings go to report, which may be empty.
    qncomm::TransferProgress& FollowTransfer(qncomm::TransferProgress::Report report);

    /// For how many ms the printer still takes commands for the rest of a load that broke off.
    std::int32_t DeafMs();

    /// Shows each progress message on a line of its own where there is no terminal.
    void ShowEveryStatus();

  private:
    Outcome MakeTheControl();
    Outcome PassLabelsOn();
    std::optional<Outcome> PortFailure() const;
    /// Claims the port; False when there is no printer.
    bool Claim();
    /// Ends a program that runs at the link's settings; nothing happens where none answers to that.
    void EndProgram();
    /// Takes the settings at which the search heard something talk; False when it heard nothing.
    bool UseHeardSettings();
    void Wire();
    void Unwire();
    void OnStatus(const std::string& message, std::int16_t progress, bool& cancel);
    void Note(std::string_view line);

    GlobalOptions mOptions;
    const Output& mOutput;
    qncomm::Interrupt mInterrupt;
    qncomm::PollLoop mLoop{&mInterrupt};
    qncomm::ConsoleDesk mDesk;
    std::shared_ptr<qncomm::FileSettings> mStore;
    qncomm::PortBook mBook;
    qncomm::ChosenPort mPort;
    std::unique_ptr<qncomm::JsonLinesTrace> mTrace;
    std::unique_ptr<qncomm::ControlAssembly> mAssembly;
    std::optional<qncomm::TransferProgress> mTransfer;
    qncomm::Subscription mStatusEvent;
    std::optional<qncomm::PortClaim> mClaim;
    std::string mNote; ///< why something was silently refused
};

} // namespace qnctl
