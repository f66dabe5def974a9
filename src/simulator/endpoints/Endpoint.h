#pragma once

// Where a host reaches the printer from outside the process.

#include "HostAction.h"
#include "simulator/VirtualPrinter.h"

#include <memory>
#include <poll.h>
#include <string>
#include <string_view>
#include <vector>

namespace qnsim {

/// One place that hosts come to, one after the other. Failures are values: an endpoint that cannot
/// be opened says so once, and a host that goes away is a state, not an error.
class Endpoint {
  public:
    virtual ~Endpoint() = default;

    /// How a host names it: a device path or an address.
    virtual std::string Address() const = 0;

    /// Adds what to wait for. wantInput: bytes from the host are welcome; wantOutput: bytes for it
    /// are waiting.
    virtual void AddWaits(std::vector<pollfd>& waits, bool wantInput, bool wantOutput) = 0;

    /// Looks whether a host is there now; called after each wait.
    virtual void Refresh() = 0;
    virtual bool Connected() const = 0;

    /// What is known of the host's line settings.
    virtual LineFormat HostFormat() const = 0;

    /// What the host has done by now, in its order, from at most max bytes of the connection; empty
    /// when there is nothing or it left. All of it is carried out before the next Write.
    virtual std::vector<HostAction> Receive(std::size_t max) = 0;

    /// The modem lines as the printer holds them now.
    virtual void ShowLines(bool /*dsr*/, bool /*cts*/) {}
    /// What the host's receiver finds wrong with the bytes that are written next.
    virtual void ShowErrors(const HostErrors& /*errors*/) {}

    /// Writes what fits now and returns how many bytes that was.
    virtual std::size_t Write(std::string_view bytes) = 0;
};

/// An endpoint, or the reason why there is none: the system's number and a text for a person.
struct OpenedEndpoint {
    std::unique_ptr<Endpoint> endpoint;
    int systemError = 0;
    std::string error;
};

/// A file descriptor that is closed with its owner.
class Descriptor {
  public:
    explicit Descriptor(int value = -1) : mValue(value) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept : mValue(other.mValue) { other.mValue = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return mValue; }
    bool IsOpen() const { return mValue >= 0; }
    void Close();

  private:
    int mValue;
};

/// What the last system call's failure was while doing something.
OpenedEndpoint SystemFailure(std::string_view doing);

/// The action of a host that sends these bytes; none when there are none.
std::vector<HostAction> Sending(std::string bytes);

/// Reads and writes that never wait and never raise a signal.
std::string ReadSome(int descriptor, std::size_t max, bool& closed);
std::size_t WriteSome(int descriptor, std::string_view bytes, bool& closed);

} // namespace qnsim
