#include "VirtualPrinterChannel.h"

#include "assembly/AllChannelKinds.h"
#include "simulator/VirtualPrinter.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qncomm {
namespace {

constexpr std::string_view VirtualScheme = "sim:";
constexpr std::size_t InboxSize = 4096;
constexpr char Xon = '\x11';
constexpr char Xoff = '\x13';

qnsim::LineFormat FormatOf(const LineSettings& settings) {
    return {settings.baud, settings.dataBits, settings.stopBits, settings.parity};
}

} // namespace

constinit const ChannelKind VirtualPrinterKind{
    .scheme = VirtualScheme,
    .form = "sim:MODEL for the virtual printer",
    .check = [](std::string_view address) -> std::string {
        return qnsim::ParseAddress(address.substr(VirtualScheme.size())).error;
    },
    .make = [](std::string_view address, Reactor& reactor) -> std::unique_ptr<ByteChannel> {
        return std::make_unique<VirtualPrinterChannel>(reactor,
                                                       address.substr(VirtualScheme.size()));
    },
    .look = [](std::string_view /*address*/) -> PortStatus {
        return {PortState::Free, {}};
    },
    .searched = false,
};

ChannelKinds AllChannelKinds() {
    ChannelKinds kinds = SerialChannelKinds();
    kinds.push_back(&VirtualPrinterKind);
    return kinds;
}

struct VirtualPrinterChannel::Printer {
    explicit Printer(const qnsim::Options& options) : device(options) {}

    qnsim::VirtualPrinter device;
};

VirtualPrinterChannel::VirtualPrinterChannel(Reactor& reactor, std::string_view sPrinter)
    : mReactor(reactor),
      mPrinter(std::make_unique<Printer>(
          qnsim::ParseAddress(sPrinter).options.value_or(qnsim::Options{}))),
      mAlarm(reactor.CreateAlarm([this] {
          Run();
          const FdEvents ready = Ready(mWanted);
          Schedule();
          if (ready.Any() && mHandler) mHandler(ready);
      })) {}

VirtualPrinterChannel::~VirtualPrinterChannel() = default;

IoResult VirtualPrinterChannel::Open(const LineSettings& settings) {
    if (mPrinter->device.LineCut()) return {IoStatus::Missing, 0, "the line is cut"};
    if (const std::string& problem = mPrinter->device.Problem(); !problem.empty())
        return {IoStatus::Failed, 0, problem};
    const std::int64_t now = mReactor.NowUs();
    CatchUp(now);
    SetFormat(settings, now);
    mPrinter->device.HostOpened(now);
    mPrinter->device.SetHostLines(true, true, now);
    mWanted = {};
    mOpen = true;
    return {};
}

void VirtualPrinterChannel::Close() {
    if (!std::exchange(mOpen, false)) return;
    const std::int64_t now = mReactor.NowUs();
    mPrinter->device.Advance(now); // what has arrived has arrived
    mPrinter->device.DiscardFromHost(now);
    mPrinter->device.SetHostLines(false, false, now);
    mPrinter->device.HostClosed(now);
    mReceived.clear();
    mAlarm->Clear();
}

IoResult VirtualPrinterChannel::Configure(const LineSettings& settings) {
    SetFormat(settings, mReactor.NowUs());
    return {};
}

void VirtualPrinterChannel::SetFormat(const LineSettings& settings, std::int64_t now) {
    mObeysXon = settings.xonXoff;
    mObeysCts = settings.rtsCts;
    mHeld = false;
    mPrinter->device.SetHostFormat(FormatOf(settings), now);
}

IoResult VirtualPrinterChannel::SetBreak(bool bOn) {
    if (bOn) mPrinter->device.Break(mReactor.NowUs());
    Schedule();
    return {};
}

IoCount VirtualPrinterChannel::Read(std::span<char> buffer) {
    Run();
    const std::size_t count = mReceived.copy(buffer.data(), buffer.size());
    mReceived.erase(0, count);
    Schedule();
    if (count == 0 && mPrinter->device.LineCut())
        return {0, {IoStatus::Lost, 0, "the line was cut"}};
    return {count, {}};
}

