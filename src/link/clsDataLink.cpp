
#include "link/clsDataLink.h"

#include "LinkState.h"
#include "common/Numbers.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/modErrorHandling.h"
#include "link/HostCall.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t SerialBufferSize = 4096;
constexpr std::int16_t ReservedValue = 2;
constexpr std::string_view FormerPrinter =
    "This was read from another printer, or before the connection changed. Nothing was done: read "
    "it again first.";
constexpr std::array DefaultFrameFormats = {"m,8,2", "n,8,2", "n,7,2", "n,7,1"};

} // namespace

clsDataLink::clsDataLink(const LinkHost& host) : mState(std::make_unique<LinkState>(*this, host)) {}

clsDataLink::~clsDataLink() {
    try {
        TearDown();
    } catch (
        const std::exception&) { // NOLINT(bugprone-empty-catch): the port goes with its control
    }
}

SerialControl& LinkState::Serial() const {
    if (serial == nullptr) RaiseRuntimeError(RtObjectNotSet, "clsDataLink");
    return *serial;
}

void clsDataLink::SetSerialPort(SerialControl* serial) {
    mState->serial = serial;
    if (mState->serial != nullptr && mState->serial->IsFunctional()) {
        mState->serial->SetReceiveThreshold(1);
        mState->serial->SetBufferSizes(SerialBufferSize, SerialBufferSize);
        mState->serial->SetReceiveMode(ReceiveToLink);
        mState->serial->SetReserved(ReservedValue);
    }
    if (mState->serial != nullptr) mState->AttachSink();
    for (const char* format : DefaultFrameFormats)
        if (!mState->frameFormats.Contains(format)) mState->frameFormats.Add(format, format);
}

const std::shared_ptr<qncomm::RegSettings>& clsDataLink::RegSettings() const {
    return mState->settings;
}

void clsDataLink::SetRegSettings(std::shared_ptr<qncomm::RegSettings> settings) {
    mState->settings = std::move(settings);
    if (mState->settings) mState->LoadCommSettings();
}

void clsDataLink::TearDown() {
    ++mState->teardowns;
    if (mState->serial != nullptr) {
        SerialControl& serial = *std::exchange(mState->serial, nullptr);
        serial.SetEventSink({});
        if (serial.PortOpen()) serial.SetPortOpen(false);
        serial.KeepPort(false);
    }
    mState->reopenTimer.reset();
    mState->live.Line(LineClosed);
    mState->useCount = 0;
    mState->terminalActive = mState->terminalHeld = false;
    mState->autoConnectBaudrates.Clear();
    mState->frameFormats.Clear();
}

void LinkState::AttachSink() {
    Serial().SetEventSink([this](SerialEvent event) { OnSerialEvent(event); });
}

void LinkState::Yield(std::int32_t limit) {
    const HostCall guard(link);
    const int before = teardowns;
    host.loop.Yield(limit);
    if (teardowns != before) RaiseRuntimeError(RtObjectNotSet, "clsDataLink");
}

std::int32_t LinkState::TravelMs(std::uintmax_t bytes) const {
    constexpr double bitsOfOne = 11;
    constexpr double slowest = 300;
    const double ms =
        1000 * bitsOfOne * static_cast<double>(bytes) / std::max(Val(baudrate), slowest);
    return static_cast<std::int32_t>(std::min<double>(ms, WaitBounds::Endless));
}

void clsDataLink::Delay(std::int32_t lMilliseconds) {
    mState->Await({.wholeMs = lMilliseconds}, [] { return false; });
}

void clsDataLink::DispatchDue() {
    mState->Yield(0);
}

bool LinkState::ReportStatus(std::string& message, std::int16_t progress) {
    const HostCall guard(link);
    bool cancel = false;
    link.StatusEvent.Raise(message, progress, cancel);
    return cancel;
}

void LinkState::Fail(std::int32_t number, std::string_view source) {
    outOfStep = true;
    ReleaseBeforeRaise();
    RaiseError(number, source);
}

const LiveState& clsDataLink::Live() const {
    return mState->live.Now();
}

void clsDataLink::RequireGeneration(std::int32_t lGeneration) {
    const auto require = [&] {
        if (Live().generation != lGeneration)
            throw QNError(ErrFormerPrinter, "Datalink:RequireGeneration",
                          std::string(FormerPrinter));
    };
    require();
    if (Live().identity.value.IsKnown()) return;
    const PrinterIdentity who{ModelText(), VersionText()};
    if (who.IsKnown()) mState->live.Identity(who, LearntReply);
    require();
}

void LinkState::RaiseLiveState() {
    if (serial == nullptr) return; // torn down
    const LiveState& now = live.Now();
    const HostCall guard(link);
    link.LiveStateEvent.Raise(now.line.value, now.printer.value, now.generation);
}

void LinkState::NoteLine(const QNError* failure) {
    if (serial == nullptr) return;
    if (serial->PortOpen())
        live.Line(LineOpen);
    else if (failure != nullptr)
        live.Line(failure->Number() == SerialErrPortBusy ? LineBusy : LineClosed,
                  failure->Description());
    else
        live.Line(LineClosed, serial->WhyClosed());
}

void LinkState::NotePlace() {
    if (settingSeveral > 0 || serial == nullptr) return;
    live.Place({.port = serial->PortNumber(),
                .name = serial->PortTarget(),
                .settings = link.SettingsText() + "," + flowcontrol});
}

void LinkState::NoteTalk() {
    if (IsKeptFrom(lastSearch) && live.Now().line.value == LineOpen)
        live.Says(lastSearch.heard.talk);
}

void LinkState::NobodyAnswered() {
    if (live.Now().printer.value != PrinterRebooting) live.NobodyFound();
}

} // namespace qncomm
