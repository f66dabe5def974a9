// Restarting the printer and waiting until it answers again.

#include "DetachedSink.h"
#include "LinkState.h"
#include "common/Numbers.h"

namespace qncomm {
namespace {

constexpr std::int32_t BeforeDsrTest = 1000;
constexpr std::int32_t DsrPoll = 100;
constexpr std::int32_t BootTime = 10000;
constexpr std::int32_t BetweenAttempts = 2000;
constexpr std::int32_t AttemptsPerSearch = 3;

/// The printer counts as restarting for as long as it is waited for, however that ends.
class Restarting {
  public:
    explicit Restarting(LinkState& state) : mState(state) {
        mState.live.Printer(PrinterRebooting, LearntCommand);
    }
    ~Restarting() {
        if (mState.live.Now().printer.value != PrinterRebooting) return;
        try {
            mState.live.Printer(PrinterUnknown, LearntNot);
        } catch (...) { // NOLINT(bugprone-empty-catch): another error is on its way
        }
    }
    Restarting(const Restarting&) = delete;
    Restarting& operator=(const Restarting&) = delete;

  private:
    LinkState& mState;
};

} // namespace

DetachedSink::DetachedSink(LinkState& state)
    : mState(state), mThreshold(state.Serial().ReceiveThreshold()) {
    Detach();
}

void DetachedSink::Detach() {
    mState.Serial().SetEventSink({});
    if (mState.Serial().ReceiveThreshold() != 0) mState.Serial().SetReceiveThreshold(0);
}

DetachedSink::~DetachedSink() {
    if (mState.serial == nullptr) return;
    if (mThreshold != 0) mState.serial->SetReceiveThreshold(mThreshold);
    mState.AttachSink();
}

void clsDataLink::Reboot() {
    PortClaim claim = AcquirePort();
    if (!claim) return;
    const std::unique_ptr<ShownWindow> window = mState->host.dialogs.ShowWaitForReboot();
    {
        DetachedSink detached(*mState);
        const Restarting restarting(*mState);
        mState->Serial().Write("REBOOT\r\n");
        Delay(BeforeDsrTest);
        // Nobody tells of the line's change; how long a printer is off is up to a person.
        mState->Await({.wholeMs = WaitBounds::Endless, .stepMs = DsrPoll}, [this] {
            return !mState->dsrDetectActive || mState->Serial().DSRState()
                   || !mState->Serial().PortOpen();
        });
        PurgePort();
        Delay(BootTime);
        mState->WaitForBoot(detached);
        mState->live.Printer(PrinterAtPrompt, LearntText);
    }
    claim.Release();
}

void LinkState::WaitForBoot(DetachedSink& detached) {
    std::string tail; // what came last, in case the answer is split
    for (std::int32_t attempt = 1;; ++attempt) {
        link.Delay(BetweenAttempts);
        const std::string more = Serial().Read();
        tail += more;
        if (tail.find("Ok") != std::string::npos) return;
        if (!tail.empty()) tail.erase(0, tail.size() - 1);
        if (attempt % AttemptsPerSearch != 0) {
            if (more.empty()) Serial().Write("SYSVAR(18)=-1\r\n");
            continue;
        }
        if (link.AutoConnect(ToInt16(Val(commport)))) return;
        detached.Detach();
    }
}

} // namespace qncomm
