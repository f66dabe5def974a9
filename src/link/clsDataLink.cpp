#include "link/clsDataLink.h"

#include "common/QNError.h"
#include "common/RuntimeErrors.h"
#include "common/StopWatch.h"
#include "common/modErrorHandling.h"
#include "link/HostCall.h"

#include <array>
#include <utility>

namespace qncomm {
namespace {

constexpr std::int32_t SerialBufferSize = 4096;
constexpr std::int16_t ReservedValue = 2;
constexpr std::array DefaultFrameFormats = {"m,8,2", "n,8,2", "n,7,2", "n,7,1"};

} // namespace

clsDataLink::clsDataLink(const LinkHost& host) : mHost(host) {}

clsDataLink::~clsDataLink() {
    try {
        TearDown();
    } catch (
        const std::exception&) { // NOLINT(bugprone-empty-catch): the port goes with its control
    }
}

SerialControl& clsDataLink::Serial() const {
    if (mSerial == nullptr) RaiseRuntimeError(RtObjectNotSet, "clsDataLink");
    return *mSerial;
}

void clsDataLink::SetSerialPort(SerialControl* serial) {
    mSerial = serial;
    if (mSerial != nullptr && mSerial->IsFunctional()) {
        mSerial->SetReceiveThreshold(1);
        mSerial->SetBufferSizes(SerialBufferSize, SerialBufferSize);
        mSerial->SetReceiveMode(ReceiveToLink);
        mSerial->SetReserved(ReservedValue);
    }
    if (mSerial != nullptr) AttachSink();
    for (const char* format : DefaultFrameFormats)
        if (!mFrameFormats.Contains(format)) mFrameFormats.Add(format, format);
}

void clsDataLink::SetRegSettings(std::shared_ptr<qncomm::RegSettings> settings) {
    mRegSettings = std::move(settings);
    if (mRegSettings) LoadCommSettings();
}

void clsDataLink::TearDown() {
    if (mSerial != nullptr) {
        SerialControl& serial = *std::exchange(mSerial, nullptr);
        serial.SetEventSink({});
        if (serial.PortOpen()) serial.SetPortOpen(false);
    }
    mUseCount = 0;
    mTerminalActive = mTerminalHeld = false;
    mAutoConnectBaudrates.Clear();
    mFrameFormats.Clear();
}

void clsDataLink::AttachSink() {
    Serial().SetEventSink([this](SerialEvent event) { OnSerialEvent(event); });
}

void clsDataLink::Yield(std::int32_t limit) {
    const HostCall guard(*this);
    mHost.loop.Yield(limit);
}

void clsDataLink::Delay(std::int32_t lMilliseconds) {
    const StopWatch watch(mHost.loop);
    while (const std::int32_t left = watch.UntilExceeds(lMilliseconds))
        Yield(left);
}

bool clsDataLink::ReportStatus(std::string& message, std::int16_t progress) {
    const HostCall guard(*this);
    bool cancel = false;
    StatusEvent.Raise(message, progress, cancel);
    return cancel;
}

void clsDataLink::Fail(std::int32_t number, std::string_view source) {
    ReleaseBeforeRaise();
    RaiseError(number, source);
}

} // namespace qncomm
