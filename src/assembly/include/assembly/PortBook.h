#pragma once

#include "common/RegSettings.h"
#include "serial/PortBindings.h"
#include "serial/SerialDevices.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qncomm {

/// Why there is no port to work on.
enum class PortProblem {
    None,          ///< there is one
    NotConfigured, ///< none was named, and the store holds none
    NoSuchNumber,  ///< what was named is a number beyond 0 to 16
    NoAddress,     ///< what was named cannot be read as an address
    Unbound,       ///< the number stands for no address, as when a device is unplugged
};

/// A port to work on.
struct ChosenPort {
    std::int16_t number = 0; ///< 1 to 16; 0 = there is none
    std::string address;     ///< as it is shown and kept
    bool configured = false; ///< it is the port that the store holds
    bool lent = false;       ///< its number was made up for this run and is not kept
    PortProblem problem = PortProblem::None; ///< why there is none
    std::string message; ///< the error message to show; empty on success or when none is configured

    /// Whether there is a port.
    explicit operator bool() const { return number > 0; }
};

/// Which address each port number stands for, and which number is the configured port: what the
/// settings store binds, then this machine's serial devices, then what a run adds.
class PortBook {
  public:
    /// Reads the bindings in the store, which is shared and must not be null, and numbers the
    /// devices that have none. Addresses are of these kinds.
    PortBook(std::shared_ptr<RegSettings> store, ChannelKinds kinds,
             const std::vector<SerialDevice>& devices = FindSerialDevices());

    /// All bindings, with those that Choose and GiveOption added.
    const PortBindings& Bindings() const { return mBindings; }

    /// A line for each binding in the store that could not be read.
    const std::vector<std::string>& Warnings() const { return mWarnings; }

    /// The number of the configured port: the stored one, else the lowest that the store binds.
    /// Nothing when none is configured. It may be unbound.
    std::optional<std::int16_t> ConfiguredNumber() const;

    /// The configured port.
    ChosenPort Configured() const;

    /// The port of that address or number, or the configured one when sPort is empty. An address
    /// without a number is lent the highest free one; so is number 0, because port 0 cannot be
    /// chosen through the link. Keeps nothing in the store.
    ChosenPort Choose(const std::string& sPort);

    /// Makes the port the configured one of the following runs, together with these settings of the
    /// line (names of the link's values and their texts). A lent number is exchanged for the lowest
    /// free one. Returns the port as it is configured now. Raises what the store raises when it
    /// cannot be written; nothing has changed then.
    ChosenPort Remember(const ChosenPort& port, const std::vector<SettingValue>& line = {});

    /// What a link reads and writes while it works on that port: the store itself for the
    /// configured port, else a view of it that keeps the port's settings apart.
    std::shared_ptr<RegSettings> SettingsFor(const ChosenPort& port) const;

    /// Adds an option to the address that the port's number stands for, for this run alone. Returns
    /// an empty text, or why the address does not take it.
    std::string GiveOption(const ChosenPort& port, std::string_view sName, std::string_view sValue);

    /// What a port number stands for, without the options that this run has added; empty for a
    /// number that stands for nothing. What is remembered of a printer belongs to it.
    std::string AddressOf(std::int16_t iPort) const;

    /// Has a virtual printer write its labels to the folder, unless its address names one already.
    /// Returns the folder that it writes to; empty when it writes to none or the port is another
    /// kind.
    std::string GiveLabels(const ChosenPort& port, const std::string& sFolder);

  private:
    ChosenPort Bound(std::int16_t number) const;
    bool IsLent(const PortBinding& binding) const;
    ChosenPort Lend(const std::string& address);
    std::int16_t HighestFree() const;
    std::int16_t LowestFree() const;
    std::optional<std::int16_t> StoredNumber() const;

    std::shared_ptr<RegSettings> mStore;
    PortBindings mBindings;
    std::map<std::int16_t, std::string> mPlainAddresses; ///< of numbers with options of this run
    std::vector<std::string> mWarnings;
};

/// Whether the address is that of a virtual printer.
bool IsVirtual(std::string_view sAddress);

/// The value of an option in an address, such as "57600" for "baud" in "sim:R7G?baud=57600"; empty
/// when the address has no such option.
std::string OptionOf(std::string_view sAddress, std::string_view sName);

/// The address with one more option at its end.
std::string WithOption(std::string_view sAddress, std::string_view sName, std::string_view sValue);

} // namespace qncomm
