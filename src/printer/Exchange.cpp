// What every operation does on the line: claim, send, read, give back, mark what changed.

#include "Exchange.h"

#include "common/RuntimeErrors.h"
#include "common/Text.h"
#include "link/HostCall.h"
#include "link/SendInPieces.h"

#include <utility>

namespace qncomm {

clsDataLink& clsQuorin::Link() const {
    if (mLink == nullptr) RaiseRuntimeError(RtObjectNotSet, "clsQuorin");
    return *mLink;
}

PortClaim clsQuorin::Claim() {
    PortClaim claim = Link().AcquirePort();
    if (!claim) mDesktop.Log(PortRefused);
    return claim;
}

std::optional<clsQuorin::Reply> clsQuorin::Run(const Exchange& exchange) {
    PortClaim claim = Claim();
    if (!claim) return std::nullopt;
    const std::string suffix = SystemLevelAllowed(exchange.systemLevel) ? ",A" : "";
    SendLine(exchange.line + suffix);
    Reply reply;
    if (exchange.listing)
        Link().InputListing(reply, exchange.timeout);
    else
        Link().InputText(reply, false, exchange.timeout);
    claim.Release();
    for (const std::string& path : exchange.dirty)
        SetDeviceDirty(path);
    return reply;
}

void clsQuorin::Send(std::string_view bytes) {
    SendInPieces(Link(), bytes);
}

void clsQuorin::SendLine(std::string_view line) {
    Send(std::string(line).append(CrLf));
}

clsQuorin::Reply clsQuorin::Read(std::int32_t timeout, bool checkErrors) {
    Reply reply;
    Link().InputText(reply, !checkErrors, timeout);
    return reply;
}

clsQuorin::Reply clsQuorin::Ask(std::string_view line, std::int32_t timeout, bool checkErrors) {
    SendLine(line);
    return Read(timeout, checkErrors);
}

/// Raises StatusEvent in the middle of an exchange; True when a handler cancels. What it makes of
/// the message stays.
bool clsQuorin::Report(std::string& message, std::int16_t progress) {
    const HostCall guard(Link());
    bool cancel = false;
    StatusEvent.Raise(message, progress, cancel);
    return cancel;
}

/// Raises StatusEvent after the port was given back: a handler may start the next operation.
void clsQuorin::ReportDone(std::string message) {
    std::int16_t progress = NoProgress;
    bool cancel = false;
    StatusEvent.Raise(message, progress, cancel);
}

/// Shows a box in the middle of an exchange.
MsgBoxResult clsQuorin::AskPerson(const MsgBox& box) {
    const HostCall guard(Link());
    return mDesktop.ShowMsgBox(box);
}

} // namespace qncomm