IoCount VirtualPrinterChannel::Write(std::string_view bytes) {
    if (mPrinter->device.LineCut()) return {0, {IoStatus::Lost, 0, "the line was cut"}};
    const std::size_t count = std::min(bytes.size(), Room());
    mPrinter->device.FromHost(bytes.substr(0, count), mReactor.NowUs());
    Schedule();
    return {count, {}};
}

LineErrors VirtualPrinterChannel::TakeLineErrors() {
    const qnsim::HostErrors errors = mPrinter->device.TakeHostErrors();
    return {.frame = errors.frame, .parity = errors.parity};
}

std::size_t VirtualPrinterChannel::OutputPending() {
    return mPrinter->device.PendingFromHost(mReactor.NowUs());
}

void VirtualPrinterChannel::DiscardInput() {
    mReceived.clear();
    mPrinter->device.DiscardToHost(mReactor.NowUs());
}

void VirtualPrinterChannel::DiscardOutput() {
    mPrinter->device.DiscardFromHost(mReactor.NowUs());
}

std::optional<bool> VirtualPrinterChannel::Dsr() {
    return mPrinter->device.Dsr();
}

void VirtualPrinterChannel::Want(FdEvents events) {
    mWanted = events;
    Schedule();
}

FdEvents VirtualPrinterChannel::Wait(FdEvents events, std::int64_t lLimitUs) {
    const std::int64_t until = mReactor.NowUs() + std::max<std::int64_t>(lLimitUs, 0);
    for (;;) {
        Run();
        const std::int64_t now = mReactor.NowUs();
        if (const FdEvents ready = Ready(events); ready.Any() || now >= until) return ready;
        const std::int64_t due = NextWork(events).value_or(until);
        if (due > now) mReactor.WaitFor(-1, {}, std::min(due, until) - now);
    }
}

void VirtualPrinterChannel::Run() {
    const std::int64_t now = mReactor.NowUs();
    mPrinter->device.Advance(now);
    // What the host does not take stays in the printer, which then waits as on a full line.
    if (mReceived.size() < InboxSize)
        mReceived += Obeyed(mPrinter->device.ToHost(now, InboxSize - mReceived.size()));
}

/// What is left of the printer's bytes for the host; the Xon and Xoff among them are for the line.
std::string VirtualPrinterChannel::Obeyed(std::string bytes) {
    if (!mObeysXon) return bytes;
    std::erase_if(bytes, [this](char c) {
        if (c != Xon && c != Xoff) return false;
        mHeld = c == Xoff;
        return true;
    });
    return bytes;
}

std::size_t VirtualPrinterChannel::Room() const {
    const bool stopped = mHeld || (mObeysCts && !mPrinter->device.Cts());
    return stopped ? 0 : mPrinter->device.Room(mReactor.NowUs());
}

std::optional<std::int64_t> VirtualPrinterChannel::NextWork(FdEvents wanted) const {
    std::optional<std::int64_t> due;
    if (mReceived.size() < InboxSize) due = mPrinter->device.NextDue();
    if (const auto room = mPrinter->device.RoomDue(); wanted.writable && room)
        due = std::min(due.value_or(*room), *room);
    return due;
}

/// Advances the printer's clock by the time since the last look at it, in steps: it may have been
/// waiting for something in vain.
void VirtualPrinterChannel::CatchUp(std::int64_t now) {
    constexpr int mostSteps = 10'000;
    constexpr int mostBusySteps = 50; // a program without an end has had its share then
    std::int64_t last = 0;
    for (int step = 0, busy = 0; step < mostSteps && busy < mostBusySteps; ++step) {
        const auto due = mPrinter->device.NextDue();
        if (!due || *due > now) return;
        busy = *due > last ? 0 : busy + 1;
        last = *due;
        mPrinter->device.Advance(*due);
    }
}

void VirtualPrinterChannel::Schedule() {
    if (!mOpen) return;
    if (Ready(mWanted).Any()) {
        mAlarm->SetDue(mReactor.NowUs());
    } else if (const auto due = NextWork(mWanted)) {
        mAlarm->SetDue(*due);
    } else {
        mAlarm->Clear();
    }
}

FdEvents VirtualPrinterChannel::Ready(FdEvents wanted) const {
    const bool cut = mPrinter->device.LineCut();
    return {wanted.readable && !mReceived.empty(), wanted.writable && Room() > 0,
            cut && (wanted.readable || wanted.writable)};
}

} // namespace qncomm
