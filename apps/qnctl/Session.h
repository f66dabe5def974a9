#pragma once

#include "GlobalOptions.h"
#include "Outcome.h"
#include "Output.h"
#include "PortChoice.h"

#include "common/Event.h"
#include "console/ConsoleDesktop.h"
#include "console/ConsoleDialogs.h"
#include "console/LineReader.h"
#include "console/StatusLine.h"
#include "link/clsDataLink.h"
#include "platform/FileSettings.h"
#include "platform/Interrupt.h"
#include "platform/PollLoop.h"
#include "printer/clsQuorin.h"
#include "serial/JsonLinesTrace.h"
#include "serial/PDQComm.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace qnctl {

/// One run of the program: the loop, the settings, the port, the link and the printer layer, wired
/// together and taken apart again in the right order, whatever ends the run.
class Session {
  public:
    Session(const GlobalOptions& options, const Output& output);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    const GlobalOptions& Options() const { return mOptions; }
    /// Where results go; a progress line is taken away first.
    const Output& Out() {
        mStatus.Clear();
        return mOutput;
    }
    qncomm::PollLoop& Loop() { return mLoop; }
    qncomm::StatusLine& Status() { return mStatus; }
    qncomm::FileSettings& Store() { return *mStore; }

    /// Binds the port numbers; every command's first step. Warns about bindings that do not parse.
    void Prepare();
    qncomm::PortBindings& Bindings() { return mBindings; }

    /// Chooses the port (sNamed, or the configured one when it is empty) and makes the objects that
    /// the members below give out; those of a port that was chosen before go away.
    Outcome ChooseThePort(const std::string& sNamed);
    /// Makes the chosen port the configured one, with the settings that were found.
    void Remember();
    const PortChoice& Port() const { return mPort; }
    qncomm::PDQComm& Serial() { return *mSerial; }
    qncomm::clsDataLink& Link() { return *mLink; }
    qncomm::clsQuorin& Printer() { return *mPrinter; }
    /// Whether the port's number was only made up for this run.
    bool PortIsLent() const;
    /// "COM3 (/dev/ttyUSB0)", or the address alone of a port without a number of its own.
    std::string PortName() const;

    /// Opens the port and finds the printer; the port then stays claimed until Disconnect or the
    /// session's end.
    Outcome Connect();
    void Disconnect();
    /// How a search that found nothing is told: cancelled, no printer, or the port's own failure.
    Outcome NotFound();

    /// Asks the person; True for yes.
    bool Ask(const std::string& title, const std::string& question);

    /// Why an operation was quietly refused, empty when none was.
    const std::string& RefusalNote() const { return mNote; }

    /// Whether Ctrl-C was pressed.
    bool Interrupted() { return mInterrupt.Raised(); }

    /// Shows each progress message on a line of its own where there is no terminal.
    void ShowEveryStatus();

  private:
    Outcome PassLabelsOn();
    void Wire();
    void Unwire();
    void OnStatus(const std::string& message, std::int16_t progress, bool& cancel);
    void Note(std::string_view line);

    GlobalOptions mOptions;
    const Output& mOutput;
    qncomm::Interrupt mInterrupt;
    qncomm::PollLoop mLoop{&mInterrupt};
    qncomm::LineReader mInput;
    qncomm::StatusLine mStatus;
    qncomm::ConsoleDesktop mDesktop;
    qncomm::ConsoleDialogs mDialogs;
    std::shared_ptr<qncomm::FileSettings> mStore;
    qncomm::PortBindings mBindings;
    PortChoice mPort;
    std::unique_ptr<qncomm::JsonLinesTrace> mTrace;
    std::unique_ptr<qncomm::PDQComm> mSerial;
    std::unique_ptr<qncomm::clsDataLink> mLink;
    std::unique_ptr<qncomm::clsQuorin> mPrinter;
    qncomm::Subscription mLinkStatus;
    qncomm::Subscription mPrinterStatus;
    std::optional<qncomm::PortClaim> mClaim;
    std::string mNote; ///< why something was quietly refused
};

} // namespace qnctl
