#include "testing/line/ServedPrinter.h"

#include "PrinterServer.h"
#include "PtyEndpoint.h"
#include "Rfc2217Endpoint.h"
#include "TcpEndpoint.h"
#include "simulator/VirtualPrinter.h"

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
    OnEndpoint(const std::string& printer, qnsim::OpenedEndpoint opened, const std::string& scheme)
        : mEndpoint(std::move(opened.endpoint)),
          mStop(::eventfd(0, EFD_CLOEXEC)),
          mPrinter(OptionsOf(printer)) {
        if (!mEndpoint) throw std::runtime_error(opened.error);
        const std::string address = mEndpoint->Address();
        mAddress = address.find("://") == std::string::npos ? scheme + address : address;
        mThread = std::thread([this] {
            qnsim::PrinterServer(mPrinter, *mEndpoint, mStop.Get()).Run();
            mEndpoint.reset(); // a cut line is a far side that is gone
        });
    }
    ~OnEndpoint() override {
        ::eventfd_write(mStop.Get(), 1);
        mThread.join();
    }
    std::string Address() const override { return mAddress; }

  private:
    std::unique_ptr<qnsim::Endpoint> mEndpoint;
    qnsim::Descriptor mStop;
    qnsim::VirtualPrinter mPrinter;
    std::string mAddress;
    std::thread mThread;
};

} // namespace

std::unique_ptr<ServedPrinter> PrinterInProcess(const std::string& sPrinter) {
    return std::make_unique<InProcess>(sPrinter);
}

std::unique_ptr<ServedPrinter> PrinterOnPty(const std::string& sPrinter) {
    return std::make_unique<OnEndpoint>(sPrinter, qnsim::PtyEndpoint::Open(""), "");
}

std::unique_ptr<ServedPrinter> PrinterOnTcp(const std::string& sPrinter) {
    return std::make_unique<OnEndpoint>(sPrinter, qnsim::TcpEndpoint::Open(0), "tcp://");
}

std::unique_ptr<ServedPrinter> PrinterOnRfc2217(const std::string& sPrinter) {
    return std::make_unique<OnEndpoint>(sPrinter, qnsim::Rfc2217Endpoint::Open(0), "rfc2217://");
}

} // namespace qncomm::testing
