#include "CarriedTransfer.h"

#include "CancelledTransfer.h"
#include "FileListing.h"
#include "Session.h"
#include "TransferLines.h"

#include "common/QNError.h"
#include "common/modErrorHandling.h"

namespace qnctl {
namespace {

/// The device of a printer's file name, with its colon; empty when it names none.
std::string DeviceOf(const std::string& name) {
    return name.substr(0, name.find(':') + 1);
}

/// Whether a device that is named is worth asking for its files: of one that is not there, or of a
/// file that it does not hold, the printer says so at its prompt, and the protocol would be waited
/// for in vain until its patience is over.
bool MayLook(Session& session, const std::string& name) {
    return !DeviceOf(name).empty() && session.Control().CanList();
}

} // namespace

Outcome CarryTransfer(Session& session, bool resume, const std::function<void()>& transfer) {
    session.Assembly().SetTransferPreferences({.resume = resume});
    qncomm::TransferProgress& progress = session.FollowTransfer(ProgressLines(session));
    progress.Show("Waiting for the printer's side of the transfer", 0);
    const auto cancel = CancelWithTheProgram(session);
    try {
        transfer();
    } catch (const qncomm::OperationCancelled&) {
        session.Link().AwaitPrompt(progress.Whole().bytes > 0);
        throw;
    } catch (const qncomm::QNError& error) {
        if (session.Interrupted()) return Cancelled();
        Outcome failed = session.Failed(error);
        const std::string& reason = session.Serial().TransferReason();
        // A lost port and a printer's error are their own reason.
        if (failed.status == ExitStatus::Error && !reason.empty()
            && error.Number() <= qncomm::PrinterErrorBase)
            failed.message += " (" + reason + ")";
        return failed;
    }
    if (session.Out().IsJson()) session.Out().Document(ResultLine(progress));
    return {};
}

Outcome SendByKermit(Session& session, const std::string& hostFile, const std::string& name,
                     bool resume) {
    if (MayLook(session, name)) FilesOn(session, DeviceOf(name)); // raises what is wrong
    return CarryTransfer(session, resume,
                         [&] { session.Control().KermitUpload(hostFile, name, false); });
}

Outcome FetchByKermit(Session& session, const std::string& name, const std::string& hostFile,
                      bool resume) {
    if (MayLook(session, name)) {
        const std::string device = DeviceOf(name);
        const std::string file = name.substr(device.size());
        if (const auto files = FilesOn(session, device, true); !files->Contains(file))
            return Refused(ExitStatus::Error, "There is no file " + file + " on " + device);
    }
    return CarryTransfer(session, resume, [&] {
        if (session.Control().CanList())
            session.Control().KermitDownload(name, hostFile);
        else // the control would look for the size, and tell the user in a box that it cannot
            session.Printer().KermitDownload(name, hostFile);
    });
}

} // namespace qnctl
