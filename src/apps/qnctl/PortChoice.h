#pragma once

#include "Outcome.h"
#include "common/RegSettings.h"
#include "serial/PortBindings.h"

#include <cstdint>
#include <optional>
#include <string>

namespace qnctl {

/// The port that a run works on.
struct PortChoice {
    std::int16_t number = 0;
    std::string address;
    bool stored = false; ///< its number is the one that the store holds
    Outcome outcome;     ///< why there is none
};

/// The port numbers of this run: what the store binds, then this machine's serial devices.
qncomm::PortBindings BindPorts(const qncomm::RegSettings& settings, std::string& sWarnings);

/// The number of the configured port: the stored one, else the lowest that the store binds; nothing
/// when there is none.
std::optional<std::int16_t> ConfiguredPort(const qncomm::RegSettings& settings,
                                           const qncomm::PortBindings& bindings);

/// The port that was named (an address or a number), or the configured one. An address that has no
/// number yet is given one.
PortChoice ChoosePort(const std::string& sNamed, const qncomm::RegSettings& settings,
                      qncomm::PortBindings& bindings);

} // namespace qnctl
