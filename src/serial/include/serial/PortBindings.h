#pragma once

#include "common/RegSettings.h"
#include "serial/PortAddress.h"
#include "serial/SerialDevices.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qncomm {

/// Who bound a port number to its address, strongest first.
enum class BindingSource {
    Given,    ///< the host or the command line, for this run
    Settings, ///< section "Ports" of the settings store
    Machine,  ///< a device that this machine has
};

/// A port number and what it stands for.
struct PortBinding {
    std::int16_t number = 0;                     ///< 0 to 16
    PortAddress address;                         ///< where the port is
    BindingSource source = BindingSource::Given; ///< who said so
    std::string description;                     ///< what the device calls itself; may be empty
};

/// Which address each of the port numbers 0 to 16 stands for. A number keeps the strongest binding
/// that it was given, in whatever order they came.
class PortBindings {
  public:
    /// The highest port number.
    static constexpr std::int16_t Highest = 16;
    /// The section of the settings that holds addresses by the names of their numbers.
    static constexpr std::string_view Section = "Ports";

    /// Addresses are of the kinds that lead out of the program.
    PortBindings() : PortBindings(SerialChannelKinds()) {}
    /// Addresses are of these kinds.
    explicit PortBindings(ChannelKinds kinds) : mKinds(std::move(kinds)) {}

    /// The kinds that addresses may be of.
    const ChannelKinds& Kinds() const { return mKinds; }

    /// Binds a number on behalf of the host or the command line. Returns an empty text, or why not.
    std::string Give(std::int16_t iPort, std::string_view sAddress);

    /// Binds what section "Ports" of the store holds under "COM0" to "COM16". Returns a line for
    /// each entry that is no address.
    std::vector<std::string> AddSettings(const RegSettings& settings);

    /// Binds devices to the numbers from 1 on that are still free, in their order; a device that
    /// already has a number gets no second one. Call it last.
    void AddDevices(const std::vector<SerialDevice>& devices);

    /// Takes a number's binding away, whoever made it.
    void Forget(std::int16_t iPort);

    /// The binding of a number, nothing when it has none.
    const PortBinding* Find(std::int16_t iPort) const;
    /// The number of an address, lowest first.
    std::optional<std::int16_t> NumberOf(std::string_view sAddress) const;
    /// All bindings by number.
    std::vector<PortBinding> List() const;

  private:
    bool Bind(PortBinding binding);

    ChannelKinds mKinds;
    std::array<std::optional<PortBinding>, Highest + 1> mBindings;
};

} // namespace qncomm
