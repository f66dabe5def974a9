#include "simulator/VirtualPrinter.h"

#include "Console.h"
#include "Line.h"
#include "StateFolder.h"

#include <algorithm>

namespace qnsim {
namespace {

constexpr Micros MicrosPerMilli = 1000;
constexpr Micros DataTimeout = 5'000'000; // a load waits so long for its next byte
constexpr int StatementsPerSlice = 5000;
constexpr std::size_t BytesPerSlice = 64UL * 1024;
constexpr std::size_t OutputLimit =
    256UL * 1024;                           // a host that does not read stops the printer here
constexpr std::size_t ReceiveBuffer = 4096; // of a paced printer; what comes beyond it is lost
constexpr std::size_t StopHostAt = 3072;
constexpr std::size_t ResumeHostAt = 1024;
// A transfer, and a program on a paced line, fill it only so far: bytes that are not on the line
// yet can still be dropped, and a program that is stopped falls silent.
constexpr std::size_t PacedLineTakes = 512;
constexpr std::size_t LineTakes = 16UL * 1024;
// What a host can hand over before the line has carried it.
constexpr std::size_t PacedWireTakes = 128;
// A port asks for more, and a load looks at what came, when this much has passed: waking somebody
// up for each byte costs more than carrying it.
constexpr std::size_t WireStep = PacedWireTakes / 4;
constexpr char Xon = '\x11';
constexpr char Xoff = '\x13';

std::string StateLost(const std::string& folder) {
    return "the state cannot be kept in " + folder;
}

} // namespace

class VirtualPrinter::Impl {
  public:
    explicit Impl(const Options& options);

    void HostOpened() { mHostOpen = true; }
    void HostClosed();
    void SetHostLines(bool rts) { mHostReady = rts; }
    void Break();
    void Advance(Micros now);
    std::string ToHost(Micros now, std::size_t max);
    std::optional<Micros> NextDue() const;
    bool Dsr() const { return !mFaults.dsrDropped && !mBootEnd && !mLine.IsCut(); }
    bool Cts() const { return Dsr() && !(mLine.CurrentUart().rtsCts && mHostStopped); }
    std::size_t Backlog() const { return mLine.ToPrinter().Size() + mConsole->Waiting(); }
    std::size_t Room(Micros now) const;
    std::optional<Micros> RoomDue() const;
    const std::string& Problem() const { return mProblem; }
    Line& Wire() { return mLine; }
    const Line& Wire() const { return mLine; }

  private:
    void Work();
    void Receive();
    std::string Accept(std::string bytes);
    void GovernHost();
    void Send();
    void Restart();
    void LosePower();
    void EndBoot();
    std::string Greeting() const;
    bool OutputBlocked() const;
    std::size_t LineRoom() const;
    /// When the printer looks at what has arrived.
    std::optional<Micros> InputDue() const;
    std::size_t ProgramRoom() const { return mLine.IsPaced() ? LineRoom() : OutputLimit; }
    /// What runs goes on when the line has carried some of what was said.
    bool WaitsForLine() const { return mConsole->Runs() && ProgramRoom() == 0; }
    bool CanWork() const { return !mBootEnd && !mLine.IsCut() && !OutputBlocked(); }

