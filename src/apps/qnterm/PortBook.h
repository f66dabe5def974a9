#pragma once

#include "assembly/AllChannelKinds.h"
#include "common/RegSettings.h"
#include "serial/PortBindings.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <string>

namespace qnterm {

/// A port that the window works on.
struct ChosenPort {
    std::int16_t number = 0; ///< 0 = none
    std::string address;     ///< as it is shown and kept
    bool configured = false; ///< it is the one that the store holds
    std::string problem;     ///< why there is none, for the person; empty when there is one

    explicit operator bool() const { return number > 0; }
};

/// Which address each port number stands for, and which of them is the configured one.
class PortBook {
  public:
    /// Binds what the store holds and then this machine's serial devices.
    explicit PortBook(std::shared_ptr<qncomm::RegSettings> store);

    const qncomm::PortBindings& Bindings() const { return mBindings; }

    /// The configured port, or none with an empty problem when none is configured.
    ChosenPort Configured() const;

    /// The port of that address or number, for this run alone.
    ChosenPort ForThisRun(const std::string& sPort);

    /// Makes the address the configured port. Raises what a store that takes nothing raises.
    ChosenPort Configure(const std::string& sAddress);

    /// What the link reads its settings from while it works on that port.
    std::shared_ptr<qncomm::RegSettings> SettingsFor(const ChosenPort& port) const;

    /// Binds the port's number to its address with the folder for labels, when it is a virtual
    /// printer that has none yet. Returns the folder that counts; empty for other ports.
    std::string GiveLabels(const ChosenPort& port, const std::string& sFolder);

  private:
    ChosenPort Bound(std::int16_t number) const;
    std::int16_t NumberFor(const std::string& address) const;

    std::shared_ptr<qncomm::RegSettings> mStore;
    qncomm::PortBindings mBindings{qncomm::AllChannelKinds()};
};

/// The folder in the option "labels" of a virtual printer's address; empty when it names none.
std::string LabelsOf(const std::string& sAddress);

bool IsVirtual(const std::string& sAddress);

} // namespace qnterm
