// Settings, properties and what the counts tell.

#include "serial/PDQComm.h"

#include "ReceivePath.h"
#include "TransferInProgress.h"
#include "TransmitQueue.h"
#include "common/QNError.h"
#include "common/RuntimeErrors.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qncomm {
namespace {

constexpr std::size_t DefaultBuffer = 4096;
constexpr std::int16_t XonXoffBit = 1;
constexpr std::int16_t RtsCtsBit = 2;

std::int32_t CountOf(std::size_t bytes) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(bytes, most));
}

std::size_t SizeOf(std::int32_t bytes) {
    return static_cast<std::size_t>(std::max(bytes, 1));
}

} // namespace

PDQComm::PDQComm(Reactor& reactor, PortBindings bindings, TraceSink* trace, ChannelFactory factory)
    : mReactor(reactor),
      mBindings(std::move(bindings)),
      mTrace(trace),
      mFactory(std::move(factory)),
      mReceive(std::make_unique<ReceivePath>(DefaultBuffer)),
      mTransmit(std::make_unique<TransmitQueue>(DefaultBuffer)),
      mFire(reactor.CreateAlarm([this] { FireEvents(); })),
      mDrain(reactor.CreateAlarm([this] { ScheduleDrain(); })),
      mTransferDue(reactor.CreateAlarm([this] { RunTransfer(); })) {}

PDQComm::~PDQComm() {
    Close();
}

void PDQComm::SetPortNumber(std::int16_t iPort) {
    if (iPort == mPortNumber) return;
    const bool wasOpen = PortOpen();
    Close();
    mPortNumber = iPort;
    if (wasOpen) Open();
}

void PDQComm::SetPortSettings(const std::string& sSettings) {
    std::optional<LineSettings> settings = ParseLineSettings(sSettings);
    if (!settings) RaiseRuntimeError(RtInvalidCall, "PDQComm");
    settings->xonXoff = mSettings.xonXoff;
    settings->rtsCts = mSettings.rtsCts;
    Apply(*settings);
    mSettingsText = sSettings;
}

std::int16_t PDQComm::Handshaking() const {
    return static_cast<std::int16_t>((mSettings.xonXoff ? XonXoffBit : 0)
                                     | (mSettings.rtsCts ? RtsCtsBit : 0));
}

void PDQComm::SetHandshaking(std::int16_t iMode) {
    LineSettings settings = mSettings;
    settings.xonXoff = (iMode & XonXoffBit) != 0;
    settings.rtsCts = (iMode & RtsCtsBit) != 0;
    Apply(settings);
}

void PDQComm::SetPortOpen(bool bOpen) {
    if (bOpen == PortOpen()) return;
    if (bOpen)
        Open();
    else
        Close();
}

void PDQComm::KeepPort(bool bOn) {
    mKeepsPort = bOn;
    for (const auto& [address, known] : mChannels)
        known.channel->Keep(bOn);
}

bool PDQComm::ReachPort() {
    const PortBinding* const binding = mBindings.Find(mPortNumber);
    return PortOpen() || binding == nullptr
           || ChannelFor(binding->address).channel->Reach(mSettings);
}

bool PDQComm::ProbePort(std::int16_t iPort) {
    const PortBinding* const binding = mBindings.Find(iPort);
    if (binding == nullptr) return false;
    return ChannelFor(binding->address).channel->Probe().Ok();
}

bool PDQComm::DSRState() const {
    return mOpen != nullptr && mOpen->Dsr().value_or(true);
}

std::int16_t PDQComm::ReceiveThreshold() const {
    return mReceive->threshold;
}

void PDQComm::SetReceiveThreshold(std::int16_t iBytes) {
    mReceive->threshold = iBytes;
    ScheduleEvents();
}

void PDQComm::SetBufferSizes(std::int32_t lReceive, std::int32_t lTransmit) {
    mReceive->SetCapacity(SizeOf(lReceive));
    mTransmit->SetCapacity(SizeOf(lTransmit));
    WantEvents();
}

std::int32_t PDQComm::TransmitBufferSize() const {
    return CountOf(mTransmit->Capacity());
}

std::int32_t PDQComm::ReceiveCount() const {
    return CountOf(mReceive->Count());
}

std::int32_t PDQComm::TransmitCount() const {
    if (mOpen == nullptr) return 0;
    return CountOf(mTransmit->Count() + mOpen->OutputPending());
}

void PDQComm::FlushReceive() {
    mReceive->Clear();
    if (mOpen == nullptr) return;
    mOpen->DiscardInput();
    WantEvents();
}

void PDQComm::FlushTransmit() {
    mTransmit->Clear();
    if (mOpen == nullptr) return;
    mOpen->DiscardOutput();
    mLineFreeUs = 0;
    WantEvents();
}

IoResult PDQComm::SetBreak(bool bOn) {
    if (mOpen == nullptr) return {IoStatus::Failed, 0, "the port is not open"};
    IoResult result = mOpen->SetBreak(bOn);
    if (result.Ok()) Trace(TraceKind::Event, bOn ? "break on" : "break off");
    return result;
}

void PDQComm::HoldBreak(bool bOn) {
    if (mOpen == nullptr) return;
    const IoResult result = SetBreak(bOn);
    if (!result.Ok()) throw QNError(SerialErrDevice, "PDQComm", FailureFor(result).description);
}

void PDQComm::WriteTerminal(std::string_view sText) {
    if (mTerminal) mTerminal(sText);
}

void PDQComm::SetEventSink(EventSink sink) {
    mSink = sink ? std::make_shared<const EventSink>(std::move(sink)) : nullptr;
    ScheduleEvents();
}

void PDQComm::Trace(TraceKind kind, std::string_view bytes) const {
    if (mTrace != nullptr) mTrace->Record(mReactor.NowMs(), kind, bytes);
}

} // namespace qncomm