    Faults mFaults;
    std::optional<std::string> mGreeting;
    ConsoleMoods mMoods;
    int mBootMs;
    std::size_t mLineTakes;
    Machine mMachine;
    std::string mStateDir;
    std::optional<StateFolder> mState;
    std::string mProblem;
    std::unique_ptr<Console> mConsole;
    Line mLine;
    Micros mNow = 0;
    std::optional<Micros> mBootEnd;
    Micros mLastData = 0;
    bool mHostOpen = false;
    bool mHostReady = true;    // RTS
    bool mHeld = false;        // an Xoff came from the host
    bool mHostStopped = false; // the host was told to stop
};

VirtualPrinter::Impl::Impl(const Options& options)
    : mFaults(options.faults),
      mGreeting(options.moods.greeting),
      mMoods(options.moods),
      mBootMs(options.bootMs),
      mLineTakes(options.paced ? PacedLineTakes : LineTakes),
      mMachine(options),
      mConsole(std::make_unique<Console>(mMachine, mFaults, mMoods)),
      mLine(mMachine.setup.Channel(options.uart), options) {
    if (mMachine.labels && !mMachine.labels->IsUsable())
        mProblem = "labels cannot be written to " + options.labelsDir;
    if (options.stateDir.empty()) return;
    mStateDir = options.stateDir;
    mState.emplace(options.stateDir);
    if (!mState->Attach(mMachine.storage, mMachine.setup)) mProblem = StateLost(mStateDir);
    mLine.SetUart(mMachine.setup.Channel(options.uart));
}

void VirtualPrinter::Impl::HostClosed() {
    mHostOpen = false;
    mLine.DropToHost();
}

void VirtualPrinter::Impl::Break() {
    if (mBootEnd) return;
    mConsole->Break();
    Send();
}

bool VirtualPrinter::Impl::OutputBlocked() const {
    return (mLine.CurrentUart().obeysXon && mHeld) || (mLine.CurrentUart().rtsCts && !mHostReady)
           || mLine.ToHost().Size() > OutputLimit;
}

std::size_t VirtualPrinter::Impl::Room(Micros now) const {
    if (!mLine.IsPaced()) return std::string::npos;
    const std::size_t onTheWay = mLine.ToPrinter().OnTheWay(now);
    return onTheWay + WireStep > PacedWireTakes ? 0 : PacedWireTakes - onTheWay;
}

std::optional<Micros> VirtualPrinter::Impl::RoomDue() const {
    if (!mLine.IsPaced()) return std::nullopt;
    const auto& wire = mLine.ToPrinter();
    const std::size_t stays = PacedWireTakes - WireStep;
    return wire.DueOf(wire.Size() > stays ? wire.Size() - stays : 1);
}

std::optional<Micros> VirtualPrinter::Impl::InputDue() const {
    return mLine.ToPrinter().DueOf(std::clamp<std::size_t>(mConsole->Missing(), 1, WireStep));
}

std::size_t VirtualPrinter::Impl::LineRoom() const {
    return mLineTakes - std::min(mLineTakes, mLine.ToHost().Size());
}

void VirtualPrinter::Impl::Advance(Micros now) {
    mNow = std::max(mNow, now);
    mMachine.now = mNow;
    mMachine.lineRoom = LineRoom();
    mMachine.programRoom = ProgramRoom();
    if (mBootEnd && mNow >= *mBootEnd) EndBoot();
    Receive();
    if (CanWork()) Work();
    if (mLine.IsPaced()) mConsole->Overrun(ReceiveBuffer);
}

void VirtualPrinter::Impl::Work() {
    mConsole->Work(StatementsPerSlice);
    if (mConsole->AwaitsData() && mNow - mLastData >= DataTimeout) mConsole->DataTimedOut();
    Send();
    if (mMachine.powerLost) LosePower();
    if (mMachine.restartWanted) Restart();
    GovernHost();
}

void VirtualPrinter::Impl::Receive() {
    if (mConsole->Waiting() >= BytesPerSlice) return;
    std::string bytes = mLine.ToPrinter().Take(mNow, BytesPerSlice);
    if (bytes.empty()) {
        if (!mConsole->AwaitsData()) mLastData = mNow;
        return;
    }
    mLastData = mNow;
    // What arrives while the printer starts is lost.
    if (!mBootEnd) mConsole->Receive(Accept(std::move(bytes)));
}

std::string VirtualPrinter::Impl::Accept(std::string bytes) {
    if (!mLine.CurrentUart().obeysXon) return bytes;
    const auto control = [](char c) { return c == Xon || c == Xoff; };
    const auto last = std::find_if(bytes.rbegin(), bytes.rend(), control);
    if (last == bytes.rend()) return bytes;
    mHeld = *last == Xoff;
    bytes.erase(std::remove_if(bytes.begin(), bytes.end(), control), bytes.end());
    return bytes;
}

void VirtualPrinter::Impl::GovernHost() {
    const std::size_t waiting = mConsole->Waiting();
    const bool stop = waiting > (mHostStopped ? ResumeHostAt : StopHostAt);
    if (stop == mHostStopped) return;
    mHostStopped = stop;
    if (!mLine.CurrentUart().sendsXon || !mHostOpen) return;
    mLine.PrinterSends(std::string_view(stop ? &Xoff : &Xon, 1), mNow);
}

void VirtualPrinter::Impl::Send() {
    if (!mMachine.out.empty()) {
        if (mHostOpen) mLine.PrinterSends(mMachine.out, mNow);
        mMachine.out.clear();
    }
    if (!mMachine.setupChanged) return;
    // The reply has gone out under the old settings.
    mMachine.setupChanged = false;
    if (mState && !mState->SaveSetup(mMachine.setup)) mProblem = StateLost(mStateDir);
    mLine.SetUart(mMachine.setup.Channel(mMachine.wiredUart));
}

void VirtualPrinter::Impl::LosePower() {
    mMachine.powerLost = false;
    mLine.ToHost().ClearOnTheWay(mNow);
    Restart();
}

void VirtualPrinter::Impl::Restart() {
    mBootEnd = mNow + mBootMs * MicrosPerMilli;
    mMachine.restartWanted = false;
    mMachine.immediate = true;
    mMachine.system.Reset();
    mMachine.storage.Restart();
    mMachine.label.Clear();
    mConsole = std::make_unique<Console>(mMachine, mFaults, mMoods);
    mHeld = false;
    mHostStopped = false;
}

std::string VirtualPrinter::Impl::Greeting() const {
    if (!mGreeting)
        return "\r\n" + mMachine.version + "\r\n" + std::string(mMachine.model.code) + "\r\nOk\r\n";
    return mGreeting->empty() ? std::string() : *mGreeting + "\r\n";
}

void VirtualPrinter::Impl::EndBoot() {
    mBootEnd.reset();
    mLine.ToPrinter().Take(mNow, static_cast<std::size_t>(-1));
    mMachine.out = Greeting();
    Send();
}

std::string VirtualPrinter::Impl::ToHost(Micros now, std::size_t max) {
    Advance(now);
    return mLine.ToHost().Take(mNow, max);
}

std::optional<Micros> VirtualPrinter::Impl::NextDue() const {
    std::optional<Micros> due = mLine.ToHost().NextDue();
    const auto sooner = [&due](std::optional<Micros> time) {
        if (time && (!due || *time < *due)) due = time;
    };
    if (mLine.IsCut()) return due;
    sooner(mBootEnd);
    if (mConsole->Waiting() < BytesPerSlice) sooner(InputDue());
    if (CanWork() && mConsole->Busy() && !WaitsForLine()) sooner(mNow);
    if (CanWork()) sooner(mConsole->NextDue());
    if (CanWork() && mConsole->AwaitsData()) sooner(mLastData + DataTimeout);
    if (const FileTransfer* transfer = mConsole->Transfer(); transfer != nullptr && CanWork()) {
        sooner(transfer->NextDue());
        if (transfer->HasOutput() && LineRoom() != 0) sooner(mNow);
    }
    return due;
}

VirtualPrinter::VirtualPrinter(const Options& options) : mImpl(std::make_unique<Impl>(options)) {}

VirtualPrinter::~VirtualPrinter() = default;

void VirtualPrinter::HostOpened(Micros now) {
    mImpl->Advance(now);
    mImpl->HostOpened();
}

void VirtualPrinter::HostClosed(Micros now) {
    mImpl->Advance(now);
    mImpl->HostClosed();
}

void VirtualPrinter::SetHostFormat(const LineFormat& format, Micros now) {
    mImpl->Advance(now);
    mImpl->Wire().SetHostFormat(format, now);
}

void VirtualPrinter::SetHostLines(bool /*dtr*/, bool rts, Micros now) {
    mImpl->SetHostLines(rts);
    mImpl->Advance(now);
}

void VirtualPrinter::Break(Micros now) {
    mImpl->Advance(now);
    mImpl->Break();
}

void VirtualPrinter::FromHost(std::string_view bytes, Micros now) {
    mImpl->Wire().HostSends(bytes, now);
}

std::string VirtualPrinter::ToHost(Micros now, std::size_t max) {
    return mImpl->ToHost(now, max);
}

HostErrors VirtualPrinter::TakeHostErrors() {
    return mImpl->Wire().TakeHostErrors();
}

bool VirtualPrinter::Paced() const {
    return mImpl->Wire().IsPaced();
}

std::size_t VirtualPrinter::PendingFromHost(Micros now) const {
    return mImpl->Wire().ToPrinter().OnTheWay(now);
}

std::size_t VirtualPrinter::Backlog() const {
    return mImpl->Backlog();
}

std::size_t VirtualPrinter::Room(Micros now) const {
    return mImpl->Room(now);
}

std::optional<Micros> VirtualPrinter::RoomDue() const {
    return mImpl->RoomDue();
}

void VirtualPrinter::DiscardFromHost(Micros /*now*/) {
    mImpl->Wire().ToPrinter().Clear();
}

void VirtualPrinter::DiscardToHost(Micros /*now*/) {
    mImpl->Wire().DropToHost();
}

std::optional<Micros> VirtualPrinter::NextDue() const {
    return mImpl->NextDue();
}

void VirtualPrinter::Advance(Micros now) {
    mImpl->Advance(now);
}

const std::string& VirtualPrinter::Problem() const {
    return mImpl->Problem();
}

bool VirtualPrinter::Dsr() const {
    return mImpl->Dsr();
}

bool VirtualPrinter::Cts() const {
    return mImpl->Cts();
}

bool VirtualPrinter::LineCut() const {
    return mImpl->Wire().IsCut();
}

} // namespace qnsim
