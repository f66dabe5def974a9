// Who the printer is, and the modes that every claim puts it into.

#include "LinkState.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/Text.h"
#include "common/modErrorHandling.h"

#include <algorithm>
#include <utility>

namespace qncomm {
namespace {

constexpr std::size_t VersionReplyLines = 4;
constexpr std::int32_t HandshakeTimeout = 1000;
/// After a failed exchange the answers to what it sent may follow: this much silence ends them.
constexpr std::int32_t ResyncQuiet = 100;
constexpr std::int32_t ResyncLongest = 3000;

bool IsWholeNumber(std::string_view text) {
    const std::string number = Trim(text);
    const std::size_t sign = number.starts_with('-') ? 1 : 0;
    return number.size() > sign
           && number.find_first_not_of("0123456789", sign) == std::string::npos;
}

/// The handshake's reply without its echo, or with one that the line has damaged: the printer may
/// have its echo off still, and no other command is answered so.
bool EndsInTwoNumbers(std::string_view received) {
    constexpr std::size_t longest = 256; // two numbers are shorter, empty lines between them or not
    if (received.size() > longest) {
        received.remove_prefix(received.size() - longest);
        received.remove_prefix(std::min(received.find(CrLf), received.size()));
    }
    if (!received.ends_with(CrLf)) return false;
    const std::vector<std::string> lines = SplitNonEmpty(received, CrLf);
    const std::size_t count = lines.size();
    return count >= 3 && IsWholeNumber(lines[count - 3]) && IsWholeNumber(lines[count - 2])
           && lines[count - 1] == "Ok";
}

std::int16_t WholeNumberOrZero(std::string_view line) {
    const double value = Val(line);
    return value >= -32768 && value <= 32767 ? ToInt16(value) : std::int16_t{0};
}

constexpr std::string_view AlternativeModePrefix = "Tavrel Protocol ";

/// The firmware text as it is kept: a "V" on this model marks the command mode that runs no
/// programs.
std::string FirmwareText(std::string text, const std::string& model) {
    const bool marked = text.starts_with('V') || text.starts_with('v');
    if (marked && model.find("R7C") != std::string::npos) text.insert(0, AlternativeModePrefix);
    return text;
}

} // namespace

std::optional<PrinterIdentity> IdentityIn(const std::vector<std::string>& reply) {
    if (reply.size() != VersionReplyLines || reply.back() != "Ok") return std::nullopt;
    std::string model = Trim(CollapseSpaces(reply[2]));
    std::string firmware = FirmwareText(Trim(CollapseSpaces(reply[1])), model);
    return PrinterIdentity{std::move(model), std::move(firmware)};
}

std::int16_t clsDataLink::Stdio() const {
    return mState->stdio == 0 ? std::int16_t{1} : mState->stdio;
}

std::int16_t clsDataLink::PreviousSysvar18() const {
    return mState->previousSysvar18;
}

std::int16_t clsDataLink::PreviousSysvar19() const {
    return mState->previousSysvar19;
}

const std::string& clsDataLink::ModelText() {
    if (mState->modelText.empty()) mState->GetVersion();
    return mState->modelText;
}

const std::string& clsDataLink::VersionText() {
    if (mState->versionText.empty()) mState->GetVersion();
    return mState->versionText;
}

void LinkState::GetVersion() {
    PortClaim claim = link.AcquirePort();
    if (!claim || !modelText.empty()) return; // a remembered printer has said it to the claim
    link.OutputText("PRINT VERSION$(0):PRINT VERSION$(1)\r\n", true);
    std::vector<std::string> lines;
    bool answered = true;
    try {
        link.InputText(lines);
    } catch (const QNError& error) {
        if (error.Number() != ErrProtocol) throw;
        answered = false; // some other reply came, which says no more than one that is too short
    }
    claim.Release();
    const auto identity = answered ? IdentityIn(lines) : std::nullopt;
    if (!identity) {
        link.SetImmediateMode(false);
        RaiseError(ErrProtocol, "Datalink:GetVersion");
    }
    modelText = identity->model;
    versionText = identity->version;
    live.Identity(*identity, LearntReply);
    Remember(ToInt16(Val(commport)), *identity);
}

void LinkState::Handshake() {
    SpoilInputLine();
    link.OutputText("PRINT SYSVAR(18):PRINT SYSVAR(19):SYSVAR(18)=-1:SYSVAR(19)=2\r\n");
    AwaitReply(HandshakeTimeout,
               {.unechoed = [](const LinkState& of) { return EndsInTwoNumbers(of.received); }});
    if (outOfStep) AwaitQuiet(ResyncQuiet, ResyncLongest);
    outOfStep = false;
    std::vector<std::string> lines;
    const auto count = static_cast<std::size_t>(TakeReply(lines));
    // The previous values stand one line further up in the replies of today's printers, so what is
    // kept here is 0; hosts rely on these indexes.
    if (count < 3 || lines[count - 2] != "Ok") return;
    previousSysvar19 = WholeNumberOrZero(lines[count - 3]);
    previousSysvar18 = WholeNumberOrZero(lines[count - 2]);
}

} // namespace qncomm
