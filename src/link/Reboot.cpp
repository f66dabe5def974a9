// Restarting the printer and waiting until it answers again.

#include "DetachedSink.h"
#include "common/Numbers.h"
#include "link/clsDataLink.h"

namespace qncomm {
namespace {

constexpr std::int32_t BeforeDsrTest = 1000;
constexpr std::int32_t DsrPoll = 100;
constexpr std::int32_t BootTime = 10000;
constexpr std::int32_t BetweenAttempts = 2000;
constexpr std::int32_t AttemptsPerSearch = 3;

} // namespace

DetachedSink::DetachedSink(clsDataLink& link) : mLink(link) {
    Detach();
}

void DetachedSink::Detach() {
    mLink.Serial().SetEventSink({});
    mLink.Serial().SetReceiveThreshold(0);
}

DetachedSink::~DetachedSink() {
    if (mLink.mSerial == nullptr) return;
    mLink.mSerial->SetReceiveThreshold(1);
    mLink.AttachSink();
}

void clsDataLink::Reboot() {
    PortClaim claim = AcquirePort();
    if (!claim) return;
    const std::unique_ptr<ShownWindow> window = mHost.dialogs.ShowWaitForReboot();
    {
        DetachedSink detached(*this);
        Serial().Write("REBOOT\r\n");
        Delay(BeforeDsrTest);
        while (mDSRDetectActive && !Serial().DSRState() && Serial().PortOpen())
            Yield(DsrPoll);
        PurgePort();
        Delay(BootTime);
        WaitForBoot(detached);
    }
    claim.Release();
}

void clsDataLink::WaitForBoot(DetachedSink& detached) {
    std::string tail; // what came last, in case the answer is split
    for (std::int32_t attempt = 1;; ++attempt) {
        Delay(BetweenAttempts);
        tail += Serial().Read();
        if (tail.find("Ok") != std::string::npos) return;
        if (!tail.empty()) tail.erase(0, tail.size() - 1);
        if (attempt % AttemptsPerSearch != 0) {
            if (tail.empty()) Serial().Write("SYSVAR(18)=-1\r\n");
            continue;
        }
        if (AutoConnect(ToInt16(Val(mCommport)))) return;
        detached.Detach();
    }
}

} // namespace qncomm
