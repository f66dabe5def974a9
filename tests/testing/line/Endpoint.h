#pragma once

#include "serial/ByteChannel.h"

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace qncomm::testing {

/// The far side of a line of some kind, as a test plays it.
class Endpoint {
  public:
    virtual ~Endpoint() = default;

    /// Where the serial control finds the line.
    virtual std::string Address() const = 0;
    virtual ChannelFactory Factory() { return MakeChannel; }

    /// Moves what can be moved: accepts the connection, sends what waits, collects what came.
    virtual void Pump() = 0;
    /// The far side goes away, and comes back at the same address.
    virtual void Unplug() = 0;
    virtual void PlugIn() = 0;

    /// Queues bytes for the host.
    void Send(std::string_view bytes) {
        mToHost += bytes;
        Pump();
    }
    bool AllSent() const { return mToHost.empty(); }
    /// What has come from the host.
    const std::string& Taken() const { return mFromHost; }
    /// While true, nothing is read from the host.
    bool deaf = false;

  protected:
    std::string mToHost;
    std::string mFromHost;
};

/// One kind of line, for a table of them.
struct EndpointKind {
    const char* name;
    std::function<std::unique_ptr<Endpoint>()> make;
};

inline void PrintTo(const EndpointKind& kind, std::ostream* stream) {
    *stream << kind.name;
}

std::unique_ptr<Endpoint> MakeFakeEndpoint();
std::unique_ptr<Endpoint> MakePtyEndpoint();
std::unique_ptr<Endpoint> MakeTcpEndpoint();

/// Yields until the condition holds, pumping the endpoint; false when it does not come true within
/// a time that no machine needs.
bool Until(Reactor& reactor, Endpoint* endpoint, const std::function<bool()>& condition);

} // namespace qncomm::testing
