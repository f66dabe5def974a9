#include "testing/line/ServedPrinter.h"

#include "endpoints/PrinterServer.h"
#include "endpoints/PtyEndpoint.h"
#include "endpoints/Rfc2217Endpoint.h"
#include "endpoints/TcpEndpoint.h"
#include "platform/Fd.h"
#include "platform/PollLoop.h"
#include "simulator/VirtualPrinter.h"
#include "testing/core/OwnMachine.h"

#include <functional>
#include <stdexcept>
#include <sys/eventfd.h>
#include <thread>
#include <utility>

namespace qncomm::testing {
namespace {

qnsim::Options OptionsOf(const std::string& printer) {
    const qnsim::ParseResult parsed = qnsim::ParseAddress(printer);
    if (!parsed.options) throw std::invalid_argument(parsed.error);
    return *parsed.options;
}

class InProcess : public ServedPrinter {
  public:
    explicit InProcess(std::string printer) : mAddress("sim:" + std::move(printer)) {}
    std::string Address() const override { return mAddress; }

  private:
    std::string mAddress;
};

/// Served by the loop of the printer's own program, on a thread.
class OnEndpoint : public ServedPrinter {
  public:
    using Open = std::function<qnsim::OpenedEndpoint(Reactor&)>;

    OnEndpoint(const std::string& printer, const Open& open, const std::string& scheme)
        : mStop(::eventfd(0, EFD_CLOEXEC)), mPrinter(OptionsOf(printer)) {
        qnsim::OpenedEndpoint opened = open(mLoop);
        mEndpoint = std::move(opened.endpoint);
        if (!mEndpoint) throw std::runtime_error(opened.error);
        const std::string address = mEndpoint->Address();
        mAddress = address.find("://") == std::string::npos ? scheme + address : address;
        mThread = std::thread([this] {
            MakeMachineOfItsOwn();
            qnsim::PrinterServer server(mPrinter, *mEndpoint, mLoop);
            const auto stop =
                mLoop.Watch(mStop.Get(), {.readable = true}, [&](FdEvents) { server.Stop(); });
            server.Run();
            mEndpoint.reset(); // a cut line is a far side that is gone
        });
    }
    ~OnEndpoint() override {
        ::eventfd_write(mStop.Get(), 1);
        mThread.join();
    }
    std::string Address() const override { return mAddress; }

  private:
    Fd mStop;
    PollLoop mLoop;
    std::unique_ptr<qnsim::Endpoint> mEndpoint;
    qnsim::VirtualPrinter mPrinter;
    std::string mAddress;
    std::thread mThread;
};

} // namespace

std::unique_ptr<ServedPrinter> PrinterInProcess(const std::string& sPrinter) {
    return std::make_unique<InProcess>(sPrinter);
}

std::unique_ptr<ServedPrinter> PrinterOnPty(const std::string& sPrinter) {
    return std::make_unique<OnEndpoint>(
        sPrinter, [](Reactor& loop) { return qnsim::PtyEndpoint::Open(loop, ""); }, "");
}

std::unique_ptr<ServedPrinter> PrinterOnTcp(const std::string& sPrinter) {
    return std::make_unique<OnEndpoint>(
        sPrinter, [](Reactor& loop) { return qnsim::TcpEndpoint::Open(loop, 0); }, "tcp://");
}

std::unique_ptr<ServedPrinter> PrinterOnRfc2217(const std::string& sPrinter) {
    return std::make_unique<OnEndpoint>(
        sPrinter, [](Reactor& loop) { return qnsim::Rfc2217Endpoint::Open(loop, 0); },
        "rfc2217://");
}

} // namespace qncomm::testing
