#pragma once

// A pseudo-terminal that hosts open like a serial device.

#include "endpoints/Endpoint.h"
#include "platform/Fd.h"

#include <memory>

namespace qnsim {

/// Hosts may come and go: between them the printer runs on and what it says is lost, as on a cable
/// nobody holds. Of the host's settings the rate and the stop bits are seen; a pseudo-terminal
/// carries no data bits, no parity and no modem lines.
class PtyEndpoint : public Endpoint {
  public:
    /// link: a name to give the device as well, replaced when it is a symbolic link already; empty
    /// = none.
    static OpenedEndpoint Open(qncomm::Reactor& loop, const std::string& link);
    ~PtyEndpoint() override;

    std::string Address() const override { return mLink.empty() ? mDevice : mLink; }
    void Want(bool input, bool output) override;
    void Refresh() override;
    bool Connected() const override { return mConnected; }
    LineFormat HostFormat() const override { return mFormat; }
    std::vector<HostAction> Receive(std::size_t max) override;
    std::size_t Write(std::string_view bytes) override;

    const std::string& Device() const { return mDevice; }

  private:
    PtyEndpoint(qncomm::Reactor& loop, qncomm::Fd master, qncomm::Fd openings, std::string device);
    bool MakeLink(const std::string& link);
    LineFormat CurrentFormat() const;
    /// Whether no host has the device open, or leaves it within the time.
    bool HungUp(int limitMs) const;

    qncomm::Fd mMaster;
    qncomm::Fd mOpenings;                       ///< tells when a host opens the device
    std::unique_ptr<qncomm::FdWatch> mArrivals; ///< end before the descriptors that they watch
    std::unique_ptr<qncomm::FdWatch> mTraffic;
    std::string mDevice;
    std::string mLink;
    bool mConnected = false;
    LineFormat mFormat; ///< of the host that is there, or was
};

} // namespace qnsim
